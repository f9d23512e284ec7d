#include <csignal>

#include "recorder/recorded_tool.h"

namespace hvk3::test {
namespace {

class Replay : public RecordedTool {
 protected:
  Replay() { ::setenv("HVK3_REPLAY_PATIENCE", "0", 1); }
};

TEST_F(Replay, EndsWith9AtAnotherCall) {
  record("list");
  const Outcome outcome = replay("info");
  EXPECT_EQ(outcome.status, 9);
  EXPECT_THAT(outcome.error, HasSubstr("hvk3: replay: call "));
}

TEST_F(Replay, TellsInJsonWhereItDiverged) {
  record("list");
  const Json object = Json::parse(replay("info --json").out);
  EXPECT_EQ(object["command"], "info");
  EXPECT_EQ(object["status"], "diverged");
  EXPECT_EQ(object["exit"], 9);
  EXPECT_THAT(object["error"]["text"].get<std::string>(), HasSubstr("call "));
}

TEST_F(Replay, TellsTheTrueEndInOneObjectWhenItDivergesInTheTeardown) {
  record("info");
  std::filesystem::resize_file(recording(), std::filesystem::file_size(recording()) - 3);
  const Outcome outcome = replay("info --json");
  EXPECT_EQ(outcome.status, 9);
  EXPECT_EQ(Json::parse(outcome.out)["status"], "diverged");
  EXPECT_GT(Json::parse(outcome.out)["divergence"]["call"], 0);
  EXPECT_THAT(replay("info").out, HasSubstr("HVK30001"));  // for people it is printed before
}

TEST_F(Replay, TellsInJsonWhichSignalEndedTheCommand) {
  record("snap");
  const std::string image = m_cFolder.file("image.bmp");  // larger than files may be
  const Outcome outcome = run(
      {"/bin/bash", "-c",
       "ulimit -c 0 -f 100; exec \"$0\" snap --json --replay '" + recording() + "' --out " + image,
       HVK3_BARE_TOOL});
  EXPECT_EQ(outcome.status, 128 + SIGXFSZ);
  EXPECT_EQ(Json::parse(outcome.out)["status"], "interrupted");
  EXPECT_EQ(Json::parse(outcome.out)["exit"], outcome.status);
}

TEST_F(Replay, TellsWhichCallsWereNotMade) {
  record("info");
  const Outcome outcome = replay("list");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("recorded calls were not made, the first of them is call "));
}

TEST_F(Replay, OfACaptureThatEndsEarlierIsNoDivergence) {
  record("capture --mode live --count 6");
  const Outcome outcome = replay("capture --mode live --count 2");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("recorded calls were not made"));
}

TEST_F(Replay, OfACaptureThatGoesOnGivesItsLastFrameAgain) {
  record("capture --mode live --count 2");
  EXPECT_EQ(replay("capture --mode live --count 20").status, 0);
}

TEST_F(Replay, EndsWith2ForWhatIsNoRecording) {
  std::ofstream(recording()) << "a letter";
  const Outcome outcome = replay("list");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("is no recording"));
  EXPECT_EQ(tool({"replay", m_cFolder.file("absent"), "--", "/bin/true"}).status, 2);
}

TEST_F(Replay, EndsWith2ForADamagedRecording) {
  record("list");
  std::fstream file(recording(), std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(300);
  file << "???";
  file.close();
  const Json object = Json::parse(replay("list --json").out);
  EXPECT_EQ(object["status"], "usage");
  EXPECT_THAT(object["error"]["text"].get<std::string>(), HasSubstr("is damaged: the block at"));
}

TEST_F(Replay, OfATornRecordingGoesUpToThere) {
  record("info");
  std::filesystem::resize_file(recording(), std::filesystem::file_size(recording()) - 3);
  const Outcome outcome = replay("list");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("ends within a call"));
}

TEST_F(Replay, WithinAnotherPlaysTheInnerRecording) {
  record("list", {"--scanners", "2"});
  const std::string inner = m_cFolder.file("inner");
  std::filesystem::rename(recording(), inner);
  record("list");
  const Outcome outcome =
      tool({"replay", recording(), "--", HVK3_BARE_TOOL, "list", "--replay", inner});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "0\tHVK30001\n1\tHVK30002\n");
  EXPECT_THAT(outcome.error, HasSubstr("nothing was played"));
}

TEST_F(Replay, WithinAnotherOfTheSameRecordingIsThatOne) {
  record("list");
  const std::string other_spelling =
      m_cFolder.file("./none/../" + std::filesystem::path(recording()).filename().string());
  const Outcome outcome =
      tool({"replay", recording(), "--", HVK3_BARE_TOOL, "list", "--replay", other_spelling});
  EXPECT_EQ(outcome.out, "0\tHVK30001\n");
  EXPECT_THAT(outcome.error, Not(HasSubstr("nothing was played")));
}

TEST_F(Replay, StandsInPlaceOfASimulation) {
  record("list", {"--scanners", "2"});
  EXPECT_EQ(tool({"list", "--simulate", "--replay", recording()}).status, 2);
  const Outcome outcome = tool({"replay", recording(), "--", HVK3_BARE_TOOL, "list", "--simulate"});
  EXPECT_EQ(outcome.out, "0\tHVK30001\n1\tHVK30002\n");
}

}  // namespace
}  // namespace hvk3::test
