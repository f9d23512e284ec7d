#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr char kDisconnected[] = "KR9 scanner is disconnected from the host, error: 2 error: 2";

/// Captures in which a frame fails. Frame call 1 shapes the image, call 2 is the first live image.
class CaptureFailure : public ClientTest {
 protected:
  /// Captures live with a fault plan until capture has ended by itself.
  void capture_with(const std::string& faults) {
    bench.set_faults(faults);
    ASSERT_EQ(start(eCaptureLive), 0U);
    ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  }

  static std::string frame(const std::string& words) { return kFrameCall + (' ' + words); }

  std::string error_text() const {
    const Events errors = recorder.of(eEvent::Error);
    return errors.size() == 1 ? errors.front().text : std::to_string(errors.size()) + " errors";
  }

  static bool is_white(const Image& image) {
    const lx::ImageView view(image.data());
    const unsigned char* const pixels = view.pixels();
    return std::all_of(pixels, pixels + view.stride() * view.height(),
                       [](unsigned char pixel) { return pixel == 255; });
  }
};

TEST_F(CaptureFailure, UnpluggingEndsCaptureWithOneErrorAndThenTheStop) {
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live && recorder.count(eEvent::Live) == 1) {
      bench.unplug(0);
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  EXPECT_THAT(recorder.kinds(),
              ElementsAre(eEvent::Start, eEvent::Live, eEvent::Live, eEvent::Error, eEvent::Stop));
  EXPECT_EQ(error_text(), kDisconnected);
  EXPECT_EQ(last_text(), "KR9 scanner is disconnected from the host, error: 2");
}

TEST_F(CaptureFailure, AfterReplugStartWorksAgainAndReadsTheCalibrationAnew) {
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live && recorder.count(eEvent::Live) == 0) {
      bench.unplug(0);
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  ASSERT_EQ(stop(), 0U);
  recorder.inside = nullptr;
  recorder.clear();
  bench.plug_in_again(0);
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  EXPECT_EQ(bench.count("CalibrateSetData"), 2U);
  unsigned long index = 7;
  EXPECT_EQ(grabber->GetActiveDevice(index), 0U);
  EXPECT_EQ(index, 0U);
}

TEST_F(CaptureFailure, WhileUnpluggedStartFailsAndNothingIsCaptured) {
  capture_with(frame("call 3 fails with 259"));
  stop();
  bench.unplug(0);
  recorder.clear();
  EXPECT_EQ(start(eCaptureLive), 0x10000002U);
  EXPECT_EQ(last_text(), "Failed start capturing.");
  EXPECT_TRUE(recorder.all().empty());
}

TEST_F(CaptureFailure, Error31IsADisconnectionWithTheNumber2) {
  capture_with(frame("call 3 fails with 31"));
  EXPECT_EQ(error_text(), kDisconnected);
}

TEST_F(CaptureFailure, ADisconnectionClosesTheScanner) {
  capture_with(frame("call 3 fails with 2"));
  EXPECT_EQ(bench.state(0).open_handles, 0U);
}

TEST_F(CaptureFailure, AnyOtherErrorOfTheScannerIsReportedWithItsNumber) {
  capture_with(frame("call 3 fails with 1460"));
  EXPECT_EQ(error_text(), "KR9 scanner. Scanner error: 1460 error: 1460");
  EXPECT_EQ(last_text(), "KR9 scanner. Scanner error: 1460");
}

TEST_F(CaptureFailure, AnyOtherErrorLeavesTheScannerOpen) {
  capture_with(frame("call 3 fails with 1460"));
  EXPECT_EQ(bench.state(0).open_handles, 1U);
  stop();
  const unsigned int openings = bench.count("ftrScanSetOptions");
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_EQ(bench.count("ftrScanSetOptions"), openings);
}

TEST_F(CaptureFailure, AScannersNumberWithATextOfItsOwnHasItOnlyAsTheLastError) {
  capture_with(frame("call 3 fails with 0x20000004"));
  EXPECT_EQ(error_text(), "KR9 scanner. Scanner error: 536870916 error: 536870916");
  EXPECT_EQ(last_text(), "The hardware is incompatible");
}

