#include <optional>

#include "capture/channel_bench.h"

namespace Osv::lx {
namespace {

using test::Client;
using testing::ElementsAre;
using testing::IsEmpty;
using utilities::ClSimpleBitmap;

/// What the strategy of a test does with a frame.
struct Script {
  std::optional<unsigned char> out_level = {};  ///< gray level of its image; otherwise the frame
  unsigned char first_pixel = 0;                ///< out: of the frame that it saw
};

/// A strategy that answers as told and writes itself into the journal.
class ScriptedDetection : public ClImageDetection {
 public:
  ScriptedDetection(test::Journal& journal, Script& script, unsigned int type, bool answer)
      : m_journal(journal), m_script(script), m_type(eCaptureModeIDs{type}), m_answer(answer) {}

  bool Detect(ClSimpleBitmap& in, ClSimpleBitmap& out) override {
    m_journal.add(out.Empty() ? "detect" : "detect with an old image");
    out = m_script.out_level ? test::gray_image(in.Width(), in.Height(), *m_script.out_level) : in;
    if (in.PixelSize() != 0) {
      m_script.first_pixel = *in.Pixel();
    }
    return m_answer;
  }
  eCaptureModeIDs Type() const override { return m_type; }

 private:
  test::Journal& m_journal;
  Script& m_script;
  eCaptureModeIDs m_type;
  bool m_answer;
};

struct Delivery : test::StillBench {
  Delivery() : frame(test::gray_image(120, 5, 100)) { start(eCaptureLive); }

  /// Delivers the frame with a strategy of this type and answer.
  std::vector<std::string> send(unsigned int type, bool answer, bool detect = true) {
    channel.m_pDetection = std::make_unique<ScriptedDetection>(journal, script, type, answer);
    channel.SendBitmapToClient(frame, detect);
    return journal.entries();
  }

  /// From here on, the first pixels of the images that the client gets, in their order.
  void note_first_pixels() {
    client.on_live = client.on_finger = [this](const Client::Image& image) {
      first_pixels.push_back(*image.pixels());
    };
  }

  ClSimpleBitmap frame;
  Script script;
  std::vector<int> first_pixels;
};

// Frames that the channel leaves as they are.

TEST_F(Delivery, InLiveModeTheFrameIsShownAndNothingElse) {
  EXPECT_THAT(send(0, true), ElementsAre("live"));
}

TEST_F(Delivery, InLiveModeWithoutALiveCallbackNothingIsDelivered) {
  channel.m_pfnLiveImage = nullptr;
  EXPECT_THAT(send(0, true), IsEmpty());
}

TEST_F(Delivery, InPreviewTheFrameIsShownAndNothingElse) {
  EXPECT_THAT(send(4, true), ElementsAre("live"));
}

TEST_F(Delivery, InPlainModeAFinishedImageFollowsTheLiveImage) {
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "finger 1"));
}

TEST_F(Delivery, AnUnfinishedImageIsShownLiveAlone) {
  EXPECT_THAT(send(3, false), ElementsAre("live", "detect"));
}

TEST_F(Delivery, InRolledModeTheFrameIsNotShown) {
  EXPECT_THAT(send(2, true), ElementsAre("detect", "finger 2"));
}

TEST_F(Delivery, AFrameThatNeedsNoDetectionIsTheFinishedImage) {
  client.on_finger = [this](const Client::Image& image) {
    EXPECT_EQ(image.pixels(), frame.Pixel());
  };
  EXPECT_THAT(send(1, false, false), ElementsAre("live", "finger 1"));
}

TEST_F(Delivery, TheLiveImageIsTheFrameItself) {
  client.on_live = [this](const Client::Image& image) { EXPECT_EQ(image.pixels(), frame.Pixel()); };
  EXPECT_THAT(send(0, true), ElementsAre("live"));
}

TEST_F(Delivery, TheFinishedImageIsTheStrategysAndNotTheFrame) {
  script.out_level = 30;
  note_first_pixels();
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "finger 1"));
  EXPECT_THAT(first_pixels, ElementsAre(100, 30));
}

TEST_F(Delivery, TheFrameIsNotChangedWhetherTheChannelIsDirtyOrClean) {
  frame = test::noise_image(120, 5, 3);
  const ClSimpleBitmap before = frame;
  for (const bool dirty : {true, false}) {
    channel.m_bDirty = dirty;
    send(1, true);
    EXPECT_TRUE(test::same_block(frame, before));
    EXPECT_EQ(channel.m_bDirty, dirty);
  }
}

// That an entry stands in the journal proves the user pointer: the client is found through it.

struct CallbackArguments : Delivery {
  CallbackArguments() { channel.m_nChannel = 3; }

  void expect_arguments(const std::string& entry) {
    EXPECT_EQ(journal.entries().back(), entry);
    EXPECT_EQ(client.handle, kHandle);
    EXPECT_EQ(client.channel, 3U);
  }
};

TEST_F(CallbackArguments, AreHandleChannelAndUserPointerForALiveImage) {
  send(0, true);
  expect_arguments("live");
}

