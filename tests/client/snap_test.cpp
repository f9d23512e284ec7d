#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using Snapping = ClientTest;

TEST_F(Snapping, TakesOneFrameForTheShapeAndOneForTheImage) {
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(bench.count(kFrameCall), 2U);
}

TEST_F(Snapping, TheBlockIsTheClientsUntilItGivesItBack) {
  unsigned char* first = nullptr;
  unsigned char* second = nullptr;
  ASSERT_EQ(grabber->GetImage(kChannel, &first), 0U);
  const Image copy(first, first + lx::ImageView(first).block_size());
  ASSERT_EQ(grabber->GetImage(kChannel, &second), 0U);
  EXPECT_NE(first, second);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 2));
  stop();
  EXPECT_TRUE(std::equal(copy.begin(), copy.end(), first));
  EXPECT_EQ(grabber->FreeImage(first), 0U);
  EXPECT_EQ(grabber->FreeImage(second), 0U);
}

TEST_F(Snapping, GivingNothingBackDoesNothing) { EXPECT_EQ(grabber->FreeImage(nullptr), 0U); }

TEST_F(Snapping, ANullPointerIsRefusedAndTheScannerNotTouched) {
  EXPECT_EQ(grabber->GetImage(kChannel, nullptr), 0x1000003CU);
  EXPECT_EQ(last_text(), "GetImage function failed.");
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
}

TEST_F(Snapping, AChannelThatIsNotThereIsRefused) {
  unsigned char* image = nullptr;
  for (const unsigned int channel : {0U, 2U}) {
    EXPECT_EQ(grabber->GetImage(channel, &image), 0x10000004U);
    EXPECT_EQ(last_text(), "Incorrect channel number for frame grabber");
  }
}

TEST_F(Snapping, AFailureOfThePreparationIsReportedAndNothingDelivered) {
  bench.set_faults(std::string(kFrameCall) + " call 1 fails with 1460");
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber->GetImage(kChannel, &image), 0x100005B4U);
  EXPECT_EQ(last_text(), "Capture raw image failed.");
  EXPECT_EQ(image, nullptr);
}

TEST_F(Snapping, AnUnpluggedScannerIsADisconnection) {
  ASSERT_FALSE(snap().empty());
  bench.set_faults(std::string(kFrameCall) + " call 2 fails with 259");
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber->GetImage(kChannel, &image), 0x10000002U);
  EXPECT_EQ(last_text(), "KR9 scanner is disconnected from the host, error: 2");
}

TEST_F(Snapping, AScannersNumberWithATextOfItsOwnComesWithIt) {
  bench.set_faults(std::string(kFrameCall) + " call 2 fails with 0x20000005");
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber->GetImage(kChannel, &image), 0x30000005U);
  EXPECT_EQ(last_text(), "The firmware is incompatible");
}

TEST_F(Snapping, AScannerThatNamesNoErrorMakesTheFailedOperationReturn0AndDeliverNothing) {
  bench.set_faults("ftrScanGetImageSize fails with 0");
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber->GetImage(kChannel, &image), 0U);
  EXPECT_EQ(image, nullptr);
}

TEST_F(Snapping, CorruptCalibrationDataAreReportedWith37) {
  std::vector<unsigned char> memory = bench.memory(0);
  const std::size_t size_field = 21U + memory[20];
  std::fill_n(memory.begin() + static_cast<std::ptrdiff_t>(size_field), 4, 0);
  bench.set_memory(0, memory);
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber->GetImage(kChannel, &image), 0x10000025U);
  EXPECT_EQ(last_text(), "The calibration data is corrupt.");
}

TEST_F(Snapping, AnEngineThatRefusesItsDataIsReportedWithItsNegativeNumber) {
  bench.set_faults("CalibrateSetData fails with -6");
  unsigned char* image = nullptr;
  const unsigned long result = grabber->GetImage(kChannel, &image);
  EXPECT_EQ(lx::ErrorNumber(result), -6);
  EXPECT_THAT(last_text(), ::testing::EndsWith(" Error domain [ CAL ]. Error code [ -6 ]"));
}

}  // namespace
}  // namespace Osv::client
