#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "ostrevanhvk3/feature_schema.h"

namespace Osv::lx {
namespace {

template <typename T>
T filled(unsigned char byte) {
  T record;
  std::memset(&record, byte, sizeof(record));
  return record;
}

template <typename T, std::size_t size>
void put(T (&field)[size], const std::string& text) {
  std::memset(field, 0, size);
  std::memcpy(field, text.data(), std::min(text.size(), size));
}

template <typename T>
std::string text_of(const T* field) {
  return reinterpret_cast<const char*>(field);
}

TEST(UnitToDevice, NumberAndNameAreTakenOverAndTheRestIsZero) {
  auto unit = filled<osvlx3_unit_schema>(0xAA);
  unit.id = 5;
  put(unit.name, "HVK30005");
  auto device = filled<DeviceInfo>(0xBB);
  unit_schema2dev_info(unit, device);
  DeviceInfo expected{};
  expected.nInterface = 5;
  put(expected.szSerialNumber, "HVK30005");
  EXPECT_EQ(std::memcmp(&device, &expected, sizeof(device)), 0);
}

TEST(UnitToDevice, ANameOf100CharactersIsCutAt99) {
  osvlx3_unit_schema unit{};
  put(unit.name, std::string(100, 'x'));
  DeviceInfo device{};
  unit_schema2dev_info(unit, device);
  EXPECT_EQ(text_of(device.szSerialNumber), std::string(99, 'x'));
}

TEST(DeviceToUnit, NumberNameAndChannelsAreTakenOverAndTheRestIsZero) {
  DeviceInfo device{};
  device.nInterface = 7;
  put(device.szSerialNumber, "HVK30007");
  auto unit = filled<osvlx3_unit_schema>(0xAA);
  dev_info2unit_schema(device, unit, 3);
  osvlx3_unit_schema expected{};
  expected.id = 7;
  expected.channels = 3;
  put(expected.name, "HVK30007");
  EXPECT_EQ(std::memcmp(&unit, &expected, sizeof(unit)), 0);
}

TEST(DeviceToUnit, ATextThatFillsItsFieldIsTakenWholeAndEnded) {
  auto device = filled<DeviceInfo>('y');
  std::memset(device.szSerialNumber, 'x', sizeof(device.szSerialNumber));
  osvlx3_unit_schema unit{};
  dev_info2unit_schema(device, unit, 1);
  EXPECT_EQ(text_of(unit.name), std::string(100, 'x'));
}

TEST(DeviceToUnit, GoesThereAndBack) {
  DeviceInfo device{};
  device.nInterface = 127;
  put(device.szSerialNumber, "HVK30127");
  osvlx3_unit_schema unit{};
  dev_info2unit_schema(device, unit, 1);
  DeviceInfo back{};
  unit_schema2dev_info(unit, back);
  EXPECT_EQ(std::memcmp(&back, &device, sizeof(back)), 0);
}

}  // namespace
}  // namespace Osv::lx
