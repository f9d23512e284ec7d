#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"
#include "libraries/scanner_api.h"
#include "support/require.h"

/// @file
/// The scanner library.

namespace Osv::fuzz {
namespace {

constexpr int kDone = 1;
constexpr int kFailed = 0;
constexpr std::uint32_t kInvalidParameter = 87;
constexpr std::uint32_t kNoDevice = 259;
constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kSecretSize = 7;
constexpr int kByte = 0x5A;  // of the bytes that it keeps
constexpr std::size_t kListRecordSize = 204;

int fail(std::uint32_t error) {
  scene().last_error = answers().tell(error);
  errno = EIO;  // the same in every run
  return kFailed;
}

/// A call that answers with a status. `odd` is what it does for that kind of fault, with its value;
/// `work` is what it does otherwise. Both give a status.
template <typename Work, typename Odd>
int answer(const char* function, void* handle, Work work, Odd odd) {
  const Fault fault = answers().next(function);
  if (fault.kind == eFault::Fails) {
    return fail(answers().scanner_error(fault.value));
  }
  OpenDevice* const device = scene().find(handle);
  if (device == nullptr) {
    return fail(kNoDevice);
  }
  return fault.kind == eFault::Odd ? odd(*device, fault.value) : work(*device);
}

/// Of a function without an odd answer of its own: it does nothing, and is content.
template <typename Work>
int answer(const char* function, void* handle, Work work) {
  return answer(function, handle, work, [](OpenDevice&, std::uint32_t) { return kDone; });
}

int done(void*) { return kDone; }

unsigned char* bytes_of(void* buffer) { return static_cast<unsigned char*>(buffer); }

/// Writes a frame: a gradient over a gray of its own, dark enough for a finger at times.
int write_frame(const OpenDevice& device, void* buffer, std::uint32_t gray) {
  unsigned char* const pixels = bytes_of(buffer);
  const int count = device.unit.width * device.unit.height;
  for (int i = 0; i < count; ++i) {
    pixels[i] = static_cast<unsigned char>(gray + static_cast<unsigned int>(i) % 61);
  }
  return kDone;
}

int give_frame(const char* function, void* handle, void* buffer) {
  constexpr std::uint32_t kGray = 90;
  return answer(
      function, handle,
      [&](const OpenDevice& device) { return write_frame(device, buffer, kGray); },
      [&](const OpenDevice& device, std::uint32_t value) {
        return write_frame(device, buffer, value);
      });
}

int give_bytes(const char* function, void* handle, void* bytes, std::size_t size) {
  const auto give = [&](std::uint32_t byte) {
    std::memset(bytes, static_cast<int>(byte), size);
    return kDone;
  };
  return answer(
      function, handle, [&](OpenDevice&) { return give(kByte); },
      [&](OpenDevice&, std::uint32_t value) { return give(value % 256); });
}

/// Answers with a status other than the two that are known, or with the one of success.
int odd_secret(OpenDevice& /*device*/, std::uint32_t value) { return static_cast<int>(value); }

int read_memory(void* data, unsigned long offset, std::uint32_t size) {
  const std::vector<std::uint8_t>& memory = scene().memory();
  if (offset > memory.size() || size > memory.size() - offset) {
    return fail(kInvalidParameter);
  }
  std::memcpy(data, memory.data() + offset, size);
  return kDone;
}

/// As `read_memory`, with one byte that differs this time.
int misread_memory(void* data, unsigned long offset, std::uint32_t size, std::uint32_t value) {
  const int status = read_memory(data, offset, size);
  if (status == kDone && size != 0) {
    bytes_of(data)[value % size] ^= static_cast<unsigned char>(1 + (value >> 16));
  }
  return status;
}

}  // namespace
}  // namespace Osv::fuzz

using namespace Osv::fuzz;
using Osv::simulator::__FTRSCAN_IMAGE_SIZE;
using Osv::simulator::ftrScanDeviceInfoRecord;
using Osv::simulator::ftrScanInterfaceList;
using Osv::simulator::ftrScanVersionRecord;

void* ftrScanOpenDeviceOnInterface(int interface) {
  const Fault fault = answers().next(__func__);
  if (fault.kind == eFault::Odd) {
    return nullptr;  // and no error with it
  }
  void* const device = fault.kind == eFault::None ? scene().open(interface) : nullptr;
  if (device == nullptr) {
    fail(fault.kind == eFault::None ? kNoDevice : answers().scanner_error(fault.value));
  }
  return device;
}

void ftrScanCloseDevice(void* handle) {
  const Fault fault = answers().next(__func__);
  if (fault.kind == eFault::Fails) {
    fail(answers().scanner_error(fault.value));
  }
  scene().close(handle);
}

int ftrScanSetOptions(void* handle, std::uint32_t, std::uint32_t) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanGetOptions(void* handle, std::uint32_t* flags) {
  return give_bytes(__func__, handle, flags, sizeof(*flags));
}

int ftrScanGetDeviceInfo(void* handle, ftrScanDeviceInfoRecord* info) {
  require(info->size == sizeof(*info), "the record's size is set");
  const auto tell = [&](std::uint32_t model) {
    info->model = static_cast<std::uint8_t>(model);
    return kDone;
  };
  return answer(
      __func__, handle, [&](OpenDevice&) { return tell(1); },
      [&](OpenDevice&, std::uint32_t value) { return tell(value); });
}

int ftrScanGetImageSize(void* handle, __FTRSCAN_IMAGE_SIZE* size) {
  return answer(
      __func__, handle,
      [&](const OpenDevice& device) {
        *size = {device.unit.width, device.unit.height};
        return kDone;
      },
      // Sizes that no frame has: a client has to refuse them, as none of its buffers would do.
      [&](const OpenDevice& device, std::uint32_t value) {
        const int absurd = value % 2 == 0 ? static_cast<int>(value | 0x80000000U) : 0;
        const bool is_height = value / 2 % 2 != 0;
        *size = {is_height ? device.unit.width : absurd, is_height ? absurd : device.unit.height};
        return kDone;
      });
}

