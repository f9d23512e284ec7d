// Lists the attached scanners, chooses one and describes it: choose_scanner [INTERFACE]
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "plugin.h"

namespace {

std::vector<DeviceInfo> list(Osv::lx::ClFramegrabber& grabber) {
  std::vector<DeviceInfo> devices(4);
  unsigned long count = devices.size();
  unsigned long result = grabber.AvailableDevices(devices.data(), count);
  while (Osv::lx::ErrorNumber(result) == Osv::lx::error_number::BufferTooSmall) {
    devices.resize(count);
    result = grabber.AvailableDevices(devices.data(), count);
  }
  check(grabber, result);
  devices.resize(count);
  return devices;
}

// 8 bytes, which need not be text.
std::string serial_number(const DeviceInfo& device) {
  std::string text(device.szSerialNumber, 8);
  for (char& byte : text) {
    if (std::isprint(static_cast<unsigned char>(byte)) == 0) {
      byte = '?';
    }
  }
  return text;
}

void describe(Osv::lx::ClFramegrabber& grabber) {
  char text[1024] = "";
  unsigned long size = sizeof(text);
  check(grabber, grabber.GetInfo(text, size));
  for (const char* part = text; *part != '\0'; part += std::strlen(part) + 1) {
    std::printf("%s\n", part);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return run([&](Plugin& plugin) {
    Osv::lx::ClFramegrabber& grabber = plugin.grabber();
    for (const DeviceInfo& device : list(grabber)) {
      std::printf("%u\t%s\n", device.nInterface, serial_number(device).c_str());
    }
    if (argc > 1) {
      check(grabber, grabber.SetActiveDevice(std::strtoul(argv[1], nullptr, 10)));
      describe(grabber);
    }
  });
}
