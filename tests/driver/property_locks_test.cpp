#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

#include "capture/stub_framegrabber.h"
#include "driver/driver_fixture.h"
#include "driver/support/mutex_watch.h"

/// @file
/// Which of the driver's operations take its lock.

namespace Osv::lx {
namespace {

using testing_support::is_held;
using testing_support::LockCount;

/// An operation that takes the driver's lock so many times while the scanner is open.
struct Operation {
  const char* name;
  int locks;
  void (*run)(Driver& driver);
};

template <unsigned int id>
void read(Driver& driver) {
  unsigned int value = 0;
  driver.GetProperty(static_cast<ePropertyIDs>(id), value);
}

template <unsigned int id>
void write(Driver& driver) {
  driver.SetProperty(static_cast<ePropertyIDs>(id), 1);
}

void read_format(Driver& driver) {
  unsigned char value = 0;
  osvlx3_feature feature{55, 0, 1, 1, &value};
  driver.GetFeature(&feature);
}

void write_format(Driver& driver) {
  unsigned char value = 1;
  const osvlx3_feature feature{55, 0, 1, 1, &value};
  driver.SetFeature(&feature);
}

void read_secret(Driver& driver) {
  std::array<unsigned char, 14> bytes{};
  osvlx3_feature feature{54, 0, bytes.size(), 1, bytes.data()};
  driver.GetFeature(&feature);
}

void write_secret(Driver& driver) {
  std::array<unsigned char, 14> bytes{};
  const osvlx3_feature feature{54, 0, bytes.size(), 1, bytes.data()};
  driver.SetFeature(&feature);
}

void write_code(Driver& driver) {
  std::array<unsigned char, 7> bytes{};
  const osvlx3_feature feature{53, 0, bytes.size(), 1, bytes.data()};
  driver.SetFeature(&feature);
}

void read_version(Driver& driver) {
  std::array<char, 32> text{};
  unsigned long size = text.size();
  driver.GetLDProperty(0, "Version", text.data(), &size);
}

void write_level(Driver& driver) { driver.SetLDProperty(0, "nSecurityLevel", "1"); }

void measure(Driver& driver) {
  double level = 0;
  driver.ContaminationDetection(1, &level);
}

void frame_information(Driver& driver) {
  double score = 0;
  driver.CurrentFrameInfo(0, 0, &score);
}

void enable_events(Driver& driver) { driver.EnableEvents(0, 1, nullptr, nullptr); }

void set_camera(Driver& driver) { driver.SetCamera(1, eCamera8, eColorModeGray); }

void set_filter(Driver& driver) { driver.SetFilter(1, eFilterNone); }

void set_resolution(Driver& driver) { driver.SetResolution(1, {}); }

void set_aspect_ratio(Driver& driver) {
  failure_of([&] { driver.SetAspectRatio(1, 1.0, 1.0); });
}

void set_callbacks(Driver& driver) { driver.SetCallbacks(1, nullptr, nullptr); }

void refresh_background(Driver& driver) {
  test::StubFramegrabber grabber;
  driver.RefreshBackGround(1, grabber);
}

/// Turns the detection on and off.
void switch_off(Driver& driver) {
  driver.SetProperty(ePropLiveliness, 1);
  driver.SetProperty(ePropLiveliness, 0);
}

void read_version_when_on(Driver& driver) {
  driver.m_pLiveDetection->Init();
  read_version(driver);
}

void write_level_when_on(Driver& driver) {
  driver.m_pLiveDetection->Init();
  write_level(driver);
}

struct OperationLocks : DriverFixture, ::testing::WithParamInterface<Operation> {};

TEST_P(OperationLocks, AreTakenAsOftenAsTheTableSays) {
  driver.m_pLiveDetection->Init();
  open();
  const LockCount locks(driver.m_cLock);
  GetParam().run(driver);
  EXPECT_EQ(locks.so_far(), GetParam().locks);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OperationLocks,
    ::testing::Values(
        Operation{"ReadChannels", 0, read<3>}, Operation{"ReadDetection", 1, read<6>},
        Operation{"ReadRedLED", 0, read<7>}, Operation{"ReadGreenLED", 0, read<8>},
        Operation{"ReadThreshold", 0, read<12>}, Operation{"ReadLowContrast", 0, read<13>},
        Operation{"WriteDetection", 1, write<6>}, Operation{"WriteRedLED", 1, write<7>},
        Operation{"WriteGreenLED", 1, write<8>}, Operation{"WriteThreshold", 0, write<12>},
        Operation{"WriteLowContrast", 0, write<13>}, Operation{"ReadFormat", 0, read_format},
        Operation{"WriteFormat", 0, write_format}, Operation{"ReadSecret", 0, read_secret},
        Operation{"WriteSecret", 0, write_secret}, Operation{"WriteCode", 0, write_code},
        Operation{"ReadVersion", 1, read_version}, Operation{"WriteLevel", 1, write_level},
        Operation{"Measure", 1, measure}, Operation{"FrameInformation", 0, frame_information},
        Operation{"EnableEvents", 0, enable_events}, Operation{"SetCamera", 0, set_camera},
        Operation{"SetFilter", 0, set_filter}, Operation{"SetResolution", 0, set_resolution},
        Operation{"SetAspectRatio", 0, set_aspect_ratio},
        Operation{"SetCallbacks", 0, set_callbacks},
        Operation{"RefreshBackground", 0, refresh_background}),
    [](const auto& row) { return std::string(row.param.name); });

/// An operation, and a function of a closed library that it calls.
struct LockedCall {
  const char* name;
  const char* function;
  void (*run)(Driver& driver);
  bool held;
};

struct LockedCalls : DriverFixture, ::testing::WithParamInterface<LockedCall> {};

TEST_P(LockedCalls, HoldTheLockOrNotWhileTheLibraryWorks) {
  open();
  bench.set_faults(std::string(GetParam().function) + " call 1 blocks until told");
  std::thread thread([&] { GetParam().run(driver); });
  bench.wait_until_blocked(GetParam().function);
  EXPECT_EQ(is_held(driver.m_cLock), GetParam().held);
  bench.release();
  thread.join();
}

INSTANTIATE_TEST_SUITE_P(
    Table, LockedCalls,
    ::testing::Values(
        LockedCall{"WriteDetection", "FakeFingerDetectionInitialize", write<6>, true},
        LockedCall{"WriteSecurityLevel", "FakeFingerDetectionSetPropertyA", write<6>, true},
        LockedCall{"WriteDetectionOff", "FakeFingerDetectionDestroyHandle", switch_off, true},
        LockedCall{"ReadNamed", "FakeFingerDetectionGetPropertyA", read_version_when_on, true},
        LockedCall{"WriteNamed", "FakeFingerDetectionSetPropertyA", write_level_when_on, true},
        LockedCall{"WriteLED", "ftrScanSetDiodesStatus", write<7>, true},
        LockedCall{"WriteLowContrast", "CalibrateSetOption", write<13>, false},
        LockedCall{"WriteCode", "ftrScanSetNewAuthorizationCode", write_code, false},
        LockedCall{"MeasureFrame", "ftrScanGetImageByVariableDose", measure, true},
        LockedCall{"Measure", "ContaminationDetection", measure, true}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Osv::lx
