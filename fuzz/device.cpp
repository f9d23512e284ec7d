#include <array>
#include <string>
#include <vector>

#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"
#include "driver/device/futronic_base_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/wait.h"
#include "ostrevanhvk3/errors.h"
#include "support/memory.h"
#include "support/target.h"

/// @file
/// The device layer under a scanner library that fails, lies and loses its scanners: every
/// operation, also those that no client reaches, with buffers of just the size that each needs.

namespace Osv::fuzz {
namespace {

using Buffer = std::vector<unsigned char>;

/// What the operations of a run gave, one behind the other.
using Results = std::vector<std::string>;

/// One operation; the number chooses its argument. @return what it gave
using Operation = std::string (*)(ClFutronicBaseSDK& device, unsigned int number);

std::string said(bool answer) { return answer ? "yes" : "no"; }

std::string said(bool answer, const Buffer& buffer) {
  return answer ? std::string(buffer.begin(), buffer.end()) : "no";
}

/// Tells how large a frame is, and fetches one if it can be.
template <typename Fetch>
std::string framed(ClFutronicBaseSDK& device, Fetch fetch) {
  auto size = unwritten<__FTRSCAN_IMAGE_SIZE>();
  if (!device.GetImageSize(&size)) {
    return "no size";
  }
  std::string told = std::to_string(size.nWidth) + 'x' + std::to_string(size.nHeight);
  if (size.nWidth <= 0 || size.nHeight <= 0) {
    return told;
  }
  constexpr int kLargest = 200;
  require(size.nWidth <= kLargest && size.nHeight <= kLargest, "a frame has a size");
  Buffer buffer = unwritten_bytes(static_cast<std::size_t>(size.nWidth) *
                                  static_cast<std::size_t>(size.nHeight));
  return told + said(fetch(buffer), buffer);
}

template <typename Fetch>
std::string seven_bytes(Fetch fetch) {
  Buffer buffer = unwritten_bytes(7);
  return said(fetch(buffer.data()), buffer);
}

/// Fetches a number.
template <typename Number, typename Fetch>
std::string told(Fetch fetch) {
  auto number = unwritten<Number>();
  return fetch(&number) ? std::to_string(number) : "no";
}

std::string list(ClFutronicBaseSDK& device, unsigned int /*number*/) {
  std::vector<DeviceInfo> scanners;
  device.GetKR9ScannerList(scanners);
  const auto* const bytes = reinterpret_cast<const char*>(scanners.data());
  return {bytes, bytes + scanners.size() * sizeof(DeviceInfo)};
}

std::string versions(ClFutronicBaseSDK& device, unsigned int /*number*/) {
  std::string first;
  std::string second;
  std::string third;
  device.GetDeviceVersions(first, second, third);
  require(third.empty(), "there is no third version");
  return first + ' ' + second;
}

std::string serial(ClFutronicBaseSDK& device, unsigned int /*number*/) {
  std::string text = "as it was";
  const bool read = device.GetSerialNumber(text);
  require(read ? text.size() == 8 : text == "as it was", "a serial number has 8 bytes");
  return text;
}

std::string read_raw(ClFutronicBaseSDK& device, unsigned int number) {
  Buffer buffer = unwritten_bytes(1UL + number);
  device.ReadRaw(buffer.data(), buffer.size());
  return {buffer.begin(), buffer.end()};
}

std::string last_error(ClFutronicBaseSDK& device, unsigned int number) {
  if (number % 4 == 0) {
    device.SetLastError(number);
  }
  const unsigned long error = device.GetLastError();
  require(error != 259, "a scanner that isn't there has one number");
  return std::to_string(error);
}

constexpr std::array<Operation, 27> kOperations = {{
    [](auto& device, auto) { return said(device.Initialize()); },
    [](auto& device, auto) { return said((device.Unitialize(), true)); },
    &list,
    [](auto& device, auto number) { return said(device.SetScanInterface(number % 6)); },
    [](auto& device, auto number) {
      return said(device.IsKR9Scanner(static_cast<int>(number % 6)));
    },
    [](auto& device, auto) { return said(device.IsKR9Scanner(nullptr)); },
    [](auto& device, auto) {
      return framed(device, [&](Buffer& to) { return device.GetImageByDose(to.data(), 60); });
    },
    [](auto& device, auto) {
      return framed(device, [&](Buffer& to) { return device.GetImageBlackLight(to.data()); });
    },
    [](auto& device, auto) {
      return framed(device, [&](Buffer& to) { return device.GetDarkImage(to.data()); });
    },
    [](auto& device, auto) {
      return framed(device,
                    [&](Buffer& to) { return device.CaptureFrame(to.data(), to.size()) != 0; });
    },
    [](auto& device, auto) {
      return framed(device, [&](Buffer& to) { return device.CaptureImage(to.data(), 0); });
    },
    [](auto& device, auto) { return std::to_string(device.IsFingerPresent()); },
    [](auto& device, auto) { return said(device.SetLongImage()); },
    [](auto& device, auto number) { return said(device.SetOptions(number, number)); },
    [](auto& device, auto) {
      return told<unsigned int>([&](unsigned int* flags) { return device.GetOptions(flags); });
    },
    [](auto& device, auto) {
      return told<int>([&](int* size) { return device.GetEPROMSize(size); });
    },
    &read_raw,
    [](auto& device, auto number) {
      device.WriteRaw(Buffer(1UL + number).data(), 1UL + number);
      return said(true);
    },
    [](auto& device, auto) {
      return seven_bytes([&](unsigned char* bytes) { return device.GetEPROMData(bytes); });
    },
    [](auto& device, auto) { return said(device.PutEPROMData(Buffer(7).data())); },
    &serial,
    [](auto& device, auto number) {
      return said(device.SetSerialNumber(std::string(number % 12, 's')));
    },
    &versions,
    [](auto& device, auto number) {
      return said(number % 2 == 0 ? device.SwitchRedLED(number % 4 == 0)
                                  : device.SwitchGreenLED(number % 4 == 1)) +
             said(device.StateRedLED()) + said(device.StateGreenLED());
    },
    &last_error,
    [](auto& device, auto number) {
      device.RemoteDesktopHandling();
      return said(device.LoggingEnable(static_cast<unsigned short>(number), nullptr)) +
             said(device.LoggingDisable()) + told<unsigned long>([&](unsigned long* interface) {
               return device.GetScanInterface(*interface);
             });
    },
    [](auto& device, auto) {
      Buffer code(7);
      return said(device.SetNewAuthorizationCode(code.data())) +
             said(device.SaveSecret7Bytes(code.data(), code.data())) +
             seven_bytes([&](unsigned char* bytes) {
               return device.RestoreSecret7Bytes(code.data(), bytes);
             });
    },
}};

/// What an operation gave, or the refusal that it documents.
std::string outcome(Operation operation, ClFutronicBaseSDK& device, unsigned int number) {
  try {
    return operation(device, number);
  } catch (const lx::ClKR9NOTImplException& refusal) {
    require(refusal.GetErrorNumber() == lx::error_number::HardwareVersion, "it is not supported");
    return refusal.GetDescription();
  } catch (const CXSystemException&) {
    return "the memory failed";
  }
}

Results work(Input input) {
  scene().begin(input);
  Input operations(input.bytes(2UL * input.below(100)));
  answers().begin(input.rest());
  Results results;
  {
    ClFutronicBaseSDK device;
    while (operations.left() > 0) {
      const Operation operation = kOperations[operations.below(kOperations.size())];
      results.push_back(outcome(operation, device, operations.byte()));
    }
  }
  scene().end();
  return results;
}

/// Waits that take no time.
class NoWaits {
 public:
  NoWaits() {
    ExchangeWaitFunction([](eWait, int) {});
  }
  ~NoWaits() { ExchangeWaitFunction(nullptr); }
  NoWaits(const NoWaits&) = delete;
  NoWaits& operator=(const NoWaits&) = delete;
};

}  // namespace

/// First the scene, then the number of operations and these, then the faults.
void run(Input input) {
  const NoWaits no_waits;
  written_whole([&] { return work(input); });
}

}  // namespace Osv::fuzz