TEST_F(CaptureFailure, AfterAnErrorStartIsRefusedUntilTheClientHasStopped) {
  capture_with(frame("call 3 fails with 1460"));
  EXPECT_EQ(start(eCaptureLive), 0x1000004DU);
  EXPECT_EQ(last_text(), "");
  EXPECT_EQ(stop(), 0U);
  bench.clear_faults();
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live));
}

TEST_F(CaptureFailure, AFrameThatTheScannerCouldNotTakeIsShownWhite) {
  recorder.keep_images();
  bench.set_timeline(simulator::Timeline::settled_finger());
  bench.set_faults(frame("call 3 fails with 4306"));
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  const Events frames = recorder.of(eEvent::Live);
  EXPECT_FALSE(is_white(frames[0].image));
  EXPECT_TRUE(is_white(frames[1].image));
  EXPECT_FALSE(is_white(frames[2].image));
}

TEST_F(CaptureFailure, AFrameThatMayBeUsedAllTheSameRepeatsTheOneBefore) {
  recorder.keep_images();
  bench.set_faults(frame("call 3 fails with 0x20000001"));
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  const Events frames = recorder.of(eEvent::Live);
  EXPECT_TRUE(frames[0].image == frames[1].image);
  EXPECT_FALSE(frames[1].image == frames[2].image);
}

TEST_F(CaptureFailure, ABusyScannerIsAskedAgainAndTheFrameComes) {
  bench.set_faults(frame("call 3 fails with 121"));
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
  EXPECT_EQ(sleeps.timed_waits().size(), 1U);
}

TEST_F(CaptureFailure, AScannerThatStaysBusyEndsCaptureAfter20TriesOf100Milliseconds) {
  capture_with(frame("from call 3 on fails with 121"));
  EXPECT_EQ(sleeps.timed_waits().size(), 20U);
  EXPECT_THAT(sleeps.timed_waits(), Each(::testing::Le(std::chrono::milliseconds(100))));
  EXPECT_EQ(error_text(), "KR9 scanner. Scanner error: 121 error: 121");
  EXPECT_EQ(bench.count(kFrameCall), 22U);
}

TEST_F(CaptureFailure, AFailedFrameOfThePreparationEndsCaptureWithTheScannersNumber) {
  capture_with(frame("call 1 fails with 1460"));
  EXPECT_EQ(error_text(), "Capture raw image failed. error: 1460");
}

TEST_F(CaptureFailure, ASizeThatCannotBeReadEndsCaptureWithTheScannersNumber) {
  capture_with("ftrScanGetImageSize fails with 7");
  EXPECT_EQ(error_text(), "Couldn't read the image size of scanner. error: 7");
}

TEST_F(CaptureFailure, ASizeThatNoImageHasEndsCaptureWithTheNumberOfTheFamily) {
  capture_with("ftrScanGetImageSize gives -1 x 480");
  EXPECT_EQ(error_text(), "memory allocation failed error: 1");
}

TEST_F(CaptureFailure, AnEngineThatFailsEndsCaptureWithItsTextAndNegativeNumber) {
  capture_with("Calibrate call 4 fails with -5");
  EXPECT_THAT(error_text(),
              ::testing::EndsWith(" Error domain [ CAL ]. Error code [ -5 ] error: -5"));
}

TEST_F(CaptureFailure, TheErrorGoesNowhereWithoutAnErrorCallback) {
  bench.set_faults(frame("call 3 fails with 1460"));
  ASSERT_EQ(grabber->StartCapture(kHandle, kChannel, eCaptureLive, &Recorder::on_live, nullptr,
                                  nullptr, nullptr, &recorder),
            0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  EXPECT_THAT(recorder.kinds(), ElementsAre(eEvent::Start, eEvent::Live, eEvent::Stop));
}

}  // namespace
}  // namespace Osv::client
