#include <algorithm>
#include <cstring>
#include <string>

#include "ostrevanhvk3/image_block.h"
#include "recorder/format/block_file.h"
#include "recorder/forwarders/forwarder.h"

/// @file
/// The forwarder for the calibration engine. A code is 0 for success.

namespace Osv::recorder {
namespace {

constexpr long kBufferTooSmall = -21;

HandleBook& engines() { return handles(eLibrary::ostrevancalibratesdk); }

/// What stands in front of an image's pixels, as far as the image goes.
std::size_t front_of(const void* image, std::size_t size) {
  tagBITMAPINFOHEADER header = {};
  if (size < sizeof(header)) {
    return size;
  }
  std::memcpy(&header, image, sizeof(header));
  constexpr std::size_t kMostColours = 256;
  const std::size_t colours = header.biBitCount > 8   ? header.biClrUsed
                              : header.biClrUsed != 0 ? header.biClrUsed
                                                      : std::size_t{1} << header.biBitCount;
  return std::min(size, sizeof(header) + std::min(colours, kMostColours) * sizeof(std::uint32_t));
}

unsigned long at(const unsigned long* number) { return number == nullptr ? 0 : *number; }

/// Callers make room for the image by this word.
void check_size(unsigned long size) {
  if (size > kLargestPiece) {
    throw RecordingEnds("an image of " + std::to_string(size) + " bytes is too large for it");
  }
}

}  // namespace
}  // namespace Osv::recorder

using namespace Osv::recorder;

OSV_FORWARDER void* CalibrateCreate() {
  constexpr auto kFunction = eFunction::CalibrateCreate;
  return exchange<void*>(
      kFunction, Arguments(), [] { return real<decltype(CalibrateCreate)>(kFunction)(); },
      [](Answer& answer, void*& handle) { answer.new_handle(handle, engines()); });
}

OSV_FORWARDER long Calibrate(void* handle, void* input, unsigned long input_size, void* output,
                             unsigned long* output_size) {
  constexpr auto kFunction = eFunction::Calibrate;
  const unsigned long room = at(output_size);
  Arguments arguments = on_handle(engines(), handle);
  add_image(arguments, input, input_size);
  arguments.pointer(output).pointer(output_size).number(static_cast<std::int64_t>(room));
  return exchange<long>(
      kFunction, arguments,
      [&] {
        return real<decltype(Calibrate)>(kFunction)(handle, input, input_size, output, output_size);
      },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (output_size != nullptr && (code == 0 || code == kBufferTooSmall)) {
          answer.number(*output_size);
          check_size(*output_size);
        }
        if (output_size != nullptr && output != nullptr && code == 0) {
          const std::size_t size = std::min(*output_size, room);
          answer.image(output, answer.is_played() ? 0 : front_of(output, size), size, room, size);
        }
      });
}

OSV_FORWARDER void CalibrateDelete(void** handle) {
  constexpr auto kFunction = eFunction::CalibrateDelete;
  Arguments arguments;
  if (handle != nullptr) {
    arguments.handle(engines().number_of(*handle));
    engines().forget(*handle);
  }
  exchange<int>(
      kFunction, arguments,
      [&] {
        real<decltype(CalibrateDelete)>(kFunction)(handle);
        return 0;
      },
      [&](Answer& answer, int& /*nothing*/) {
        bool is_null = handle != nullptr && *handle == nullptr;
        answer.flag(is_null);
        if (is_null && handle != nullptr) {
          *handle = nullptr;
        }
      });
}

OSV_FORWARDER long CalibrateSetData(void* handle, const unsigned char* data, unsigned long size) {
  constexpr auto kFunction = eFunction::CalibrateSetData;
  return code_call(kFunction, on_handle(engines(), handle).data(data, size),
                   [&] { return real<decltype(CalibrateSetData)>(kFunction)(handle, data, size); });
}

OSV_FORWARDER const char* CalibrateGetErrorDescription(long code) {
  constexpr auto kFunction = eFunction::CalibrateGetErrorDescription;
  return exchange<const char*>(
      kFunction, Arguments().number(code),
      [&] { return real<decltype(CalibrateGetErrorDescription)>(kFunction)(code); },
      [](Answer& answer, const char*& text) { answer.text(text); });
}

OSV_FORWARDER long ContaminationDetection(void* handle, void* bitmap, unsigned long size,
                                          double* percent) {
  constexpr auto kFunction = eFunction::ContaminationDetection;
  Arguments arguments = on_handle(engines(), handle);
  add_image(arguments, bitmap, size);
  return exchange<long>(
      kFunction, arguments.pointer(percent),
      [&] {
        return real<decltype(ContaminationDetection)>(kFunction)(handle, bitmap, size, percent);
      },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (code == 0) {
          answer.bytes(percent, sizeof(*percent));
        }
      });
}

OSV_FORWARDER long CalibrateSetOption(void* handle, const char* option) {
  constexpr auto kFunction = eFunction::CalibrateSetOption;
  return code_call(kFunction, on_handle(engines(), handle).text(option),
                   [&] { return real<decltype(CalibrateSetOption)>(kFunction)(handle, option); });
}

OSV_FORWARDER long CalibrateGetOption(void* handle, const char* name, char* value,
                                      unsigned long* length) {
  constexpr auto kFunction = eFunction::CalibrateGetOption;
  const unsigned long room = at(length);
  return exchange<long>(
      kFunction,
      on_handle(engines(), handle)
          .text(name)
          .pointer(value)
          .number(static_cast<std::int64_t>(room)),
      [&] { return real<decltype(CalibrateGetOption)>(kFunction)(handle, name, value, length); },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (length != nullptr && (code == 0 || code == kBufferTooSmall)) {
          answer.number(*length);
        }
        if (value != nullptr && code == 0) {
          answer.written_text(value, room);
        }
      });
}
