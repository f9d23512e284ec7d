#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "recorder/forwarders/forwarder.h"

/// @file
/// The forwarder for the scanner library. A status is non-zero for success.

namespace Osv::recorder {
namespace {

constexpr std::size_t kSevenBytes = 7;
constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kSerialBlockSize = 10;
constexpr std::size_t kDeviceInfoSize = 9;
constexpr std::size_t kVersionSize = 28;
constexpr std::size_t kInterfaceListSize = 512;

struct ImageSize {
  std::int32_t width;
  std::int32_t height;
};

HandleBook& devices() { return handles(eLibrary::KR9ScanAPI); }

/// A call with a status, which leaves something in the caller's memory when it is not 0.
template <class Real, class Outputs>
int status_call(eFunction function, const Arguments& arguments, Real make, Outputs outputs) {
  return exchange<int>(function, arguments, make, [&](Answer& answer, int& status) {
    answer.number(status);
    if (status != 0) {
      outputs(answer);
    }
  });
}

template <class Real>
int status_call(eFunction function, const Arguments& arguments, Real make) {
  return status_call(function, arguments, make, [](Answer& /*answer*/) {});
}

/// A call that fills a record of a fixed size.
template <class Real>
int record_call(eFunction function, void* handle, void* record, std::size_t size, Real make) {
  return status_call(function, on_handle(devices(), handle).pointer(record), make,
                     [&](Answer& answer) { answer.bytes(record, size); });
}

/// A call that takes a frame. Its size is what the scanner said when it was last asked.
template <class Real>
int frame_call(eFunction function, const Arguments& arguments, void* handle, void* buffer,
               Real make) {
  return status_call(function, arguments, make, [&](Answer& answer) {
    const std::size_t size = Session::get().frame_sizes().of(devices().number_of(handle));
    if (size == 0) {
      throw RecordingEnds(
          "nobody asked the scanner for the size of its frames, or it is too large");
    }
    answer.image(buffer, 0, size, size, size);
  });
}

/// The caller's memory for protected bytes, of which no more is written down than whether a call
/// changed it: programs tell by it whether they were given any.
class ProtectedMemory {
 public:
  explicit ProtectedMemory(void* memory) : m_pMemory(static_cast<unsigned char*>(memory)) {
    if (m_pMemory != nullptr) {
      std::copy_n(m_pMemory, kSevenBytes, m_aBefore.begin());
    }
  }
  ~ProtectedMemory() { ::explicit_bzero(m_aBefore.data(), m_aBefore.size()); }
  ProtectedMemory(const ProtectedMemory&) = delete;
  ProtectedMemory& operator=(const ProtectedMemory&) = delete;

  bool is_changed() const { return !std::equal(m_aBefore.begin(), m_aBefore.end(), m_pMemory); }

  /// Puts other bytes there: zeros, unless these stood there before.
  void change() {
    const bool zeros =
        std::all_of(m_aBefore.begin(), m_aBefore.end(), [](int byte) { return byte == 0; });
    std::fill_n(m_pMemory, kSevenBytes, static_cast<unsigned char>(zeros ? '*' : 0));
  }

 private:
  unsigned char* m_pMemory;
  std::array<unsigned char, kSevenBytes> m_aBefore = {};
};

}  // namespace
}  // namespace Osv::recorder

using namespace Osv::recorder;

OSV_FORWARDER void* ftrScanOpenDeviceOnInterface(int interface) {
  constexpr auto kFunction = eFunction::ftrScanOpenDeviceOnInterface;
  return exchange<void*>(
      kFunction, Arguments().number(interface),
      [&] { return real<decltype(ftrScanOpenDeviceOnInterface)>(kFunction)(interface); },
      [](Answer& answer, void*& handle) { answer.new_handle(handle, devices()); });
}

