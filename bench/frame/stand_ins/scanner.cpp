#include "libraries/scanner_api.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <vector>

#include "stand_ins/control.h"

/// @file
/// A scanner library of which a frame costs one copy.

namespace {

using Osv::bench::ScannerControl;
using Osv::simulator::__FTRSCAN_IMAGE_SIZE;
using Osv::simulator::ftrScanDeviceInfoRecord;
using Osv::simulator::ftrScanInterfaceList;
using Osv::simulator::ftrScanVersionRecord;

constexpr int kDone = 1;
constexpr int kFailed = 0;
constexpr std::uint32_t kBusy = 121;
constexpr std::uint32_t kInvalid = 87;
constexpr std::size_t kSerialSize = 8;

ScannerControl g_control;
std::uint32_t g_last_error = 0;

/// The extended memory: version, date, revision, no description, and as payload the signature.
constexpr std::array<unsigned char, 64> kMemory = [] {
  constexpr std::array<unsigned char, 8> kSignature = {'C', 'A', 'L', 0, 'G', 'E', 'O', 0};
  constexpr std::size_t kLengthPosition = 21;
  constexpr std::size_t kPayloadPosition = 25;
  std::array<unsigned char, 64> memory{1};
  memory[kLengthPosition] = kSignature.size();
  std::copy(kSignature.begin(), kSignature.end(), memory.begin() + kPayloadPosition);
  return memory;
}();

std::size_t pixels() {
  return static_cast<std::size_t>(g_control.width) * static_cast<std::size_t>(g_control.height);
}

/// The frame that is always delivered: of all levels, so that every middle row is a finger's.
const std::vector<unsigned char>& frame() {
  static std::vector<unsigned char> levels;
  if (levels.size() != pixels()) {
    levels.resize(pixels());
    std::generate(levels.begin(), levels.end(), [level = 0U]() mutable {
      level = level * 5 + 17;
      return static_cast<unsigned char>(level);
    });
  }
  return levels;
}

int deliver(void* buffer) {
  if (g_control.busy) {
    g_last_error = kBusy;
    return kFailed;
  }
  const std::vector<unsigned char>& levels = frame();
  std::memcpy(buffer, levels.data(), levels.size());
  g_control.buffer = buffer;
  if (g_control.clocked) {
    g_control.returned_at = std::chrono::steady_clock::now().time_since_epoch().count();
  }
  return kDone;
}

bool is_attached(int interface) { return interface >= 0 && interface < g_control.interfaces; }

}  // namespace

ScannerControl* ostrevan_bench_scanner() { return &g_control; }

void* ftrScanOpenDeviceOnInterface(int interface) {
  return is_attached(interface) ? &g_control : nullptr;
}
void ftrScanCloseDevice(void*) {}
int ftrScanSetOptions(void*, std::uint32_t, std::uint32_t) { return kDone; }
int ftrScanGetOptions(void*, std::uint32_t* flags) {
  *flags = 0;
  return kDone;
}

int ftrScanGetDeviceInfo(void*, ftrScanDeviceInfoRecord* info) {
  info->model = 1;
  return kDone;
}

int ftrScanGetImageSize(void*, __FTRSCAN_IMAGE_SIZE* size) {
  *size = {g_control.width, g_control.height};
  return kDone;
}

int ftrScanGetFrame(void*, void* buffer, void*) { return deliver(buffer); }
int ftrScanGetBacklightImage(void*, void* buffer) { return deliver(buffer); }
int ftrScanGetDarkImage(void*, void* buffer) { return deliver(buffer); }
int ftrScanGetImage(void*, int, void* buffer) { return deliver(buffer); }
int ftrScanGetImage2(void*, int, void* buffer) { return deliver(buffer); }
int ftrScanGetImageByVariableDose(void*, int, void* buffer) { return deliver(buffer); }

int ftrScanIsFingerPresent(void*, void*) { return kDone; }
int ftrScanSave7Bytes(void*, const void*) { return kDone; }
int ftrScanRestore7ControlBytes(void*, void*) { return kDone; }
int ftrScanGetDiodesStatus(void*, std::uint8_t*, std::uint8_t*) { return kDone; }
int ftrScanSetDiodesStatus(void*, std::uint8_t, std::uint8_t) { return kDone; }

int ftrScanGetInterfaces(ftrScanInterfaceList* list) {
  for (std::size_t i = 0; i < list->status.size(); ++i) {
    list->status[i] = is_attached(static_cast<int>(i)) ? 0 : 1;
  }
  return kDone;
}

int ftrSetBaseInterface(int) { return kDone; }
int ftrGetBaseInterfaceNumber() { return 0; }
int ftrScanSaveSerialNumber(void*, const void*) { return kDone; }

int ftrScanGetSerialNumber(void*, void* serial) {
  std::memcpy(serial, "HVK30001", kSerialSize);
  return kDone;
}

std::uint32_t ftrScanGetLastError() { return g_last_error; }
void ftrScanSetLastError(std::uint32_t error) { g_last_error = error; }

int ftrScanGetExtMemorySize(void*, std::int32_t* size) {
  *size = kMemory.size();
  return kDone;
}

int ftrScanSaveExtMemory(void*, const void*, unsigned long, std::uint32_t) { return kFailed; }

int ftrScanRestoreExtMemory(void*, void* data, unsigned long offset, std::uint32_t size) {
  if (offset > kMemory.size() || size > kMemory.size() - offset) {
    g_last_error = kInvalid;
    return kFailed;
  }
  std::memcpy(data, kMemory.data() + offset, size);
  return kDone;
}

int ftrScanGetVersion(void*, ftrScanVersionRecord*) { return kFailed; }
int ftrScanSetNewAuthorizationCode(void*, const void*) { return kFailed; }
int ftrScanSaveSecret7Bytes(void*, const void*, const void*) { return kFailed; }
int ftrScanRestoreSecret7Bytes(void*, const void*, void*) { return kFailed; }
int ftrScanGlobalSetOptions(std::uint32_t, std::uint32_t) { return kDone; }
