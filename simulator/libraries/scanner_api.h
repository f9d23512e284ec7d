#pragma once

#include <array>
#include <cstdint>

#include "libraries/stand_in.h"

/// @file
/// The scanner library as the stand-in has it.
///
/// A status is 1 for success and 0 for failure; then the last error tells why. Handles are numbers
/// in the disguise of pointers, counted from 1, so that no wrong one does harm.

// Not in the global namespace: a program that links the plug-in's own declarations of these records
// has two of each otherwise.
namespace Osv::simulator {

struct __FTRSCAN_IMAGE_SIZE {
  std::int32_t width;
  std::int32_t height;
};

#pragma pack(push, 1)
struct ftrScanDeviceInfoRecord {
  std::uint32_t size;  ///< 9, set by the caller
  std::uint8_t model;
  std::array<std::uint8_t, 4> rest;
};
#pragma pack(pop)
static_assert(sizeof(ftrScanDeviceInfoRecord) == 9, "the record is a binary contract");

struct ftrScanVersionRecord {
  std::uint32_t size;  ///< 28, set by the caller
  std::array<std::uint16_t, 4> first;
  std::array<std::uint16_t, 4> second;
  std::array<std::uint16_t, 4> third;
};
static_assert(sizeof(ftrScanVersionRecord) == 28, "the record is a binary contract");

/// 0 for each interface with a device.
struct ftrScanInterfaceList {
  std::array<std::uint32_t, 128> status;
};

}  // namespace Osv::simulator

OSV_STAND_IN void* ftrScanOpenDeviceOnInterface(int interface);
OSV_STAND_IN void ftrScanCloseDevice(void* handle);
OSV_STAND_IN int ftrScanSetOptions(void* handle, std::uint32_t mask, std::uint32_t flags);
OSV_STAND_IN int ftrScanGetOptions(void* handle, std::uint32_t* flags);
OSV_STAND_IN int ftrScanGetDeviceInfo(void* handle, Osv::simulator::ftrScanDeviceInfoRecord* info);
OSV_STAND_IN int ftrScanGetImageSize(void* handle, Osv::simulator::__FTRSCAN_IMAGE_SIZE* size);
OSV_STAND_IN int ftrScanGetFrame(void* handle, void* buffer, void* parameters);
OSV_STAND_IN int ftrScanGetBacklightImage(void* handle, void* buffer);
OSV_STAND_IN int ftrScanGetDarkImage(void* handle, void* buffer);
OSV_STAND_IN int ftrScanGetImage(void* handle, int dose, void* buffer);
OSV_STAND_IN int ftrScanGetImage2(void* handle, int dose, void* buffer);
OSV_STAND_IN int ftrScanGetImageByVariableDose(void* handle, int dose, void* buffer);
OSV_STAND_IN int ftrScanIsFingerPresent(void* handle, void* parameters);
OSV_STAND_IN int ftrScanSave7Bytes(void* handle, const void* bytes);
OSV_STAND_IN int ftrScanRestore7ControlBytes(void* handle, void* bytes);
OSV_STAND_IN int ftrScanGetDiodesStatus(void* handle, std::uint8_t* green, std::uint8_t* red);
OSV_STAND_IN int ftrScanSetDiodesStatus(void* handle, std::uint8_t green, std::uint8_t red);
OSV_STAND_IN int ftrScanGetInterfaces(Osv::simulator::ftrScanInterfaceList* list);
OSV_STAND_IN int ftrSetBaseInterface(int interface);
OSV_STAND_IN int ftrGetBaseInterfaceNumber();
OSV_STAND_IN int ftrScanSaveSerialNumber(void* handle, const void* block);
OSV_STAND_IN int ftrScanGetSerialNumber(void* handle, void* serial);
OSV_STAND_IN std::uint32_t ftrScanGetLastError();
OSV_STAND_IN void ftrScanSetLastError(std::uint32_t error);
OSV_STAND_IN int ftrScanGetExtMemorySize(void* handle, std::int32_t* size);
OSV_STAND_IN int ftrScanSaveExtMemory(void* handle, const void* data, unsigned long offset,
                                      std::uint32_t size);
OSV_STAND_IN int ftrScanRestoreExtMemory(void* handle, void* data, unsigned long offset,
                                         std::uint32_t size);
OSV_STAND_IN int ftrScanGetVersion(void* handle, Osv::simulator::ftrScanVersionRecord* version);
OSV_STAND_IN int ftrScanSetNewAuthorizationCode(void* handle, const void* code);
OSV_STAND_IN int ftrScanSaveSecret7Bytes(void* handle, const void* code, const void* bytes);
OSV_STAND_IN int ftrScanRestoreSecret7Bytes(void* handle, const void* code, void* bytes);
OSV_STAND_IN int ftrScanGlobalSetOptions(std::uint32_t mask, std::uint32_t flags);
