#include <cstring>
#include <set>
#include <thread>

#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using LiveCapture = ClientTest;

TEST_F(LiveCapture, DeliversFrameAfterFrameAndNoFinger) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 10));
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(recorder.count(eEvent::Finger), 0U);
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
  EXPECT_EQ(recorder.count(eEvent::Warning), 0U);
}

TEST_F(LiveCapture, AFrameIsAnUprightGrayImageOf500DotsPerInch) {
  recorder.keep_images();
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  stop();
  const Image image = recorder.of(eEvent::Live).front().image;
  const lx::ImageView view(image.data());
  EXPECT_EQ(view.width(), std::size_t{simulator::kFinalWidth});
  EXPECT_EQ(view.height(), std::size_t{simulator::kFinalHeight});
  EXPECT_EQ(view.x_pixels_per_metre(), 19685);
  EXPECT_EQ(view.y_pixels_per_metre(), 19685);
  tagBITMAPINFOHEADER header{};
  std::memcpy(&header, image.data(), sizeof(header));
  EXPECT_EQ(header.biSize, 40U);
  EXPECT_EQ(header.biBitCount, 8U);
  EXPECT_EQ(header.biCompression, 0U);
}

TEST_F(LiveCapture, ThePaletteIsTheIdentityRamp) {
  const Image image = snap();
  ASSERT_FALSE(image.empty());
  const unsigned char* entry = image.data() + sizeof(tagBITMAPINFOHEADER);
  for (unsigned int level = 0; level < 256; ++level, entry += 4) {
    ASSERT_THAT(std::vector<unsigned int>(entry, entry + 4),
                ::testing::ElementsAre(level, level, level, 0));
  }
}

TEST_F(LiveCapture, TheEmptyPlatenIsBright) {
  const Image image = snap();
  ASSERT_FALSE(image.empty());
  const lx::ImageView view(image.data());
  const unsigned char* const row = view.row_from_top(view.height() / 2);
  EXPECT_GT(*std::min_element(row, row + view.width()), 240);
}

TEST_F(LiveCapture, EveryFrameStandsInTheSameBlock) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 5));
  stop();
  std::set<const unsigned char*> blocks;
  for (const Event& frame : recorder.of(eEvent::Live)) {
    blocks.insert(frame.block);
  }
  EXPECT_EQ(blocks.size(), 1U);
}

TEST_F(LiveCapture, TheFirstFrameIsPixelForPixelTheImageOfASnapOfTheSameScene) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  const Image snapped = snap();
  disconnect();
  bench.plug_in(0, simulator::Device{});  // the same unit, with its noise from the beginning
  connect();
  recorder.keep_images();
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  stop();
  EXPECT_FALSE(snapped.empty());
  EXPECT_TRUE(recorder.of(eEvent::Live).front().image == snapped);
}

TEST_F(LiveCapture, TheClientsHandleAndChannelComeBackInEveryCallback) {
  ASSERT_EQ(start(eCaptureLive, -7), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 2));
  stop();
  for (const Event& event : recorder.all()) {
    EXPECT_EQ(event.handle, -7);
    EXPECT_EQ(event.channel, 1U);
  }
}

TEST_F(LiveCapture, AllCallbacksRunOnOneThreadThatIsNotTheClients) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 2));
  stop();
  std::set<std::thread::id> threads;
  for (const Event& event : recorder.all()) {
    threads.insert(event.thread);
  }
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST_F(LiveCapture, ASecondCaptureHasItsOwnHandleAndWorks) {
  ASSERT_EQ(start(eCaptureLive, 1), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  stop();
  recorder.clear();
  ASSERT_EQ(start(eCaptureLive, 2), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  stop();
  EXPECT_EQ(recorder.all().front().handle, 2);
}

TEST_F(LiveCapture, CallbacksThatAreNullAreSkipped) {
  grabber->SetCallbacks(kChannel, nullptr, nullptr);
  bench.set_faults(std::string(kFrameCall) + " call 5 blocks until told");
  ASSERT_EQ(grabber->StartCapture(kHandle, kChannel, eCapturePlain, nullptr, nullptr, nullptr,
                                  nullptr, nullptr),
            0U);
  bench.wait_until_blocked(kFrameCall);
  bench.release();
  EXPECT_EQ(stop(), 0U);
  EXPECT_TRUE(recorder.all().empty());
}

TEST_F(LiveCapture, ImagesCanBeSnappedMeanwhile) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_FALSE(snap().empty());
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
}

}  // namespace
}  // namespace Osv::client