int ftrScanGetFrame(void* handle, void* buffer, void*) {
  return give_frame(__func__, handle, buffer);
}
int ftrScanGetImage(void* handle, int, void* buffer) {
  return give_frame(__func__, handle, buffer);
}
int ftrScanGetImage2(void* handle, int, void* buffer) {
  return give_frame(__func__, handle, buffer);
}
int ftrScanGetImageByVariableDose(void* handle, int, void* buffer) {
  return give_frame(__func__, handle, buffer);
}
int ftrScanGetBacklightImage(void* handle, void* buffer) {
  return give_frame(__func__, handle, buffer);
}
int ftrScanGetDarkImage(void* handle, void* buffer) { return give_frame(__func__, handle, buffer); }

int ftrScanIsFingerPresent(void* handle, void*) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanSave7Bytes(void* handle, const void*) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanRestore7ControlBytes(void* handle, void* bytes) {
  return give_bytes(__func__, handle, bytes, kSecretSize);
}

int ftrScanGetDiodesStatus(void* handle, std::uint8_t* green, std::uint8_t* red) {
  *green = 0;
  *red = 0;
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanSetDiodesStatus(void* handle, std::uint8_t, std::uint8_t) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanGetInterfaces(ftrScanInterfaceList* list) {
  const Fault fault = answers().next(__func__);
  if (fault.kind == eFault::Fails) {
    return fail(answers().scanner_error(fault.value));
  }
  for (std::size_t i = 0; i < list->status.size(); ++i) {
    const bool ghost = fault.kind == eFault::Odd && i % 32 == fault.value % 32;
    list->status[i] = ghost || scene().is_attached(static_cast<int>(i)) ? 0 : 1;
  }
  return kDone;
}

int ftrSetBaseInterface(int) {
  const Fault fault = answers().next(__func__);
  return fault.kind == eFault::Fails ? fail(answers().scanner_error(fault.value)) : kDone;
}

int ftrGetBaseInterfaceNumber() { return 0; }

int ftrScanSaveSerialNumber(void* handle, const void*) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanGetSerialNumber(void* handle, void* serial) {
  return answer(
      __func__, handle,
      [&](const OpenDevice& device) {
        std::memcpy(serial, "FUZZ0000", kSerialSize);
        bytes_of(serial)[kSerialSize - 1] += static_cast<unsigned char>(device.interface);
        return kDone;
      },
      // A client gives it a whole record of its list, and may find all of it written.
      [&](const OpenDevice&, std::uint32_t value) {
        std::memset(serial, static_cast<int>(value % 256), kListRecordSize);
        return kDone;
      });
}

std::uint32_t ftrScanGetLastError() {
  const Fault fault = answers().next(__func__);
  const std::uint32_t error =
      fault.kind == eFault::None ? scene().last_error : answers().scanner_error(fault.value);
  scene().unnamed_failures += error == 0 ? 1 : 0;
  return error;
}

void ftrScanSetLastError(std::uint32_t error) { scene().last_error = error; }

int ftrScanGetExtMemorySize(void* handle, std::int32_t* size) {
  const auto tell = [&](std::uint32_t number) {
    *size = static_cast<std::int32_t>(number);
    return kDone;
  };
  return answer(
      __func__, handle,
      [&](OpenDevice&) { return tell(static_cast<std::uint32_t>(scene().memory().size())); },
      [&](OpenDevice&, std::uint32_t value) { return tell(value); });
}

int ftrScanSaveExtMemory(void* handle, const void*, unsigned long, std::uint32_t) {
  return answer(__func__, handle, [](OpenDevice& device) { return done(&device); });
}

int ftrScanRestoreExtMemory(void* handle, void* data, unsigned long offset, std::uint32_t size) {
  return answer(
      __func__, handle, [&](OpenDevice&) { return read_memory(data, offset, size); },
      [&](OpenDevice&, std::uint32_t value) { return misread_memory(data, offset, size, value); });
}

int ftrScanGetVersion(void* handle, ftrScanVersionRecord* version) {
  require(version->size == sizeof(*version), "the record's size is set");
  const auto tell = [&](std::uint32_t part) {
    const auto last = static_cast<std::uint16_t>(part);
    version->first = {1, 0, last, last};
    version->second = {2, 1, last, 7};
    version->third = {3, 4, 5, last};
    return kDone;
  };
  return answer(
      __func__, handle, [&](OpenDevice&) { return tell(0xFFFF); },
      [&](OpenDevice&, std::uint32_t value) { return tell(value); });
}

int ftrScanSetNewAuthorizationCode(void* handle, const void*) {
  return answer(
      __func__, handle, [](OpenDevice& device) { return done(&device); }, &odd_secret);
}

int ftrScanSaveSecret7Bytes(void* handle, const void*, const void*) {
  return answer(
      __func__, handle, [](OpenDevice& device) { return done(&device); }, &odd_secret);
}

int ftrScanRestoreSecret7Bytes(void* handle, const void*, void* bytes) {
  const auto give = [&](int status) {
    std::memset(bytes, kByte, kSecretSize);  // also where its status isn't that of success
    return status;
  };
  return answer(
      __func__, handle, [&](OpenDevice&) { return give(kDone); },
      [&](OpenDevice& device, std::uint32_t value) { return give(odd_secret(device, value)); });
}

int ftrScanGlobalSetOptions(std::uint32_t, std::uint32_t) { return kDone; }