// Nobody reads its result. What a library without one happens to leave in its place may be
// anything, part of an address or of protected bytes, and is not written down: a 0 stands there.
OSV_FORWARDER void ftrScanCloseDevice(void* handle) {
  constexpr auto kFunction = eFunction::ftrScanCloseDevice;
  const Arguments arguments = on_handle(devices(), handle);
  devices().forget(handle);  // another thread may be given it as soon as it is closed
  status_call(kFunction, arguments, [&] {
    real<decltype(ftrScanCloseDevice)>(kFunction)(handle);
    return 0;
  });
}

OSV_FORWARDER int ftrScanSetOptions(void* handle, std::uint32_t mask, std::uint32_t flags) {
  constexpr auto kFunction = eFunction::ftrScanSetOptions;
  return status_call(kFunction, on_handle(devices(), handle).number(mask).number(flags), [&] {
    return real<decltype(ftrScanSetOptions)>(kFunction)(handle, mask, flags);
  });
}

OSV_FORWARDER int ftrScanGetOptions(void* handle, std::uint32_t* flags) {
  constexpr auto kFunction = eFunction::ftrScanGetOptions;
  return record_call(kFunction, handle, flags, sizeof(*flags),
                     [&] { return real<decltype(ftrScanGetOptions)>(kFunction)(handle, flags); });
}

OSV_FORWARDER int ftrScanGetDeviceInfo(void* handle, void* info) {
  constexpr auto kFunction = eFunction::ftrScanGetDeviceInfo;
  return record_call(kFunction, handle, info, kDeviceInfoSize,
                     [&] { return real<decltype(ftrScanGetDeviceInfo)>(kFunction)(handle, info); });
}

OSV_FORWARDER int ftrScanGetImageSize(void* handle, ImageSize* size) {
  constexpr auto kFunction = eFunction::ftrScanGetImageSize;
  return status_call(
      kFunction, on_handle(devices(), handle).pointer(size),
      [&] { return real<decltype(ftrScanGetImageSize)>(kFunction)(handle, size); },
      [&](Answer& answer) {
        answer.bytes(size, sizeof(*size));
        if (size != nullptr) {
          Session::get().frame_sizes().set(devices().number_of(handle), size->width, size->height);
        }
      });
}

OSV_FORWARDER int ftrScanGetFrame(void* handle, void* buffer, void* parameters) {
  constexpr auto kFunction = eFunction::ftrScanGetFrame;
  return frame_call(
      kFunction, on_handle(devices(), handle).pointer(buffer).pointer(parameters), handle, buffer,
      [&] { return real<decltype(ftrScanGetFrame)>(kFunction)(handle, buffer, parameters); });
}

OSV_FORWARDER int ftrScanGetBacklightImage(void* handle, void* buffer) {
  constexpr auto kFunction = eFunction::ftrScanGetBacklightImage;
  return frame_call(kFunction, on_handle(devices(), handle).pointer(buffer), handle, buffer, [&] {
    return real<decltype(ftrScanGetBacklightImage)>(kFunction)(handle, buffer);
  });
}

OSV_FORWARDER int ftrScanGetDarkImage(void* handle, void* buffer) {
  constexpr auto kFunction = eFunction::ftrScanGetDarkImage;
  return frame_call(kFunction, on_handle(devices(), handle).pointer(buffer), handle, buffer,
                    [&] { return real<decltype(ftrScanGetDarkImage)>(kFunction)(handle, buffer); });
}

OSV_FORWARDER int ftrScanGetImageByVariableDose(void* handle, int dose, void* buffer) {
  constexpr auto kFunction = eFunction::ftrScanGetImageByVariableDose;
  return frame_call(
      kFunction, on_handle(devices(), handle).number(dose).pointer(buffer), handle, buffer, [&] {
        return real<decltype(ftrScanGetImageByVariableDose)>(kFunction)(handle, dose, buffer);
      });
}

OSV_FORWARDER int ftrScanIsFingerPresent(void* handle, void* parameters) {
  constexpr auto kFunction = eFunction::ftrScanIsFingerPresent;
  return status_call(kFunction, on_handle(devices(), handle).pointer(parameters), [&] {
    return real<decltype(ftrScanIsFingerPresent)>(kFunction)(handle, parameters);
  });
}

