#pragma once

#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

#include "driver/driver_fixture.h"

/// @file
/// A scanner whose frames have any size. The simulator's have one.

namespace Osv::lx {

struct Size {
  int width;
  int height;

  std::size_t pixels() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
};

/// The unit that is attached, and what was asked of it. It stands in for frames and their size; all
/// else is the simulator's.
struct SizedUnit {
  Size size;
  std::optional<Size> next = {};  ///< of the unit that is there once this one is closed
  int frames = 0;
  bool fails = false;
  bool buffers_suffice = true;

  /// The engine of tests that have units of any size; it cuts images to 600 x 400.
  static constexpr char kEngine[] = HVK3_CUTTING_ENGINE;

  static inline SizedUnit* attached = nullptr;

  /// From now on the attached unit answers for the scanner of `driver`, which has been open: the
  /// binding stays through all openings, so this does too.
  static void answer_for_the_scanner_of(Driver& driver) {
    struct Access : ClFutronicBaseSDK {
      using ClFutronicBaseSDK::m_pApiLib;
    };
    const auto api = (driver.m_pScanner.get()->*(&Access::m_pApiLib)).get();
    close_simulated = std::exchange(api->ftrScanCloseDevice, &SizedUnit::close);
    api->ftrScanGetImageSize = &SizedUnit::tell_size;
    api->ftrScanGetImageByVariableDose = &SizedUnit::fill_by_dose;
    api->ftrScanGetDarkImage = &SizedUnit::fill;
    api->ftrScanGetBacklightImage = &SizedUnit::fill;
  }

 private:
  static inline std::int32_t (*close_simulated)(ScannerHandle handle) = nullptr;

  static std::int32_t close(ScannerHandle handle) {
    const std::int32_t result = close_simulated(handle);
    if (attached != nullptr) {
      attached->size = attached->next.value_or(attached->size);
    }
    return result;
  }

  static std::int32_t tell_size(ScannerHandle /*handle*/, __FTRSCAN_IMAGE_SIZE* size) {
    *size = {attached->size.width, attached->size.height, {}};
    return 1;
  }

  static std::int32_t fill(ScannerHandle handle, void* buffer) {
    if (attached->fails || handle == nullptr) {
      return 0;
    }
    attached->take_frame(static_cast<unsigned char*>(buffer));
    return 1;
  }

  static std::int32_t fill_by_dose(ScannerHandle handle, int /*dose*/, void* buffer) {
    return fill(handle, buffer);
  }

  /// Pixels come to lie behind header and palette of an 8-bit block.
  void take_frame(unsigned char* pixels) {
    constexpr std::size_t kInFront = sizeof(tagBITMAPINFOHEADER) + 256UL * 4;
    ++frames;
    if (malloc_usable_size(pixels - kInFront) < kInFront + size.pixels()) {
      buffers_suffice = false;
    } else {
      std::memset(pixels, 0x20, size.pixels());
    }
  }
};

}  // namespace Osv::lx
