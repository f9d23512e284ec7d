// A channel in rolled mode, with the strategy that really assembles the print.

#include <memory>
#include <utility>

#include "capture/channel_bench.h"
#include "detection/rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using test::Client;
using testing::ElementsAre;
using testing::IsEmpty;
using utilities::ClSimpleBitmap;

constexpr int kPlaten = 250;

struct RolledCapture : test::StillBench {
  RolledCapture() {
    const auto note = [this](const Client::Image& image) { shown.push_back(*image.pixels()); };
    client.on_live = note;
    client.on_finger = note;
  }

  /// Delivers one frame of each gray level.
  void send(const std::vector<int>& levels) {
    for (const int level : levels) {
      ClSimpleBitmap frame = test::gray_image(120, 5, static_cast<unsigned char>(level));
      channel.SendBitmapToClient(frame, true);
    }
  }

  /// Makes the scanner deliver one frame of each gray level and then ask for the stop.
  void scan(std::vector<int> levels) {
    scanner.when("GetLiveBitmap", [this, script = std::move(levels)](ClSimpleBitmap& bitmap) {
      const auto pass = static_cast<std::size_t>(journal.count("GetLiveBitmap")) - 1;
      if (pass == script.size()) {
        ask_to_stop();
      } else if (script[pass] == kWarns) {
        throw ClLXWarning("dirty platen", 5);
      } else {
        bitmap = test::gray_image(120, 5, static_cast<unsigned char>(script[pass]));
      }
    });
  }

  static constexpr int kWarns = -1;

  std::vector<int> shown;  ///< the gray levels of the images that the client got
};

// Frames that the channel leaves as they are.

TEST_F(RolledCapture, TheStrategyIsTheOneThatKeepsTheDarkestColumns) {
  start(eCaptureRolled);
  EXPECT_NE(dynamic_cast<ClRolledFingerLX1*>(channel.m_pDetection.get()), nullptr);
  EXPECT_EQ(channel.GetCaptureMode(), eCaptureRolled);
}

TEST_F(RolledCapture, NothingIsShownUntilTheFingerIsLiftedAndThenThePrint) {
  start(eCaptureRolled);
  send({kPlaten, 150, 90, 120});
  EXPECT_THAT(journal.entries(), IsEmpty());
  send({kPlaten, kPlaten, kPlaten});
  EXPECT_THAT(journal.entries(), ElementsAre("finger 2"));
  EXPECT_THAT(shown, ElementsAre(90));
}

TEST_F(RolledCapture, EachFingerGivesOnePrint) {
  start(eCaptureRolled);
  send({kPlaten, 150, 90, kPlaten, kPlaten, 150, 110, kPlaten});
  EXPECT_THAT(journal.entries(), ElementsAre("finger 2", "finger 2"));
  EXPECT_THAT(shown, ElementsAre(90, 110));
}

TEST_F(RolledCapture, APrintThatIsBlackAlongItsMiddleRowIsNotDelivered) {
  start(eCaptureRolled);
  send({kPlaten, 150, 0, kPlaten});
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(RolledCapture, AFrameThatNeedsNoDetectionIsThePrint) {
  start(eCaptureRolled);
  ClSimpleBitmap frame = test::gray_image(120, 5, 33);
  channel.SendBitmapToClient(frame, false);
  EXPECT_THAT(journal.entries(), ElementsAre("finger 2"));
  EXPECT_THAT(shown, ElementsAre(33));
}

TEST_F(RolledCapture, WhileDetectionIsSuppressedTheRollStandsStill) {
  start(eCaptureRolled);
  send({kPlaten, 150, 120});
  scanner.suppresses = true;
  send({60, kPlaten});
  scanner.suppresses = false;
  EXPECT_THAT(journal.entries(), IsEmpty());
  send({kPlaten});
  EXPECT_THAT(shown, ElementsAre(120));
}

TEST_F(RolledCapture, ARollDoesNotOutliveItsCapture) {
  start(eCaptureRolled);
  send({kPlaten, 150, 120});
  channel.StopCapture();
  start(eCaptureRolled);
  send({kPlaten});
  EXPECT_THAT(journal.entries(), IsEmpty());
  send({150, 130, kPlaten});
  EXPECT_THAT(shown, ElementsAre(130));
}

// Frames that the channel turns: the client sees the print grow.

struct ProcessedRolledCapture : RolledCapture {
  ProcessedRolledCapture() { channel.processes = true; }
};

TEST_F(ProcessedRolledCapture, TheLiveViewShowsTheFramesAndThenThePrintBeingAssembled) {
  start(eCaptureRolled);
  send({100, kPlaten, 240, 150, 90, 120});
  EXPECT_THAT(journal.entries(), ElementsAre("live", "live", "live", "live", "live", "live"));
  EXPECT_THAT(shown, ElementsAre(100, kPlaten, 240, 150, 90, 90));
}

TEST_F(ProcessedRolledCapture, TheFinishedPrintIsNotShownLive) {
  start(eCaptureRolled);
  send({kPlaten, 150, 90, kPlaten});
  EXPECT_THAT(journal.entries(), ElementsAre("live", "live", "live", "finger 2"));
}

TEST_F(ProcessedRolledCapture, AFrameThatNeedsNoDetectionIsThePrint) {
  start(eCaptureRolled);
  ClSimpleBitmap frame = test::gray_image(120, 5, 33);
  channel.SendBitmapToClient(frame, false);
  EXPECT_THAT(journal.entries(), ElementsAre("finger 2"));
}

// The whole loop.

TEST_F(RolledCapture, TheLoopFetchesFramesAndDeliversThePrintInThePassThatEndsTheRoll) {
  scan({kPlaten, 150, 90, kPlaten});
  capture(eCaptureRolled);
  EXPECT_THAT(from("finger 2"), ElementsAre("finger 2", "UnLock", "wait 0", "Lock", "GetLiveBitmap",
                                            "UnLock", "wait 0", "Lock", "StopLiveCapturing",
                                            "UninitializeSDK", "stop", "UnLock"));
  EXPECT_EQ(journal.count("live"), 0);
}

TEST_F(RolledCapture, AScannerThatDetectsByItselfIsNotAskedFor) {
  scanner.detects_itself = true;
  scan({kPlaten, 150, 90, kPlaten});
  capture(eCaptureRolled);
  EXPECT_EQ(journal.count("WaitForPlainFinger"), 0);
  EXPECT_EQ(journal.count("finger 2"), 1);
}

TEST_F(RolledCapture, AWarningCostsAFrameButNotTheRoll) {
  scan({kPlaten, 150, 90, kWarns, 120, kPlaten});
  capture(eCaptureRolled);
  EXPECT_EQ(journal.count("warning: dirty platen"), 1);
  EXPECT_THAT(shown, ElementsAre(90));
}

}  // namespace
}  // namespace Osv::lx
