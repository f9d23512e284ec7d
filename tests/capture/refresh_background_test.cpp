#include <cstring>

#include "capture/channel_bench.h"
#include "capture/stub_framegrabber.h"

namespace Osv::lx {
namespace {

using test::Failure;
using test::failure_of;

constexpr eFilterIDs kFilter{3};

/// Hands out one picture and counts what comes back.
struct Grabber : test::StubFramegrabber {
  explicit Grabber(ClFrameGrabberChannel& channel) : m_channel(channel) {}

  unsigned long GetImage(unsigned int channel, unsigned char** image) override {
    asked_channel = channel;
    filter_meanwhile = m_channel.m_eFilter;
    if (result == 0 && !picture.Empty()) {
      utilities::ClSimpleBitmap copy = picture;
      *image = copy.Detach();
    }
    return result;
  }
  unsigned long FreeImage(unsigned char* image) override {
    ++freed;
    filter_at_release = m_channel.m_eFilter;
    delete[] image;
    return 0;
  }
  unsigned long GetLastError(char* text, unsigned long& size) override {
    buffer = size;
    std::strcpy(text, "no picture");
    return 0;
  }

  utilities::ClSimpleBitmap picture = test::noise_image(20, 10, 5);
  unsigned long result = 0;
  unsigned int asked_channel = 0;
  eFilterIDs filter_meanwhile = kFilter;
  eFilterIDs filter_at_release = kFilter;
  int freed = 0;
  unsigned long buffer = 0;

 private:
  ClFrameGrabberChannel& m_channel;
};

struct RefreshBackground : testing::Test {
  RefreshBackground() {
    channel.m_nChannel = 2;
    channel.SetFilter(kFilter);
    channel.m_bDirty = false;
  }
  ClFrameGrabberChannel channel;
  Grabber grabber{channel};
};

TEST_F(RefreshBackground, DuringCaptureTheNextFrameBecomesTheBackground) {
  channel.m_bRunning = true;
  const eFilterIDs filter = channel.m_eFilter;
  channel.RefreshBackGround(grabber);
  EXPECT_TRUE(channel.m_bDirty);
  EXPECT_EQ(channel.m_eFilter, filter);
  EXPECT_EQ(grabber.asked_channel, 0U);
}

TEST_F(RefreshBackground, APictureOfTheChannelIsCopied) {
  channel.RefreshBackGround(grabber);
  EXPECT_EQ(grabber.asked_channel, 2U);
  EXPECT_TRUE(test::same_block(channel.m_Background, grabber.picture));
}

TEST_F(RefreshBackground, TheFilterStaysOffUntilThePictureIsReleased) {
  channel.RefreshBackGround(grabber);
  EXPECT_EQ(grabber.filter_at_release, eFilterNone);
}

TEST_F(RefreshBackground, ThePictureIsReleasedOnce) {
  channel.RefreshBackGround(grabber);
  EXPECT_EQ(grabber.freed, 1);
}

TEST_F(RefreshBackground, TheFilterIsOffForThePictureAndThenBackAgain) {
  channel.RefreshBackGround(grabber);
  EXPECT_EQ(grabber.filter_meanwhile, eFilterNone);
  EXPECT_EQ(channel.m_eFilter, kFilter);
}

TEST_F(RefreshBackground, ASuccessWithoutAPictureLeavesNoBackgroundAndTheFilterAsItWas) {
  channel.m_Background = test::gray_image(4, 4, 9);
  grabber.picture.Clear();
  EXPECT_EQ(failure_of([this] { channel.RefreshBackGround(grabber); }).first, 0);
  EXPECT_TRUE(channel.m_Background.Empty());
  EXPECT_EQ(channel.m_eFilter, kFilter);
}

TEST_F(RefreshBackground, AFailureCarriesTheGrabbersNumberAndText) {
  grabber.result = 0x10000002;
  EXPECT_EQ(failure_of([this] { channel.RefreshBackGround(grabber); }),
            Failure(0x10000002, "no picture"));
  EXPECT_EQ(grabber.buffer, 255U);
}

TEST_F(RefreshBackground, AFailureLeavesTheFilterOff) {
  grabber.result = 0x10000002;
  failure_of([this] { channel.RefreshBackGround(grabber); });
  EXPECT_EQ(channel.m_eFilter, eFilterNone);
  EXPECT_EQ(grabber.freed, 0);
}

}  // namespace
}  // namespace Osv::lx
