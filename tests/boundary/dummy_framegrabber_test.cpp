#include "boundary/dummy_framegrabber.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace Osv::lx {
namespace {

/// Every operation but the destructor and `GetLastError`, with arguments that it must not touch.
std::vector<unsigned long> every_result(ClFramegrabber& grabber) {
  unsigned long size = 77;
  unsigned int value = 77;
  unsigned char byte = 77;
  unsigned char* block = nullptr;
  char text = 'x';
  double level = 7.0;
  std::vector<unsigned long> results = {
      grabber.GetInfo(&text, size),
      grabber.GetVersion(&text, size),
      grabber.FreeImage(nullptr),
      grabber.SetCamera(1, eCamera8, eColorModeGray),
      grabber.GetImage(1, &block),
      grabber.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
      grabber.StopCapture(1),
      grabber.SetFilter(1, eFilterNone),
      grabber.RefreshBackGround(1),
      grabber.SetResolution(1, ClImageResolution()),
      grabber.SetFGProperty(ePropRedLED, 1),
      grabber.GetFGProperty(ePropRedLED, value),
      grabber.Freeze(1, true),
      grabber.AvailableCameras(nullptr, size),
      grabber.AvailableColorModes(nullptr, size),
      grabber.AvailableDetections(nullptr, size),
      grabber.AvailableFilters(nullptr, size),
      grabber.AvailableProperties(nullptr, size),
      grabber.EnableEvents(1, 1, nullptr, nullptr),
      grabber.WriteEEPROM(&byte, size),
      grabber.ReadEEPROM(&byte, size),
      grabber.SetAspectRatio(1, 1.0, 1.0),
      grabber.AvailableDevices(nullptr, size),
      grabber.SetActiveDevice(0),
      grabber.GetActiveDevice(size),
      grabber.ShowDialog(eDlgIDs{}, 0),
      grabber.SaveSetting(1, 0),
      grabber.AvailableDialogs(0, nullptr, size),
      grabber.SetFGPropertyEx(1, ePropRedLED, 1),
      grabber.GetFGPropertyEx(1, ePropRedLED, size),
      grabber.AvailablePropertiesEx(nullptr, size),
      grabber.SetCallbacks(1, nullptr, nullptr),
      grabber.ContaminationDetection(1, &level),
      grabber.CurrentFrameInfo(0, 0, &level)};
  EXPECT_EQ(size, 77U);
  EXPECT_EQ(value, 77U);
  EXPECT_EQ(byte, 77);
  EXPECT_EQ(text, 'x');
  EXPECT_EQ(block, nullptr);
  EXPECT_EQ(level, 7.0);
  return results;
}

/// Calls an operation of a list with room for one element. True when neither was written to.
template <typename Element>
bool leaves_list_alone(unsigned long (ClFramegrabber::*operation)(Element*, unsigned long&)) {
  ClDummyFramegrabber dummy(2, "no scanner");
  Element list;
  std::memset(&list, 0x77, sizeof(list));
  const Element before = list;
  unsigned long count = 1;
  (dummy.*operation)(&list, count);
  return count == 1 && std::memcmp(&list, &before, sizeof(list)) == 0;
}

std::string last_error(ClFramegrabber& grabber) {
  std::vector<char> buffer(1024);
  unsigned long size = buffer.size();
  EXPECT_EQ(grabber.GetLastError(buffer.data(), size), 0U);
  return {buffer.data(), size};
}

TEST(Dummy, EveryOperationReportsTheFailureAndTouchesNothing) {
  ClDummyFramegrabber dummy(2, "no scanner");
  EXPECT_EQ(every_result(dummy), std::vector<unsigned long>(34, 0x10000002));
}

TEST(Dummy, ListsThatHaveRoomStayAsTheyWere) {
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableCameras));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableColorModes));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableDetections));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableFilters));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableProperties));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailablePropertiesEx));
  EXPECT_TRUE(leaves_list_alone(&ClFramegrabber::AvailableDevices));
}

TEST(Dummy, ADummyMadeWithNumberZeroReturnsZeroFromEveryOperation) {
  ClDummyFramegrabber dummy(0, "");
  EXPECT_EQ(every_result(dummy), std::vector<unsigned long>(34, 0));
}

TEST(Dummy, ANegativeNumberIsWidenedWithItsSign) {
  ClDummyFramegrabber dummy(-201, "no library");
  EXPECT_EQ(dummy.StopCapture(1), 0xFFFFFFFFFFFFFF37UL);
}

TEST(Dummy, ANullBufferIsRefusedWithTheLength) {
  ClDummyFramegrabber dummy(2, "ten chars!");
  unsigned long size = 50;
  EXPECT_EQ(dummy.GetLastError(nullptr, size), 0x10000011U);
  EXPECT_EQ(size, 10U);
}

TEST(Dummy, ABufferOfLengthPlusOneIsRefusedWithTheLength) {
  ClDummyFramegrabber dummy(2, "ten chars!");
  std::vector<char> buffer(11, 'x');
  unsigned long size = buffer.size();
  EXPECT_EQ(dummy.GetLastError(buffer.data(), size), 0x10000011U);
  EXPECT_EQ(size, 10U);
  EXPECT_EQ(buffer, std::vector<char>(11, 'x'));
}

TEST(Dummy, ABufferOfLengthPlusTwoIsZeroedWholeAndReceivesTheText) {
  ClDummyFramegrabber dummy(2, "ten chars!");
  std::vector<char> buffer(12, 'x');
  unsigned long size = buffer.size();
  EXPECT_EQ(dummy.GetLastError(buffer.data(), size), 0U);
  EXPECT_EQ(size, 10U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), std::string("ten chars!\0\0", 12));
}

TEST(Dummy, ALargerBufferIsZeroedToItsEnd) {
  ClDummyFramegrabber dummy(2, "ten chars!");
  std::vector<char> buffer(40, 'x');
  unsigned long size = buffer.size();
  EXPECT_EQ(dummy.GetLastError(buffer.data(), size), 0U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "ten chars!" + std::string(30, '\0'));
}

TEST(Dummy, AnEmptyTextHasTheSizeZeroAndIsNoFailure) {
  ClDummyFramegrabber dummy(2, nullptr);
  unsigned long size = 5;
  EXPECT_EQ(dummy.GetLastError(nullptr, size), 0U);
  EXPECT_EQ(size, 0U);
}

TEST(Dummy, ATextOf600CharactersIsKeptAsItsFirst511) {
  const std::string text(600, 'a');
  ClDummyFramegrabber dummy(2, text.c_str());
  EXPECT_EQ(last_error(dummy), text.substr(0, 511));
}

}  // namespace
}  // namespace Osv::lx