OSV_FORWARDER int ftrScanSave7Bytes(void* handle, const void* bytes) {
  constexpr auto kFunction = eFunction::ftrScanSave7Bytes;
  return status_call(kFunction, on_handle(devices(), handle).data(bytes, kSevenBytes),
                     [&] { return real<decltype(ftrScanSave7Bytes)>(kFunction)(handle, bytes); });
}

OSV_FORWARDER int ftrScanRestore7ControlBytes(void* handle, void* bytes) {
  constexpr auto kFunction = eFunction::ftrScanRestore7ControlBytes;
  return record_call(kFunction, handle, bytes, kSevenBytes, [&] {
    return real<decltype(ftrScanRestore7ControlBytes)>(kFunction)(handle, bytes);
  });
}

OSV_FORWARDER int ftrScanSetDiodesStatus(void* handle, std::uint8_t green, std::uint8_t red) {
  constexpr auto kFunction = eFunction::ftrScanSetDiodesStatus;
  return status_call(kFunction, on_handle(devices(), handle).number(green).number(red), [&] {
    return real<decltype(ftrScanSetDiodesStatus)>(kFunction)(handle, green, red);
  });
}

OSV_FORWARDER int ftrScanGetInterfaces(void* list) {
  constexpr auto kFunction = eFunction::ftrScanGetInterfaces;
  return status_call(
      kFunction, Arguments().pointer(list),
      [&] { return real<decltype(ftrScanGetInterfaces)>(kFunction)(list); },
      [&](Answer& answer) { answer.bytes(list, kInterfaceListSize); });
}

OSV_FORWARDER int ftrSetBaseInterface(int interface) {
  constexpr auto kFunction = eFunction::ftrSetBaseInterface;
  return status_call(kFunction, Arguments().number(interface),
                     [&] { return real<decltype(ftrSetBaseInterface)>(kFunction)(interface); });
}

OSV_FORWARDER int ftrScanSaveSerialNumber(void* handle, const void* block) {
  constexpr auto kFunction = eFunction::ftrScanSaveSerialNumber;
  return status_call(kFunction, on_handle(devices(), handle).data(block, kSerialBlockSize), [&] {
    return real<decltype(ftrScanSaveSerialNumber)>(kFunction)(handle, block);
  });
}

OSV_FORWARDER int ftrScanGetSerialNumber(void* handle, void* serial) {
  constexpr auto kFunction = eFunction::ftrScanGetSerialNumber;
  return record_call(kFunction, handle, serial, kSerialSize, [&] {
    return real<decltype(ftrScanGetSerialNumber)>(kFunction)(handle, serial);
  });
}

OSV_FORWARDER std::uint32_t ftrScanGetLastError() {
  constexpr auto kFunction = eFunction::ftrScanGetLastError;
  return exchange<std::uint32_t>(
      kFunction, Arguments(), [] { return real<decltype(ftrScanGetLastError)>(kFunction)(); },
      [](Answer& answer, std::uint32_t& error) { answer.number(error); });
}

OSV_FORWARDER void ftrScanSetLastError(std::uint32_t error) {
  constexpr auto kFunction = eFunction::ftrScanSetLastError;
  exchange<int>(
      kFunction, Arguments().number(error),
      [&] {
        real<decltype(ftrScanSetLastError)>(kFunction)(error);
        return 0;
      },
      [](Answer& /*answer*/, int& /*nothing*/) {});
}

OSV_FORWARDER int ftrScanGetExtMemorySize(void* handle, std::int32_t* size) {
  constexpr auto kFunction = eFunction::ftrScanGetExtMemorySize;
  return record_call(kFunction, handle, size, sizeof(*size), [&] {
    return real<decltype(ftrScanGetExtMemorySize)>(kFunction)(handle, size);
  });
}

