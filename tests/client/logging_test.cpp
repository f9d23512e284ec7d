#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// What reaches the logging facility of what a client does.
class Logging : public ClientTest {
 protected:
  static auto line(int level, const std::string& text) {
    return HasSubstr("(level " + std::to_string(level) + ", '" + text + "')");
  }

  std::vector<std::string> lines() { return journal("OsvLFLog"); }
};

TEST_F(Logging, StartAndStopAreTracedWithTheirArguments) {
  bench.clear_journal();
  start(eCapturePlain);
  stop();
  EXPECT_THAT(lines(), Contains(line(7,
                                     "KR9 scanner. Calling StartCapture. Framegrabber handle: "
                                     "4711, channel number: 1, capture mode ID: 1")));
  EXPECT_THAT(lines(), Contains(line(7,
                                     "KR9 scanner. Calling StopCapture function. Channel "
                                     "number: 1")));
}

TEST_F(Logging, AFreezeIsTraced) {
  bench.clear_journal();
  grabber->Freeze(kChannel, true);
  EXPECT_THAT(lines(), ElementsAre(line(7,
                                        "KR9 scanner. Calling Freeze function. Channel number: "
                                        "1, enable: 1")));
}

TEST_F(Logging, AStoredFailureIsTracedWithNumberAndText) {
  bench.clear_journal();
  grabber->SetResolution(kChannel, lx::ClImageResolution());
  EXPECT_THAT(lines(),
              ElementsAre(line(7,
                               "KR9 scanner. Calling SetLastFGError function. Error number: 14, "
                               "Error description: This property or function is not supported "
                               "by frame grabber")));
}

TEST_F(Logging, ASnapTellsTheRoadOfItsFrame) {
  bench.clear_journal();
  ASSERT_FALSE(snap().empty());
  EXPECT_THAT(lines(), Contains(line(7, "KR9 scanner. Calling Snap function. Channel number: 1")));
  EXPECT_THAT(lines(), Contains(line(7,
                                     "KR9 scanner. Calling SetActiveChannel function. Channel "
                                     "number: 1")));
  EXPECT_THAT(lines(), Contains(line(7, "KR9 scanner. The image width: 640, height: 480")));
  EXPECT_THAT(lines(), Contains(line(7, "KR9 scanner. Calling PrepareImage function")));
  EXPECT_THAT(lines(), Contains(line(7, "KR9 scanner. CalibrateBitmap.")));
  EXPECT_THAT(lines(), Not(Contains(HasSubstr("level 3"))));
}

TEST_F(Logging, AScannersErrorIsAnError) {
  bench.set_faults(std::string(kFrameCall) + " call 2 fails with 1460");
  EXPECT_TRUE(snap().empty());
  EXPECT_THAT(lines(), Contains(line(7, "KR9 scanner. CaptureFrame: 1460")));
  EXPECT_THAT(lines(), Contains(line(3, "KR9 scanner. Scanner error: 1460")));
}

TEST_F(Logging, AFailedPreparationIsAnErrorWithItsNumberInHexadecimal) {
  bench.set_faults(std::string(kFrameCall) + " call 1 fails with 1460");
  EXPECT_TRUE(snap().empty());
  EXPECT_THAT(lines(), Contains(line(3,
                                     "KR9 scanner. CaptureFuzzyImage function failed. Error "
                                     "number: 0x5b4")));
}

/// A plug-in that is loaded where there is no logging facility.
class NoLogging : public simulator::SimulatorFixture {
 protected:
  NoLogging() { libraries.make_absent("libostrevanlf.so"); }

  simulator::ClosedLibraries libraries;
};

TEST_F(NoLogging, ThePlugInWorksAndNoLineIsWritten) {
  const Plugin plugin;
  lx::ClFramegrabber& grabber = plugin.grabber();
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber.GetImage(kChannel, &image), 0U);
  EXPECT_NE(image, nullptr);
  grabber.FreeImage(image);
  plugin.destroy();
  EXPECT_THAT(journal("OsvLFLog"), IsEmpty());
  EXPECT_THAT(libraries.openings(),
              Contains(::testing::Field(&simulator::LibraryOpening::name, "libostrevanlf.so")));
}

TEST_F(NoLogging, AFacilityThatLacksAFunctionCountsAsAbsent) {
  for (const char* const symbol : {"OsvLFLog", "OsvLFFlush"}) {
    libraries.leave_out("libostrevanlf.so", symbol);
    const Plugin plugin;
    EXPECT_EQ(plugin.grabber().StopCapture(kChannel), 0U);
    plugin.destroy();
  }
  EXPECT_THAT(journal("OsvLFLog"), IsEmpty());
}

}  // namespace
}  // namespace Osv::client
