#include "recorder/format/recording.h"
#include "recorder/recorded_tool.h"

namespace hvk3::test {
namespace {

/// What `record` and `replay` print with --json.
class RecordingInJson : public RecordedTool {
 protected:
  RecordingInJson() { ::setenv("HVK3_REPLAY_PATIENCE", "0", 1); }

  Outcome record_in_json(const Words& program, const Words& options = {}) const {
    return record_program(program, join({"--json"}, options));
  }

  Json recorded(const Words& program, const Words& options = {}) const {
    return Json::parse(record_in_json(program, options).out);
  }

  Json played(const Words& program) const {
    return Json::parse(tool(join({"replay", recording(), "--json", "--"}, program)).out);
  }

  /// Commands that end with the status of the last.
  static Words shell(const std::string& line) { return {"/bin/sh", "-c", line}; }
};

TEST_F(RecordingInJson, LeavesStandardOutputToTheObject) {
  const Outcome outcome = record_in_json(simulated("list"));
  EXPECT_EQ(Json::parse(outcome.out)["command"], "record");
  EXPECT_THAT(outcome.error, HasSubstr("0\tHVK30001\n"));
  const Outcome replayed = tool({"replay", recording(), "--json", "--", HVK3_BARE_TOOL, "list"});
  EXPECT_EQ(Json::parse(replayed.out)["command"], "replay");
  EXPECT_THAT(replayed.error, HasSubstr("0\tHVK30001\n"));
}

TEST_F(RecordingInJson, TellsWhatTheFileHolds) {
  const Json object = recorded(simulated("capture --mode live --count 3"));
  const Osv::recorder::Recording file(recording());
  EXPECT_EQ(object["status"], "ok");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_EQ(object["recording"]["path"], recording());
  EXPECT_EQ(object["recording"]["calls"], file.calls().size());
  EXPECT_GE(object["recording"]["frames"], 3);
  EXPECT_EQ(object["recording"]["bytes"], std::filesystem::file_size(recording()));
  EXPECT_EQ(object["recording"]["pixels"], true);
  EXPECT_EQ(object["recording"]["torn"], false);
  EXPECT_EQ(object["recording"]["early_end"], nullptr);
}

TEST_F(RecordingInJson, TellsThatImagesAreLeftOut) {
  EXPECT_EQ(recorded({"/bin/true"}, {"--no-pixels"})["recording"]["pixels"], false);
}

TEST_F(RecordingInJson, TellsWhyItEndedEarly) {
  EXPECT_THAT(recorded({HVK3_FRAME_CLIENT})["recording"]["early_end"].get<std::string>(),
              HasSubstr("nobody asked the scanner for the size of its frames"));
}

TEST_F(RecordingInJson, IsNullWhenItIsGone) {
  const Json object = recorded(shell("rm '" + recording() + "'"));
  EXPECT_EQ(object["recording"], nullptr);
  EXPECT_EQ(object["status"], "ok");
}

TEST_F(RecordingInJson, EndsAsTheProgramDoes) {
  const Outcome outcome = record_in_json(shell("exit 3"));
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(Json::parse(outcome.out)["status"], "program-failed");
  EXPECT_EQ(Json::parse(outcome.out)["exit"], 3);
  EXPECT_EQ(recorded(shell("kill -9 $$"))["status"], "interrupted");
  const Json replayed = played(shell("exit 3"));
  EXPECT_EQ(replayed["status"], "program-failed");
  EXPECT_EQ(replayed["exit"], 3);
}

TEST_F(RecordingInJson, TellsWhyTheProgramWasNotRun) {
  const Json object = recorded({m_cFolder.file("absent")});
  EXPECT_EQ(object["status"], "usage");
  EXPECT_THAT(object["error"]["text"].get<std::string>(), HasSubstr("can't run "));
}

TEST_F(RecordingInJson, TellsHowMuchOfItWasPlayed) {
  const Json file = recorded(simulated("info"))["recording"];
  const Json whole = played({HVK3_BARE_TOOL, "info"});
  EXPECT_EQ(whole["recording"], file);
  EXPECT_EQ(whole["left_over"], 0);
  EXPECT_EQ(whole["divergence"], nullptr);
  const Json part = played({HVK3_BARE_TOOL, "list"});
  EXPECT_GT(part["left_over"], 0);
  EXPECT_EQ(part["played"].get<int>() + part["left_over"].get<int>(), whole["played"]);
}

TEST_F(RecordingInJson, TellsTheCallThatDiverged) {
  recorded(simulated("list"));
  const Json object = played({HVK3_BARE_TOOL, "info"});
  EXPECT_EQ(object["status"], "diverged");
  EXPECT_EQ(object["exit"], 9);
  EXPECT_GT(object["played"], 0);
  const std::string text = object["error"]["text"];
  EXPECT_THAT(text, StartsWith("replay: call " + object["divergence"]["call"].dump() + " is " +
                               object["divergence"]["function"].get<std::string>() + '('));
}

TEST_F(RecordingInJson, TellsTheDivergenceOfAProcessThatTheProgramRan) {
  recorded(simulated("list"));
  const Json object = played(shell(std::string(HVK3_BARE_TOOL) + " info; true"));
  EXPECT_EQ(object["status"], "ok");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_GT(object["divergence"]["call"], 0);
}

TEST_F(RecordingInJson, TellsWhenNothingWasPlayed) {
  recorded(simulated("list"));
  const Outcome outcome = tool({"replay", recording(), "--json", "--", "/bin/true"});
  EXPECT_EQ(Json::parse(outcome.out)["played"], 0);
  EXPECT_THAT(outcome.error, HasSubstr("nothing was played, the program opened no closed library"));
}

TEST_F(RecordingInJson, TellsThatItIsNone) {
  std::ofstream(recording()) << "a letter";
  const Json object = played({"/bin/true"});
  EXPECT_EQ(object["status"], "usage");
  EXPECT_THAT(object["error"]["text"].get<std::string>(), HasSubstr("is no recording"));
}

}  // namespace
}  // namespace hvk3::test
