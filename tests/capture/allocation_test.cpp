#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "capture/hvk3_channel.h"
#include "detection/images.h"
#include "foundation/wait.h"
#include "support/allocations.h"

namespace Osv::lx {
namespace {

constexpr long kFirst = 4;
constexpr long kPasses = 100;

/// Delivers fingers and counts what is allocated from one of its frames to another.
struct CountingScanner : ClFramegrabberSDK {
  unsigned long SetActiveChannel(ClFrameGrabberChannel& /*channel*/,
                                 utilities::ClSimpleBitmap& bitmap) override {
    bitmap = test::gray_image(120, 90, 100);
    return 0;
  }
  void GetLiveBitmap(ClFrameGrabberChannel& channel, utilities::ClSimpleBitmap& bitmap) override {
    ++frames;
    darken(bitmap);
    if (frames == kFirst) {
      allocations = -test::allocations_so_far();
    } else if (frames == kFirst + kPasses) {
      allocations += test::allocations_so_far();
      channel.m_bRunning = false;
    }
  }
  bool IsDirty(ClFrameGrabberChannel& /*channel*/) override { return false; }
  void FreezeSDK(ClFrameGrabberChannel& /*channel*/, bool /*freeze*/) override {}

  /// A rolled print needs a bright platen first, and columns that grow darker after it.
  void darken(utilities::ClSimpleBitmap& bitmap) const {
    const long level = frames == 1 ? first_level : 200 - frames;
    std::memset(bitmap.Pixel(), static_cast<int>(level), bitmap.PixelSize());
  }

  long first_level = 100;
  long frames = 0;
  long allocations = 0;
};

/// What a channel of this kind allocates in `kPasses` passes; the callbacks are counted.
template <typename Channel>
long allocations_in(eCaptureModeIDs mode, int& images, long first_level = 100) {
  struct Still : Channel {
    bool Start() override { return true; }
  } channel;
  CountingScanner scanner;
  scanner.first_level = first_level;
  ClFrameGrabberChannel::m_pFramegrabberSDK = &scanner;
  const WaitFunction before = ExchangeWaitFunction([](eWait, int) {});
  channel.StartCapture(
      1, mode, [](int, unsigned int, unsigned char*, void* user) { ++*static_cast<int*>(user); },
      [](int, unsigned int, int, unsigned char*, void* user) { ++*static_cast<int*>(user); },
      nullptr, nullptr, &images);
  channel.Work();
  ExchangeWaitFunction(before);
  return scanner.allocations;
}

TEST(Allocations, APassInLiveModeAllocatesNothing) {
  int images = 0;
  EXPECT_EQ(allocations_in<ClOstrevanHVK3Channel>(eCaptureLive, images), 0);
  EXPECT_EQ(images, kFirst + kPasses - 1);
}

TEST(Allocations, APassInPlainModeAllocatesTheFinishedImageAlone) {
  int images = 0;
  EXPECT_EQ(allocations_in<ClOstrevanHVK3Channel>(eCapturePlain, images), kPasses);
  EXPECT_EQ(images, 2 * (kFirst + kPasses - 1));
}

TEST(Allocations, APassInARollAllocatesTheWorkingImageAlone) {
  int images = 0;
  EXPECT_EQ(allocations_in<ClOstrevanHVK3Channel>(eCaptureRolled, images, 250), kPasses);
  EXPECT_EQ(images, 0) << "the roll has not ended";
}

TEST(Allocations, TurningTheFramesAllocatesNothing) {
  int images = 0;
  EXPECT_EQ(allocations_in<ClFrameGrabberChannel>(eCaptureLive, images), 0);
}

/// What the client is told of a failure with these words and number 23, without memory.
std::string told_without_memory(const std::string& words) {
  static std::array<char, 2048> told;
  ClOstrevanHVK3Channel channel;
  channel.m_pfnError = [](int, unsigned int, const char* text, void*) {
    std::snprintf(told.data(), told.size(), "%s", text);
  };
  {
    const test::NoMemory no_memory;
    channel.SendError(words.c_str(), 23);
  }
  return told.data();
}

TEST(Allocations, WithoutMemoryTheClientIsToldOfTheFailureInFull) {
  EXPECT_EQ(told_without_memory("KR9 scanner is disconnected from the host, error: 2"),
            "KR9 scanner is disconnected from the host, error: 2 error: 23");
  const std::string longest(1024, 'x');
  EXPECT_EQ(told_without_memory(longest), longest + " error: 23");
}

TEST(Allocations, WithoutMemoryWordsThatNoFailureHasAreCut) {
  EXPECT_EQ(told_without_memory(std::string(1025, 'x')), std::string(1024, 'x') + " error: 23");
}

}  // namespace
}  // namespace Osv::lx
