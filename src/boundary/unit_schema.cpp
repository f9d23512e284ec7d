#include <cstring>

#include "boundary/feature_schema.h"

namespace Osv::lx {

void unit_schema2dev_info(const osvlx3_unit_schema& unit, DeviceInfo& device) {
  constexpr std::size_t kLongest = sizeof(device.szSerialNumber) - 1;
  device = DeviceInfo{};
  device.nInterface = unit.id;
  const auto* const name = reinterpret_cast<const char*>(unit.name);
  std::memcpy(device.szSerialNumber, name, strnlen(name, kLongest));
}

void dev_info2unit_schema(const DeviceInfo& device, osvlx3_unit_schema& unit,
                          unsigned int channels) {
  // A serial number that fills its field has no zero byte behind it.
  char text[sizeof(device.szSerialNumber) + 1] = {};
  std::memcpy(text, device.szSerialNumber, sizeof(device.szSerialNumber));
  unit = osvlx3_unit_schema{};
  unit.id = device.nInterface;
  str2lx3str(text, unit.name);
  unit.channels = channels;
}

}  // namespace Osv::lx