OSV_FORWARDER int ftrScanSaveExtMemory(void* handle, const void* data, unsigned long offset,
                                       std::uint32_t size) {
  constexpr auto kFunction = eFunction::ftrScanSaveExtMemory;
  return status_call(
      kFunction,
      on_handle(devices(), handle).data(data, size).number(static_cast<std::int64_t>(offset)),
      [&] { return real<decltype(ftrScanSaveExtMemory)>(kFunction)(handle, data, offset, size); });
}

OSV_FORWARDER int ftrScanRestoreExtMemory(void* handle, void* data, unsigned long offset,
                                          std::uint32_t size) {
  constexpr auto kFunction = eFunction::ftrScanRestoreExtMemory;
  return status_call(
      kFunction,
      on_handle(devices(), handle)
          .pointer(data)
          .number(static_cast<std::int64_t>(offset))
          .number(size),
      [&] {
        return real<decltype(ftrScanRestoreExtMemory)>(kFunction)(handle, data, offset, size);
      },
      [&](Answer& answer) { answer.some_bytes(data, size, size, size); });
}

OSV_FORWARDER int ftrScanGetVersion(void* handle, void* version) {
  constexpr auto kFunction = eFunction::ftrScanGetVersion;
  return record_call(kFunction, handle, version, kVersionSize,
                     [&] { return real<decltype(ftrScanGetVersion)>(kFunction)(handle, version); });
}

// The three calls about the protected bytes. Code and bytes go through and leave no trace.

OSV_FORWARDER int ftrScanSetNewAuthorizationCode(void* handle, const void* code) {
  constexpr auto kFunction = eFunction::ftrScanSetNewAuthorizationCode;
  return status_call(kFunction, on_handle(devices(), handle).pointer(code), [&] {
    return real<decltype(ftrScanSetNewAuthorizationCode)>(kFunction)(handle, code);
  });
}

OSV_FORWARDER int ftrScanSaveSecret7Bytes(void* handle, const void* code, const void* bytes) {
  constexpr auto kFunction = eFunction::ftrScanSaveSecret7Bytes;
  return status_call(kFunction, on_handle(devices(), handle).pointer(code).pointer(bytes), [&] {
    return real<decltype(ftrScanSaveSecret7Bytes)>(kFunction)(handle, code, bytes);
  });
}

OSV_FORWARDER int ftrScanRestoreSecret7Bytes(void* handle, const void* code, void* bytes) {
  constexpr auto kFunction = eFunction::ftrScanRestoreSecret7Bytes;
  ProtectedMemory memory(bytes);
  return exchange<int>(
      kFunction, on_handle(devices(), handle).pointer(code).pointer(bytes),
      [&] { return real<decltype(ftrScanRestoreSecret7Bytes)>(kFunction)(handle, code, bytes); },
      [&](Answer& answer, int& status) {
        bool is_changed = bytes != nullptr && !answer.is_played() && memory.is_changed();
        answer.number(status);
        answer.flag(is_changed);
        if (is_changed && answer.is_played() && bytes != nullptr) {
          memory.change();
        }
      });
}

// The functions that nobody calls.

OSV_FORWARDER long ftrScanGetImage(long first, long second, long third, long fourth) {
  return pass_on(eFunction::ftrScanGetImage, first, second, third, fourth);
}

OSV_FORWARDER long ftrScanGetImage2(long first, long second, long third, long fourth) {
  return pass_on(eFunction::ftrScanGetImage2, first, second, third, fourth);
}

OSV_FORWARDER long ftrScanGetDiodesStatus(long first, long second, long third, long fourth) {
  return pass_on(eFunction::ftrScanGetDiodesStatus, first, second, third, fourth);
}

OSV_FORWARDER long ftrGetBaseInterfaceNumber(long first, long second, long third, long fourth) {
  return pass_on(eFunction::ftrGetBaseInterfaceNumber, first, second, third, fourth);
}

OSV_FORWARDER long ftrScanGlobalSetOptions(long first, long second, long third, long fourth) {
  return pass_on(eFunction::ftrScanGlobalSetOptions, first, second, third, fourth);
}
