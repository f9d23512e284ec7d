#include "client/client_fixture.h"

namespace Osv::client {
namespace {

/// Tests that load the plug-in themselves.
class Loading : public simulator::SimulatorFixture {
 protected:
  /// Loads, snaps one image, captures some frames, and gives everything back.
  void use_once() {
    const Plugin plugin;
    lx::ClFramegrabber& grabber = plugin.grabber();
    unsigned char* image = nullptr;
    EXPECT_EQ(grabber.GetImage(kChannel, &image), 0U);
    grabber.FreeImage(image);
    Recorder recorder;
    EXPECT_EQ(grabber.StartCapture(kHandle, kChannel, eCaptureLive, &Recorder::on_live, nullptr,
                                   nullptr, nullptr, &recorder),
              0U);
    EXPECT_TRUE(recorder.wait_for(eEvent::Live, 2));
    grabber.StopCapture(kChannel);
    plugin.destroy();
  }

  simulator::ClosedLibraries libraries;
};

TEST_F(Loading, ThePlugInCanBeLoadedUsedAndUnloadedAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    use_once();
    EXPECT_FALSE(Plugin::is_loaded());
  }
  EXPECT_EQ(bench.state(0).open_handles, 0U);
}

TEST_F(Loading, WithNothingAskedForItLoadsAndUnloadsInSilence) {
  {
    const Plugin plugin;
    EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
    EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
    plugin.destroy();
    double score = 0;
    EXPECT_EQ(plugin.frame_info()(0, 0, 0, &score), 0x10000017U);
  }
  EXPECT_FALSE(Plugin::is_loaded());
  EXPECT_TRUE(bench.calls().empty());
  EXPECT_TRUE(libraries.openings().empty());
}

TEST_F(Loading, GettingTheFrameGrabberLooksForTheLoggingFacilityAndNothingElse) {
  const Plugin plugin;
  plugin.grabber();
  ASSERT_EQ(libraries.openings().size(), 1U);
  EXPECT_EQ(libraries.openings().front().name, "libostrevanlf.so");
  plugin.destroy();
}

TEST_F(Loading, TheDetectorIsNotLoadedForACaptureWithoutFakeFingerDetection) {
  use_once();
  for (const simulator::LibraryOpening& opening : libraries.openings()) {
    EXPECT_NE(opening.name, "libostrevanfakefingerdetection.so");
    EXPECT_EQ(opening.mode, 2);
  }
}

}  // namespace
}  // namespace Osv::client