TEST_F(CallbackArguments, AreHandleChannelAndUserPointerForAFinger) {
  channel.m_pfnLiveImage = nullptr;
  send(1, true);
  expect_arguments("finger 1");
}

TEST_F(CallbackArguments, AreHandleChannelAndUserPointerForAnError) {
  channel.SendError("no scanner", 2);
  expect_arguments("error: no scanner error: 2");
}

TEST_F(CallbackArguments, AreHandleChannelAndUserPointerForAWarning) {
  channel.SendWarning("dirty platen", 5);
  expect_arguments("warning: dirty platen");
}

TEST_F(Delivery, WhileDetectionIsSuppressedFramesAreShownAndTheStrategySeesNone) {
  scanner.suppresses = true;
  EXPECT_THAT(send(1, true), ElementsAre("live"));
  scanner.suppresses = false;
  EXPECT_THAT(send(1, true), ElementsAre("live", "live", "detect", "finger 1"));
}

TEST_F(Delivery, AFailingStrategyFailsTheDelivery) {
  struct Failing : ClImageDetection {
    bool Detect(ClSimpleBitmap& /*in*/, ClSimpleBitmap& /*out*/) override {
      throw CXMemoryAllocException();
    }
    eCaptureModeIDs Type() const override { return eCapturePlain; }
  };
  channel.m_pDetection = std::make_unique<Failing>();
  EXPECT_THROW(channel.SendBitmapToClient(frame, true), CXMemoryAllocException);
}

TEST_F(Delivery, ANullFingerCallbackIsSkipped) {
  channel.m_pfnFinger = nullptr;
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
  EXPECT_THAT(send(1, true, false), ElementsAre("live", "detect", "live"));
}

// The check of the middle row.

TEST_F(Delivery, AnImageThatIsBlackAlongItsMiddleRowIsNotDelivered) {
  test::fill_row(frame, 2, 0);
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
}

TEST_F(Delivery, OnlyTheMiddleRowCounts) {
  frame.SetBlack();
  test::row_of(frame, 2)[60] = 1;
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "finger 1"));
}

TEST_F(Delivery, TheMarginsOfTheMiddleRowDoNotCount) {
  test::fill_row(frame, 2, 0);
  test::row_of(frame, 2)[49] = 255;
  test::row_of(frame, 2)[70] = 255;
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
}

TEST_F(Delivery, TheBytesBesideTheMarginsCount) {
  for (const std::size_t byte : {50UL, 69UL}) {
    test::fill_row(frame, 2, 0);
    test::row_of(frame, 2)[byte] = 1;
    send(1, true);
  }
  EXPECT_EQ(journal.count("finger 1"), 2);
}

TEST_F(Delivery, AnImage100PixelsWideIsNeverDelivered) {
  frame = test::gray_image(100, 5, 100);
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
}

TEST_F(Delivery, NeitherIsANarrowerOne) {
  for (const unsigned long width : {1UL, 60UL, 99UL}) {
    frame = test::gray_image(width, 5, 100);
    send(1, true);
  }
  EXPECT_EQ(journal.count("detect"), 3);
  EXPECT_EQ(journal.count("finger 1"), 0);
}

TEST_F(Delivery, AnImage101PixelsWideIsJudgedByByte50Alone) {
  frame = test::gray_image(101, 5, 100);
  test::row_of(frame, 2)[50] = 0;
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
  test::row_of(frame, 2)[50] = 1;
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "live", "detect", "finger 1"));
}

TEST_F(Delivery, AnImageWithoutRowsIsNotDelivered) {
  frame.Create(120, 0, 8, 0);
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect"));
}

TEST_F(Delivery, AnEmptyImageIsNeitherShownNorDelivered) {
  frame.Clear();
  EXPECT_THAT(send(1, true), ElementsAre("detect"));
}

// Frames that the channel turns.

struct ProcessedDelivery : Delivery {
  ProcessedDelivery() {
    channel.processes = true;
    for (unsigned long y = 0; y < frame.Height(); ++y) {
      test::fill_row(frame, y, static_cast<unsigned char>(10 * y + 10));
    }
  }
};

TEST_F(ProcessedDelivery, TheFrameIsTurnedWhetherTheChannelIsDirtyOrClean) {
  note_first_pixels();
  for (const bool dirty : {true, false}) {
    channel.m_bDirty = dirty;
    send(0, true);
  }
  EXPECT_THAT(first_pixels, ElementsAre(50, 10));  // the second turn brings the frame back
}

TEST_F(ProcessedDelivery, TheStrategySeesTheFrameTurned) {
  send(2, true);
  EXPECT_EQ(script.first_pixel, 50);
}

TEST_F(ProcessedDelivery, AFrameThatNeedsNoDetectionIsDeliveredTurned) {
  note_first_pixels();
  EXPECT_THAT(send(1, true, false), ElementsAre("live", "finger 1"));
  EXPECT_THAT(first_pixels, ElementsAre(50, 50));
}

TEST_F(ProcessedDelivery, APreviewIsDeliveredTurned) {
  note_first_pixels();
  EXPECT_THAT(send(4, false), ElementsAre("finger 4"));
  EXPECT_THAT(first_pixels, ElementsAre(50));
}

