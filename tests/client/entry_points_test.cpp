#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "client/client_fixture.h"
#include "foundation/system_failures.h"

namespace Osv::client {
namespace {

using testing_support::eFailing;
using testing_support::FailingSystem;

constexpr unsigned long kNoFrameGrabber = 0x10000017;

/// The exported functions and pointers, with the frame grabber that the fixture got.
using EntryPoints = ClientTest;

TEST_F(EntryPoints, TheFrameGrabberIsBuiltOnce) { EXPECT_EQ(&plugin.grabber(), grabber); }

TEST_F(EntryPoints, GettingItTouchesNoScanner) {
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
}

TEST_F(EntryPoints, TheExportedPointersTellWhichFrameGrabberThereIs) {
  EXPECT_EQ(plugin.pointer("m_pFG"), grabber);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
  disconnect();
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
}

TEST_F(EntryPoints, DestroyingTwiceIsDestroyingOnce) {
  plugin.destroy();
  plugin.destroy();
  grabber = nullptr;
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
}

TEST_F(EntryPoints, AfterDestroyingANewFrameGrabberCanBeHad) {
  ASSERT_FALSE(snap().empty());
  disconnect();
  EXPECT_EQ(bench.state(0).open_handles, 0U);
  connect();
  EXPECT_FALSE(snap().empty());
}

TEST_F(EntryPoints, DestroyingDuringAFrozenCaptureEndsIt) {
  grabber->Freeze(kChannel, true);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(await_freeze_polls(1));
  plugin.destroy();
  grabber = nullptr;
  EXPECT_EQ(recorder.kinds().back(), eEvent::Stop);
}

TEST_F(EntryPoints, TheVersionComesOut) {
  std::string text(11, 'x');
  unsigned long size = text.size();
  EXPECT_EQ(grabber->GetVersion(text.data(), size), 0U);
  EXPECT_STREQ(text.c_str(), "2.0.1425.2");
}

TEST_F(EntryPoints, FrameInformationIsAScoreAndForType1AStateBehindIt) {
  unsigned char info[12];
  std::memset(info, 0xAA, sizeof(info));
  EXPECT_EQ(plugin.frame_info()(77, 0, 0, info), 0U);
  EXPECT_EQ(info[7], 0);
  EXPECT_EQ(info[8], 0xAA);
  EXPECT_EQ(plugin.frame_info()(77, 0, 1, info), 0U);
  EXPECT_EQ(info[8], 0);
  EXPECT_EQ(info[11], 0);
}

TEST_F(EntryPoints, FrameInformationTurnsFailuresIntoNumberAndText) {
  double score = 0;
  EXPECT_EQ(plugin.frame_info()(0, 0, 2, &score), 0x10000039U);
  EXPECT_EQ(last_text(), "The frame information type ID[2] isn't supported by the frame grabber");
  EXPECT_EQ(plugin.frame_info()(0, 0, 0, nullptr), 0x1000003CU);
}

TEST_F(EntryPoints, FrameInformationNeedsAFrameGrabber) {
  disconnect();
  double score = -1;
  EXPECT_EQ(plugin.frame_info()(0, 0, 0, &score), kNoFrameGrabber);
  EXPECT_EQ(score, -1);
}

TEST_F(EntryPoints, FeaturesNeedAFrameGrabber) {
  disconnect();
  osvlx3_feature feature{};
  EXPECT_EQ(plugin.get_feature()(kChannel, &feature), kNoFrameGrabber);
  EXPECT_EQ(plugin.set_feature()(kChannel, &feature), kNoFrameGrabber);
}

TEST_F(EntryPoints, FeaturesOfAnotherChannelAreABare2) {
  osvlx3_feature feature{};
  EXPECT_EQ(plugin.get_feature()(2, &feature), 2U);
  EXPECT_EQ(plugin.set_feature()(0, &feature), 2U);
}

TEST_F(EntryPoints, FreeTakesBlocksOfTheCLibraryAndNull) {
  EXPECT_EQ(plugin.free()(std::malloc(9)), 0U);
  EXPECT_EQ(plugin.free()(nullptr), 0U);
}

/// A plug-in whose frame grabber can't be built, since the system has no mutex to spare.
class FailedConstruction : public ClientTest {
 protected:
  FailedConstruction() {
    disconnect();
    const FailingSystem failing(eFailing::MutexInit, EAGAIN);
    dummy = &plugin.grabber();
  }
  ~FailedConstruction() override {
    disconnect();
    plugin.destroy();
  }

  lx::ClFramegrabber* dummy = nullptr;
};

TEST_F(FailedConstruction, YieldsAnObjectThatReportsTheFailureFromEveryOperation) {
  EXPECT_EQ(plugin.pointer("m_pDummy"), dummy);
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  unsigned long size = 0;
  EXPECT_EQ(dummy->GetVersion(nullptr, size), 0x10000000U | EAGAIN);
  EXPECT_EQ(dummy->StopCapture(1), 0x10000000U | EAGAIN);
  EXPECT_EQ(dummy->WriteEEPROM(nullptr, size), 0x10000000U | EAGAIN);
}

TEST_F(FailedConstruction, TheFailuresTextComesInABufferOfItsLengthPlus2) {
  const std::string expected = std::strerror(EAGAIN);
  std::string text(expected.size() + 2, 'x');
  unsigned long size = text.size();
  EXPECT_EQ(dummy->GetLastError(text.data(), size), 0U);
  EXPECT_EQ(size, expected.size());
  EXPECT_EQ(text.c_str(), expected);
  size = expected.size() + 1;
  EXPECT_EQ(dummy->GetLastError(text.data(), size), 0x10000011U);
}

TEST_F(FailedConstruction, FrameInformationAndFeaturesDoNotLookAtIt) {
  double score = 0;
  osvlx3_feature feature{};
  EXPECT_EQ(plugin.frame_info()(0, 0, 0, &score), kNoFrameGrabber);
  EXPECT_EQ(plugin.get_feature()(kChannel, &feature), kNoFrameGrabber);
}

TEST_F(FailedConstruction, TheNextCallTriesAgain) {
  connect();
  EXPECT_NE(grabber, dummy);
  EXPECT_EQ(plugin.pointer("m_pFG"), grabber);
  EXPECT_FALSE(snap().empty());
}

TEST_F(FailedConstruction, DestroyingFreesItTogetherWithALaterFrameGrabber) {
  connect();
  EXPECT_EQ(plugin.pointer("m_pDummy"), dummy);
  disconnect();
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
}

TEST_F(FailedConstruction, DestroyingFreesItToo) {
  plugin.destroy();
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
}

}  // namespace
}  // namespace Osv::client
