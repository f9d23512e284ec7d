#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Script : public Tool {
 protected:
  std::string file(const std::string& name, const std::string& content) const {
    std::ofstream(m_cFolder.file(name)) << content;
    return m_cFolder.file(name);
  }

  /// The tool with these words on standard input.
  Outcome simulate_with(const std::string& input, const std::string& name, Words more) const {
    Words words = {"/bin/sh", "-c", "input=$0; exec \"$@\" <\"$input\"", file("input", input)};
    more.insert(more.end(), {"--script", "-"});
    const Words tool = command(name, more);
    words.insert(words.end(), tool.begin(), tool.end());
    return run(words);
  }
};

TEST_F(Script, InAFileSteersTheSimulation) {
  const std::string script = file("script", "wait 3 frames\nfinger on\n");
  EXPECT_EQ(simulate("capture", {"--empty", "--script", script}).status, 0);
}

TEST_F(Script, InAFileThatIsNotUnderstoodEndsWith2) {
  const Outcome outcome = simulate("list", {"--script", file("script", "\nfinger upside down\n")});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("line 2: not understood at 'upside'"));
}

TEST_F(Script, ThatIsNotThereEndsWith2) {
  EXPECT_EQ(simulate("list", {"--script", m_cFolder.file("absent")}).status, 2);
}

TEST_F(Script, OnStandardInputSteersTheSimulationWhileItRuns) {
  EXPECT_EQ(simulate_with("finger on\n", "capture", {"--empty"}).status, 0);
}

TEST_F(Script, OnStandardInputMayEndWithoutALineEnd) {
  EXPECT_EQ(simulate_with("finger on", "capture", {"--empty"}).status, 0);
}

TEST_F(Script, OnStandardInputThatIsNotUnderstoodIsToldAndTheNextLineCounts) {
  const Outcome outcome = simulate_with("finger upside down\nfinger on\n", "capture", {"--empty"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("hvk3: script: "));
}

TEST_F(Script, OnStandardInputIsAnsweredOnStandardError) {
  const Outcome outcome = simulate_with("help\nfinger on\n", "capture", {"--empty"});
  EXPECT_THAT(outcome.error, HasSubstr("finger off"));
  EXPECT_THAT(outcome.out, StartsWith("image: "));
}

TEST_F(Script, OnStandardInputThatNeverEndsDoesNotHoldTheCommand) {
  Words words = {"/bin/sh", "-c", "mkfifo \"$0\" && exec \"$@\" 0<>\"$0\"", m_cFolder.file("pipe")};
  const Words tool = command("list", {"--script", "-"});
  words.insert(words.end(), tool.begin(), tool.end());
  EXPECT_EQ(run(words).status, 0);
}

TEST_F(Script, OnStandardInputLeavesNoRoomForASecretThere) {
  const Outcome outcome = simulate_with("", "secret read", {"--code", "-"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("standard input"));
}

TEST_F(Script, UnplugsAScannerDuringCapture) {
  const std::string script = file("script", "wait 3 frames\nunplug 0\n");
  const Json object =
      simulate_json("capture", {"--mode", "live", "--count", "100", "--script", script});
  EXPECT_EQ(object["exit"], 3);
  EXPECT_EQ(object["error"]["number"], 2);
}

TEST_F(Script, RollsAFingerForARolledPrint) {
  const std::string script = file(
      "script",
      "print 3 rolled\nwait 3 frames\nroll right over 30 frames\nwait 40 frames\nfinger off\n");
  const Json object = simulate_json("roll", {"--empty", "--script", script});
  EXPECT_EQ(object["exit"], 0);
  EXPECT_LT(object["images"][0]["mean"], 200.0);
}

TEST_F(Script, LaysAFakeOnThePlaten) {
  for (const std::string kind : {"printed", "moulded"}) {
    const std::string script = file("script", "kind " + kind + "\nfinger on\n");
    const Json object = simulate_json("liveness", {"--empty", "--level", "2", "--script", script});
    EXPECT_GT(object["verdicts"]["fake"], 0) << kind;
    EXPECT_EQ(object["verdicts"]["live"], 0) << kind;
  }
}

TEST_F(Script, LaysDirtOnThePlaten) {
  const std::string script = file("script", "dirt 40\n");
  EXPECT_GT(simulate_json("contamination", {"--empty", "--script", script})["contamination"], 20.0);
}

TEST_F(Script, PlugsInADeviceThatTheDoctorFindsFaultWith) {
  const std::string script = file("script", "plug 0 foreign\nplug 1 bare\nplug 2 blank\n");
  const Json object = simulate_json("doctor", {"--script", script});
  EXPECT_EQ(object["exit"], 8);
  EXPECT_EQ(object["error"]["text"], "3 defects found");
}

TEST_F(Script, SetsTheProtectedBytes) {
  const std::string script = file("script",
                                  "authorization 41424344454647 at 0\n"
                                  "secret 61626364656667 at 0\n");
  const Words words = {"--code", file("code", "ABCDEFG"), "--script", script, "--print"};
  EXPECT_EQ(simulate("secret read", words).out, "61626364656667\n");
}

}  // namespace
}  // namespace hvk3::test
