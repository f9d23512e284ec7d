#include "client/client_fixture.h"

namespace Osv::client {
namespace {

constexpr char kIncorrect[] = "Incorrect property or frame grabber does not support";

class ClientProperties : public ClientTest {
 protected:
  unsigned int get(ePropertyIDs property) {
    unsigned int value = 7;
    EXPECT_EQ(grabber->GetFGProperty(property, value), 0U);
    return value;
  }
};

TEST_F(ClientProperties, ThatAreListedCanAllBeRead) {
  std::vector<ePropertyIDs> list(6);
  unsigned long count = list.size();
  ASSERT_EQ(grabber->AvailableProperties(list.data(), count), 0U);
  for (const ePropertyIDs property : list) {
    EXPECT_EQ(get(property), property == ePropChannelCount ? 1U : 0U) << property;
  }
}

TEST_F(ClientProperties, ThatAreSwitchesReadAs100Or0) {
  for (const ePropertyIDs property :
       {ePropLiveliness, ePropRedLED, ePropGreenLED, ePropLowContrastImage}) {
    EXPECT_EQ(grabber->SetFGProperty(property, 1), 0U);
    EXPECT_EQ(get(property), 100U);
    EXPECT_EQ(grabber->SetFGProperty(property, 0), 0U);
    EXPECT_EQ(get(property), 0U);
  }
}

TEST_F(ClientProperties, TheExtendedOperationsReachTheSameOnes) {
  unsigned long value = 0x500000000UL;
  EXPECT_EQ(grabber->SetFGPropertyEx(1, ePropGreenLED, 3), 0U);
  EXPECT_EQ(grabber->GetFGPropertyEx(0, ePropGreenLED, value), 0U);
  EXPECT_EQ(value, 0x500000064UL);
}

TEST_F(ClientProperties, ThatAreUnknownAreRefusedWith12) {
  unsigned int value = 7;
  EXPECT_EQ(grabber->GetFGProperty(static_cast<ePropertyIDs>(5), value), 0x1000000CU);
  EXPECT_EQ(last_text(), kIncorrect);
  EXPECT_EQ(grabber->SetFGProperty(static_cast<ePropertyIDs>(5), 1), 0x1000000CU);
  EXPECT_EQ(value, 7U);
}

TEST_F(ClientProperties, TheNumberOfChannelsIsReadOnly) {
  EXPECT_EQ(grabber->SetFGProperty(ePropChannelCount, 2), 0x10000012U);
  EXPECT_EQ(last_text(), "The property is read only");
}

TEST_F(ClientProperties, AnLEDIsLitOnTheScannerAndStaysLitThroughAFrame) {
  ASSERT_EQ(grabber->SetFGProperty(ePropRedLED, 1), 0U);
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(bench.state(0).red, 255U);
  EXPECT_EQ(bench.state(0).green, 0U);
}

TEST_F(ClientProperties, AnLEDThatCannotBeSwitchedIsReportedWithTheScannersNumber) {
  ASSERT_EQ(get(ePropRedLED), 0U);
  bench.set_faults("ftrScanSetDiodesStatus fails with 0x20000004");
  EXPECT_EQ(grabber->SetFGProperty(ePropRedLED, 1), 0x30000004U);
  EXPECT_EQ(last_text(), "The hardware is incompatible");
}

TEST_F(ClientProperties, TheLowContrastImageStopsFingerDetectionAndDeliversLiveFrames) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  ASSERT_EQ(grabber->SetFGProperty(ePropLowContrastImage, 1), 0U);
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 5));
  EXPECT_EQ(recorder.count(eEvent::Finger), 0U);
  ASSERT_EQ(grabber->SetFGProperty(ePropLowContrastImage, 0), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Finger));
}

using ClientContamination = ClientTest;

TEST_F(ClientContamination, OfACleanPlatenIsLittleAndOfAFingerMuch) {
  double clean = -1;
  double finger = -1;
  EXPECT_EQ(grabber->ContaminationDetection(kChannel, &clean), 0U);
  bench.set_timeline(simulator::Timeline::settled_finger());
  EXPECT_EQ(grabber->ContaminationDetection(kChannel, &finger), 0U);
  EXPECT_GE(clean, 0);
  EXPECT_LT(clean, 1);
  EXPECT_GT(finger, 5);
}

TEST_F(ClientContamination, IsRefusedForAnotherChannelAndForNothingToWriteTo) {
  double level = 7;
  EXPECT_EQ(grabber->ContaminationDetection(2, &level), 0x10000004U);
  EXPECT_EQ(last_text(), "Incorrect channel number for frame grabber");
  EXPECT_EQ(grabber->ContaminationDetection(kChannel, nullptr), 0x1000003CU);
  EXPECT_EQ(last_text(), "");
  EXPECT_EQ(level, 7);
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
}

TEST_F(ClientContamination, CanBeMeasuredDuringCapture) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  double level = -1;
  EXPECT_EQ(grabber->ContaminationDetection(kChannel, &level), 0U);
  EXPECT_GE(level, 0);
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
}

}  // namespace
}  // namespace Osv::client
