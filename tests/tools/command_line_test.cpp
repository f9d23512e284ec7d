#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using testing::MatchesRegex;
using testing::StartsWith;

class CommandLine : public Tool {
 protected:
  static int status(const Words& arguments) {
    Words words = {HVK3_TOOL};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words).status;
  }
};

TEST_F(CommandLine, HelpNamesTheExitStatuses) {
  const Outcome outcome = run({HVK3_TOOL, "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("Exit status: 0 success"));
}

TEST_F(CommandLine, TheHelpSaysWhereTheProgramOfACommandStands) {
  for (const std::string command : {"record", "replay"}) {
    EXPECT_THAT(run({HVK3_TOOL, command, "--help"}).out,
                HasSubstr("Usage: hvk3 " + command + " [OPTIONS] FILE -- PROGRAM [ARGUMENT...]\n"));
  }
}

TEST_F(CommandLine, TheHelpOfAGroupHasExamplesOfItsCommands) {
  for (const std::string group : {"property", "feature", "secret", "completion"}) {
    const std::string help = run({HVK3_TOOL, group, "--help"}).out;
    EXPECT_THAT(help.substr(help.find("Examples:")), HasSubstr("hvk3 " + group + ' '));
  }
}

TEST_F(CommandLine, TellsTheVersionOfThePackage) {
  const Outcome outcome = run({HVK3_TOOL, "--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, MatchesRegex("hvk3 [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLine, WrongUsageIsToldInTheNameOfTheTool) {
  EXPECT_THAT(run({HVK3_TOOL, "list", "--paint"}).error, StartsWith("hvk3: "));
  EXPECT_THAT(run({HVK3_TOOL, "property"}).error, StartsWith("hvk3: "));
}

TEST_F(CommandLine, WrongUsageEndsWith2) {
  EXPECT_EQ(status({}), 2);
  EXPECT_EQ(status({"paint"}), 2);
  EXPECT_EQ(status({"list", "--simulate", "--scanners", "129"}), 2);
  EXPECT_EQ(status({"snap", "--simulate", "--out", "image.gif"}), 2);
  EXPECT_EQ(status({"capture", "--simulate", "--mode", "rolled"}), 2);
  EXPECT_EQ(status({"capture", "--simulate", "--pace", "0"}), 2);
  EXPECT_EQ(status({"capture", "--simulate", "--settle", "0"}), 2);
  EXPECT_EQ(status({"snap", "--simulate", "--show", "--json"}), 2);
}

TEST_F(CommandLine, AnUnknownCommandIsNamed) {
  EXPECT_THAT(run({HVK3_TOOL, "paint", "it"}).error, HasSubstr("not expected: paint it\n"));
  EXPECT_THAT(run({HVK3_TOOL, "property", "paint"}).error, HasSubstr("not expected: paint\n"));
}

TEST_F(CommandLine, AProgramThatDoesNotStandBehindItsMarkIsToldWhere) {
  const Outcome outcome = run({HVK3_TOOL, "record", m_cFolder.file("recording"), "program"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("the program to run is to stand behind '--'"));
}

TEST_F(CommandLine, SceneOptionsWithoutASimulationEndWith2) {
  EXPECT_EQ(status({"list", "--empty"}), 2);
  EXPECT_EQ(status({"list", "--log", m_cFolder.file("log")}), 2);
}

TEST_F(CommandLine, ASceneThatCannotBeSetEndsWith2) {
  const Outcome outcome = simulate("list", {"--faults", "nonsense"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("nonsense"));
  EXPECT_EQ(simulate("list", {"--finger", HVK3_TOOL}).status, 2);
}

TEST_F(CommandLine, APluginThatCannotBeLoadedEndsWith7) {
  const Json object = simulate_json("list", {"--plugin", m_cFolder.file("absent.so")});
  EXPECT_EQ(object["exit"], 7);
  EXPECT_EQ(object["status"], "no-plugin");
}

TEST_F(CommandLine, ALibraryThatIsNoPluginEndsWith7) {
  const std::string other = std::string(HVK3_SIMULATOR_DIR) + "/libostrevanlf.so";
  EXPECT_EQ(simulate("list", {"--plugin", other}).status, 7);
}

TEST_F(CommandLine, ASimulatorThatIsNotThereEndsWith7) {
  EXPECT_EQ(simulate("list", {"--simulator", m_cFolder.file("absent")}).status, 7);
}

TEST_F(CommandLine, ALostStandardOutputEndsWith6) {
  for (const std::string command : {"list --simulate", "list --help", "--version"}) {
    EXPECT_EQ(run({"/bin/sh", "-c", HVK3_TOOL " " + command + " >/dev/full"}).status, 6) << command;
  }
}

TEST_F(CommandLine, AFailureThatNobodyForesawEndsWith1) {
  Words words = {"/usr/bin/env", "LD_PRELOAD=" HVK3_NO_EVENTFD ":" HVK3_NO_CONFIGURATION_FILE};
  const Words capture = command("capture", {"--json"});
  words.insert(words.end(), capture.begin(), capture.end());
  const Outcome outcome = run(words);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("error: eventfd: "));
  EXPECT_EQ(Json::parse(outcome.out)["status"], "internal-error");
}

TEST_F(CommandLine, VerboseShowsTheLogOfTheSimulatedPlugin) {
  const Outcome outcome = simulate("list", {"-v"});
  EXPECT_THAT(outcome.error, HasSubstr("libostrevanhvk3.so"));
  EXPECT_THAT(outcome.error, HasSubstr("trace: "));
  EXPECT_EQ(outcome.out, "0\tHVK30001\n");
}

TEST_F(CommandLine, TheLogGoesToAFile) {
  const std::string log = m_cFolder.file("log");
  const Outcome outcome = simulate("list", {"--log", log});
  EXPECT_THAT(read_file(log), HasSubstr("trace: "));
  EXPECT_EQ(mode_of(log), 0600U);
  EXPECT_THAT(outcome.error, IsEmpty());
}

TEST_F(CommandLine, ThePictureOfTheFingerComesFromAFile) {
  const std::string empty = m_cFolder.file("empty.png");
  simulate("snap", {"--empty", "--out", empty});
  // A blank picture for a finger: nothing dark ever lies on the platen.
  EXPECT_EQ(simulate("capture", {"--finger", empty, "--timeout", "0.2"}).status, 5);
}

}  // namespace
}  // namespace hvk3::test
