#include "capture/framegrabber_sdk.h"

#include <gtest/gtest.h>

#include "capture/hvk3_channel.h"

namespace Osv::lx {
namespace {

/// A scanner side with nothing but what it has to have.
struct BareScanner : ClFramegrabberSDK {
  bool IsDirty(ClFrameGrabberChannel& /*channel*/) override { return false; }
  void FreezeSDK(ClFrameGrabberChannel& /*channel*/, bool /*freeze*/) override {}
};

TEST(FramegrabberSDK, ItsAnswersAreHarmless) {
  BareScanner scanner;
  ClOstrevanHVK3Channel channel;
  utilities::ClSimpleBitmap bitmap;
  EXPECT_EQ(scanner.SetActiveChannel(channel, bitmap), 0U);
  EXPECT_FALSE(scanner.WaitForPlainFinger(channel, bitmap));
  EXPECT_FALSE(scanner.HasSelfDetection(channel));
  EXPECT_TRUE(scanner.Lock());
  EXPECT_FALSE(scanner.SupressFingerDetection());
}

TEST(FramegrabberSDK, ItsImageOperationsLeaveTheBitmapAlone) {
  BareScanner scanner;
  ClOstrevanHVK3Channel channel;
  utilities::ClSimpleBitmap bitmap;
  scanner.GetLiveBitmap(channel, bitmap);
  scanner.TriggerImage(channel, bitmap);
  EXPECT_TRUE(bitmap.Empty());
}

}  // namespace
}  // namespace Osv::lx