TEST_F(ProcessedDelivery, TheFinishedImageIsTheStrategysAndNotTheFrame) {
  script.out_level = 30;
  note_first_pixels();
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "finger 1"));
  EXPECT_THAT(first_pixels, ElementsAre(50, 30));
}

TEST_F(ProcessedDelivery, TheWorkingImageThatIsShownIsTheStrategysAndNotTheFrame) {
  script.out_level = 30;
  note_first_pixels();
  EXPECT_THAT(send(2, false), ElementsAre("detect", "live"));
  EXPECT_THAT(first_pixels, ElementsAre(30));
}

TEST_F(ProcessedDelivery, ADirtyChannelTakesTheFrameAsItCameForItsBackground) {
  const ClSimpleBitmap before = frame;
  channel.m_bDirty = true;
  send(0, true);
  EXPECT_TRUE(test::same_block(channel.m_Background, before));
  EXPECT_FALSE(channel.m_bDirty);
}

TEST_F(ProcessedDelivery, ACleanChannelKeepsItsBackground) {
  channel.m_bDirty = false;
  send(0, true);
  EXPECT_TRUE(channel.m_Background.Empty());
}

TEST_F(ProcessedDelivery, APreviewIsFinishedAndNotShown) {
  EXPECT_THAT(send(4, false), ElementsAre("finger 4"));
}

TEST_F(ProcessedDelivery, ABlankPreviewGoesNowhere) {
  test::fill_row(frame, 2, 0);
  EXPECT_THAT(send(4, false), IsEmpty());
}

TEST_F(ProcessedDelivery, AFinishedImageFollowsTheLiveImage) {
  EXPECT_THAT(send(1, true), ElementsAre("live", "detect", "finger 1"));
}

TEST_F(ProcessedDelivery, TheStrategysWorkingImageIsShown) {
  EXPECT_THAT(send(2, false), ElementsAre("detect", "live"));
  EXPECT_THAT(send(1, false), ElementsAre("detect", "live", "live", "detect", "live"));
}

TEST_F(ProcessedDelivery, AFinishedRolledImageIsNotShownLive) {
  EXPECT_THAT(send(2, true), ElementsAre("detect", "finger 2"));
}

TEST_F(ProcessedDelivery, WhileDetectionIsSuppressedThereIsNoWorkingImageToShow) {
  scanner.suppresses = true;
  EXPECT_THAT(send(1, true), ElementsAre("live"));
}

TEST_F(ProcessedDelivery, WithoutALiveCallbackNothingIsShown) {
  channel.m_pfnLiveImage = nullptr;
  EXPECT_THAT(send(2, false), ElementsAre("detect"));
}

// Errors and warnings.

TEST_F(Delivery, AnErrorIsTextAndNumber) {
  channel.SendError("Failed to initialize KR9-scanner.", 7);
  EXPECT_THAT(journal.entries(), ElementsAre("error: Failed to initialize KR9-scanner. error: 7"));
}

TEST_F(Delivery, AnErrorWithoutATextHasOneOfItsOwn) {
  channel.SendError(nullptr, 5);
  EXPECT_THAT(journal.entries(), ElementsAre("error: Scanner capturing failed error: 5"));
}

TEST_F(Delivery, ANegativeNumberKeepsItsSign) {
  channel.SendError("engine", -201);
  EXPECT_THAT(journal.entries(), ElementsAre("error: engine error: -201"));
}

TEST_F(Delivery, AnErrorWithoutACallbackGoesNowhere) {
  channel.m_pfnError = nullptr;
  channel.SendError("text", 5);
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(Delivery, AWarningIsItsTextAlone) {
  channel.SendWarning("dirty platen", 5);
  EXPECT_THAT(journal.entries(), ElementsAre("warning: dirty platen"));
}

TEST_F(Delivery, AWarningWithoutACallbackGoesNowhere) {
  channel.m_pfnWarning = nullptr;
  channel.SendWarning("text", 5);
  EXPECT_THAT(journal.entries(), IsEmpty());
}

// The real strategies, end to end.

TEST_F(Delivery, APlainCaptureDeliversEachPassingFrameInItsOwnPass) {
  ask_to_stop();
  stop_after(2);
  capture(eCapturePlain);
  EXPECT_THAT(from("GetLiveBitmap"),
              ElementsAre("GetLiveBitmap", "live", "finger 1", "UnLock", "wait 0", "Lock",
                          "GetLiveBitmap", "live", "finger 1", "UnLock", "wait 0", "Lock",
                          "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(Delivery, FramesThatAreSuppressedDoNotAdvanceAStrategyWithState) {
  channel.SetDetection(eCaptureFastPlain);
  for (const int level : {255, 100, 255}) {
    scanner.suppresses = level == 100;
    frame = test::gray_image(120, 5, static_cast<unsigned char>(level));
    channel.SendBitmapToClient(frame, true);
  }
  EXPECT_THAT(journal.entries(), ElementsAre("live", "live", "live"));
}

}  // namespace
}  // namespace Osv::lx
