#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// @file
/// The records that cross the boundary to the scanner library. Native little-endian integers.

/// Frame geometry in pixels.
struct __FTRSCAN_IMAGE_SIZE {
  std::int32_t nWidth;
  std::int32_t nHeight;

  /// The library's record may go on here. Nobody reads it; it keeps the library from writing past
  /// the end.
  std::array<std::int32_t, 6> anReserved;
};

static_assert(offsetof(__FTRSCAN_IMAGE_SIZE, nHeight) == 4);

#pragma pack(push, 1)
/// What kind of device it is. The caller zeroes it and sets its size.
struct ftrScanDeviceInfoRecord {
  std::uint32_t nSize;
  std::uint8_t nModel;
  std::array<std::uint8_t, 4> anReserved;
};
#pragma pack(pop)

static_assert(sizeof(ftrScanDeviceInfoRecord) == 9);

/// Major, minor, third and fourth part; 0xFFFF in the third or fourth means that it is absent.
using ftrScanVersionBlock = std::array<std::uint16_t, 4>;

/// Versions of a device. The caller sets the size; nobody reads the first block.
struct ftrScanVersionRecord {
  std::uint32_t nSize;
  ftrScanVersionBlock aFirst;
  ftrScanVersionBlock aSecond;
  ftrScanVersionBlock aThird;
};

static_assert(sizeof(ftrScanVersionRecord) == 28);

/// One status word for each interface; 0 means that a device is attached.
using ftrScanInterfaceList = std::array<std::int32_t, 128>;
