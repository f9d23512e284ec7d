#include "recorder/recorded_tool.h"

namespace hvk3::test {
namespace {

class Scenarios : public RecordedTool {
 protected:
  std::string file(const std::string& name, const std::string& content) const {
    std::ofstream(m_cFolder.file(name), std::ios::binary) << content;
    return m_cFolder.file(name);
  }

  /// What stands on a terminal when a preview has given it back; its pictures come by the clock.
  static std::string behind_the_screen(const std::string& output) {
    const std::string end = "\x1b[?1049l";
    EXPECT_THAT(output, HasSubstr(end));
    return output.substr(output.rfind(end));
  }
};

TEST_F(Scenarios, HaveNoSimulatorWhenTheyArePlayed) {
  EXPECT_EQ(tool({"list", "--simulate"}).status, 7);
}

TEST_F(Scenarios, ListTheScanners) { EXPECT_EQ(expect_the_same("list", {"--scanners", "3"}), 0); }

TEST_F(Scenarios, FindNoScanner) { EXPECT_EQ(expect_the_same("list", {"--scanners", "0"}), 3); }

TEST_F(Scenarios, DescribeAScanner) {
  EXPECT_EQ(expect_the_same("info --device 1", {"--scanners", "2"}), 0);
}

TEST_F(Scenarios, TakeAnImage) {
  EXPECT_EQ(expect_the_same("snap --out " + image()), 0);
  EXPECT_FALSE(read_file(image()).empty());
}

TEST_F(Scenarios, ShowAnImage) { EXPECT_EQ(expect_the_same("snap --show --shades plain"), 0); }

TEST_F(Scenarios, TakeEveryFrame) {
  EXPECT_EQ(expect_the_same("capture --mode live --count 4 --out " + image()), 0);
}

TEST_F(Scenarios, WaitForAFinger) {
  EXPECT_EQ(expect_the_same("capture --settle 4 --out " + image()), 0);
}

TEST_F(Scenarios, ShowALiveImage) {
  const std::string command = "capture --settle 4 --preview --out " + image();
  std::filesystem::create_directory(m_cFolder.file("images"));
  const Outcome recorded = run(recording_of(simulated(command)), {.out = true});
  const std::string recorded_image = read_file(image());
  std::filesystem::remove(image());
  const Outcome played =
      run(join(join({HVK3_BARE_TOOL}, split(command)), {"--replay", recording()}), {.out = true});
  EXPECT_EQ(recorded.status, 0) << recorded.error;
  EXPECT_EQ(played.status, 0) << played.error;
  EXPECT_EQ(behind_the_screen(played.out), behind_the_screen(recorded.out));
  EXPECT_FALSE(recorded_image.empty());
  EXPECT_TRUE(read_file(image()) == recorded_image);
}

TEST_F(Scenarios, SetPropertiesFirst) {
  EXPECT_EQ(expect_the_same("capture --mode live --set low-contrast=on --set red-led=on --out " +
                            image()),
            0);
}

TEST_F(Scenarios, FollowAScript) {
  const std::string script = file("script", "wait 3 frames\nfinger on\n");
  EXPECT_EQ(expect_the_same("capture --out " + image(), {"--empty", "--script", script}), 0);
}

TEST_F(Scenarios, JudgeFingers) {
  EXPECT_EQ(expect_the_same("liveness --count 5 --level 2",
                            {"--script", file("script", "kind printed\nfinger on\n")}),
            0);
}

TEST_F(Scenarios, PutARolledPrintTogether) {
  EXPECT_EQ(expect_the_same("roll --timeout 0 --out " + image()), 0);
}

TEST_F(Scenarios, MeasureDirt) { EXPECT_EQ(expect_the_same("contamination", {"--empty"}), 0); }

TEST_F(Scenarios, SwitchLEDs) {
  EXPECT_EQ(expect_the_same("leds --red on --green off --hold 0.01"), 0);
}

TEST_F(Scenarios, ReadProperties) { EXPECT_EQ(expect_the_same("property get --json"), 0); }

TEST_F(Scenarios, SetAProperty) { EXPECT_EQ(expect_the_same("property set liveness on"), 0); }

TEST_F(Scenarios, ReadFeatures) { EXPECT_EQ(expect_the_same("feature list"), 0); }

TEST_F(Scenarios, ReadAFeature) { EXPECT_EQ(expect_the_same("feature get image-data-format"), 0); }

TEST_F(Scenarios, SetAFeature) { EXPECT_EQ(expect_the_same("feature set image-data-format 2"), 0); }

TEST_F(Scenarios, ReplaceTheAuthorizationCode) {
  EXPECT_EQ(expect_the_same("secret authorize --code " + file("code", "my-code")), 0);
}

TEST_F(Scenarios, ReadTheProtectedBytes) {
  const std::string code = file("code", std::string(7, '\0'));
  EXPECT_EQ(expect_the_same("secret read --print --code " + code), 0);
}

TEST_F(Scenarios, AreRefusedTheProtectedBytes) {
  EXPECT_EQ(expect_the_same("secret read --print --code " + file("code", "wrong-7")), 4);
}

TEST_F(Scenarios, WriteTheProtectedBytes) {
  const std::string code = file("code", std::string(7, '\0'));
  EXPECT_EQ(expect_the_same("secret write --code " + code + " --secret " + file("new", "bytes-7")),
            0);
}

TEST_F(Scenarios, ExamineTheInstallation) { EXPECT_EQ(expect_the_same("doctor"), 0); }

TEST_F(Scenarios, MeetABusyScanner) {
  EXPECT_EQ(expect_the_same("snap --out " + image(),
                            {"--faults", "ftrScanGetImageByVariableDose call 1 fails with 121"}),
            0);
}

TEST_F(Scenarios, MeetAnEngineThatFails) {
  EXPECT_EQ(expect_the_same("capture --mode live --count 9",
                            {"--faults", "Calibrate call 5 fails with -3"}),
            4);
}

TEST_F(Scenarios, MeetADetectorThatFails) {
  EXPECT_EQ(
      expect_the_same("liveness --count 3", {"--faults", "FakeFingerDetectionReset fails with -4"}),
      4);
}

TEST_F(Scenarios, LoseTheScanner) {
  const std::string script = file("script", "wait 4 frames\nunplug 0\n");
  EXPECT_EQ(expect_the_same("capture --mode live --count 9 --out " + image(), {"--script", script}),
            3);
}

TEST_F(Scenarios, GoOnBehindAnUnplugging) {
  const std::string script = file("script",
                                  "wait 3 frames\nunplug 0\n"
                                  "wait 2 calls of ftrScanGetInterfaces\nplug 0\n");
  EXPECT_EQ(expect_the_same("capture --mode live --count 6 --keep-going --out " + image(),
                            {"--script", script}),
            0);
}

TEST_F(Scenarios, EndWithTheirTime) {
  const std::string script = file("script", "pace 15\n");
  EXPECT_EQ(expect_the_same("capture --timeout 1", {"--empty", "--script", script}), 5);
}

TEST_F(Scenarios, GiveAClientTheSameCallbacks) {
  const std::string bench = HVK3_SIMULATOR_DIR "/libostrevan-simulator.so";
  const Outcome recorded = record_program({HVK3_SESSION_CLIENT, HVK3_PLUGIN, bench});
  EXPECT_THAT(recorded.out, HasSubstr("finger 1 "));
  EXPECT_THAT(recorded.out, HasSubstr("freeze: 0\ngo on: 0\n"));
  const Outcome played = tool({"replay", recording(), "--", HVK3_SESSION_CLIENT, HVK3_PLUGIN});
  EXPECT_EQ(played.status, 0);
  EXPECT_EQ(played.out, recorded.out);
}

}  // namespace
}  // namespace hvk3::test
