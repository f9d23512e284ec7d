#include <csignal>

#include "recorder/format/recording.h"
#include "recorder/recorded_tool.h"

namespace hvk3::test {
namespace {

class Record : public RecordedTool {
 protected:
  Outcome record_list() const { return record("list"); }

  std::size_t calls() const { return Osv::recorder::Recording(recording()).calls().size(); }

  /// A folder with some of the closed libraries.
  std::string folder_with(const std::vector<std::string>& libraries) const {
    const std::filesystem::path folder = m_cFolder.file("real");
    std::filesystem::create_directory(folder);
    for (const std::string& library : libraries) {
      std::filesystem::create_symlink(std::string(HVK3_SIMULATOR_DIR) + '/' + library,
                                      folder / library);
    }
    return folder.string();
  }

  /// What the doctor finds of the libraries, recorded in front of a folder.
  Json libraries_of(const std::string& folder) const {
    const Outcome outcome = tool(
        {"record", recording(), "--real-dir", folder, "--", HVK3_BARE_TOOL, "doctor", "--json"});
    return Json::parse(outcome.out)["libraries"];
  }
};

TEST_F(Record, MakesAFileForTheUserAlone) {
  std::ofstream(recording()).flush();
  std::filesystem::permissions(recording(), std::filesystem::perms::all);
  EXPECT_EQ(record_list().status, 0);
  EXPECT_EQ(mode_of(recording()), 0600U);
  EXPECT_GT(calls(), 0U);
}

TEST_F(Record, TellsThatTheFileHoldsFingerprints) {
  EXPECT_THAT(record_list().error, HasSubstr("will hold fingerprints"));
}

TEST_F(Record, ReplacesAnEarlierRecording) {
  record("info");
  const std::size_t before = calls();
  EXPECT_EQ(record_list().status, 0);
  EXPECT_LT(calls(), before);
}

TEST_F(Record, OverwritesNoOtherFile) {
  std::ofstream(recording()) << "a letter";
  const Outcome outcome = record_list();
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, HasSubstr("this is no recording, and is not overwritten"));
  EXPECT_EQ(read_file(recording()), "a letter");
}

TEST_F(Record, FollowsNoLink) {
  std::ofstream(m_cFolder.file("empty")).flush();
  std::filesystem::create_symlink(m_cFolder.file("empty"), recording());
  EXPECT_EQ(record_list().status, 6);
  EXPECT_EQ(read_file(m_cFolder.file("empty")), "");
}

TEST_F(Record, NeedsAFolderForItsFile) {
  EXPECT_EQ(tool({"record", m_cFolder.file("absent/recording"), "--simulate", "--simulator",
                  HVK3_SIMULATOR_DIR, "--", "/bin/true"})
                .status,
            6);
}

TEST_F(Record, TakesNoPartOfTheProgramForItsFile) {
  EXPECT_EQ(tool({"record", "--", "/bin/true"}).status, 2);
  EXPECT_EQ(tool({"record", recording(), "/bin/true"}).status, 2);
  EXPECT_EQ(tool({"record", recording(), "--"}).status, 2);
}

TEST_F(Record, EndsWith2WhenTheProgramCannotBeRun) {
  const Outcome outcome = record_program({m_cFolder.file("absent")});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("can't run "));
}

TEST_F(Record, EndsAsTheProgramDoes) {
  EXPECT_EQ(record_program({"/bin/sh", "-c", "exit 42"}).status, 42);
  EXPECT_EQ(record_program({"/bin/sh", "-c", "kill -9 $$"}).status, 137);
}

TEST_F(Record, EndsAsTheProgramDoesThoughTheFileIsGone) {
  const Outcome outcome = record_program({"/bin/sh", "-c", "rm '" + recording() + "' && exit 42"});
  EXPECT_EQ(outcome.status, 42);
  EXPECT_THAT(outcome.error, HasSubstr("the recording can't be read: "));
}

TEST_F(Record, EndsAsTheProgramDoesThoughTheFileIsNoRecording) {
  const Outcome outcome =
      record_program({"/bin/sh", "-c", "echo a letter > '" + recording() + "'; exit 42"});
  EXPECT_EQ(outcome.status, 42);
  EXPECT_THAT(outcome.error, HasSubstr("the recording can't be read: "));
}

TEST_F(Record, TellsWhenNothingWasRecorded) {
  EXPECT_THAT(record_program({"/bin/true"}).error, HasSubstr("nothing was recorded"));
}

TEST_F(Record, LeavesSignalsToTheProgram) {
  Process process({HVK3_BARE_TOOL, "record", recording(), "--simulate", "--simulator",
                   HVK3_SIMULATOR_DIR, "--", HVK3_BARE_TOOL, "leds", "--red", "on", "--hold", "0",
                   "--simulate", "--simulator", HVK3_SIMULATOR_DIR, "-v"});
  ASSERT_TRUE(process.wait_for_error_text("Initialize device opened"));
  process.send(SIGTERM);
  const Outcome outcome = process.wait();
  EXPECT_EQ(outcome.status, 128 + SIGTERM);
  EXPECT_THAT(outcome.error, HasSubstr(" calls are in "));
}

// As from a program that leaves its children to the system.
TEST_F(Record, EndsWithTheProgramThoughEndsOfChildrenAreIgnored) {
  const Words ignoring = {"/bin/sh", "-c", "trap '' CHLD; exec \"$@\"", "sh"};
  EXPECT_EQ(run(join(ignoring, recording_of({"/bin/sh", "-c", "exit 7"}))).status, 7);
}

TEST_F(Record, HoldsOneProcess) {
  const std::string list =
      std::string(HVK3_BARE_TOOL) + " list --simulate --simulator " + HVK3_SIMULATOR_DIR;
  const Outcome outcome = record_program({"/bin/sh", "-c", list + "; " + list});
  EXPECT_THAT(outcome.error, HasSubstr("it holds the calls of an earlier process"));
  EXPECT_EQ(outcome.out, "0\tHVK30001\n0\tHVK30001\n");
  EXPECT_EQ(replay("list").out, "0\tHVK30001\n");
}

TEST_F(Record, TellsOfAForkThatIsNotRecorded) {
  const Outcome outcome = record_program({HVK3_FRAME_CLIENT, "fork"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error,
              HasSubstr("hvk3 record: this process is not recorded: it is a fork\n"));
  EXPECT_THAT(
      outcome.error,
      HasSubstr("nothing was recorded: no process that is recorded called a closed library"));
}

TEST_F(Record, IsNotWrittenIntoByAProgramWithoutStandardStreams) {
  const std::string line = "exec 0<&- 1<&- 2<&-; exec \"$0\" \"$@\"";
  EXPECT_EQ(record_program({"/bin/sh", "-c", line, HVK3_BARE_TOOL, "list", "--simulate",
                            "--simulator", HVK3_SIMULATOR_DIR})
                .status,
            6);
  EXPECT_EQ(replay("list").out, "0\tHVK30001\n");
}

TEST_F(Record, SimulatesOnlyWhenBothAreToldTo) {
  const Outcome outcome =
      tool({"record", recording(), "--real-dir",
            folder_with({"libostrevan-simulator.so", "libostrevanlf.so"}), "--", HVK3_BARE_TOOL,
            "list", "--simulate", "--simulator", HVK3_SIMULATOR_DIR});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("simulated scanners are recorded with"));
}

TEST_F(Record, NeedsAClosedLibrary) {
  const Outcome outcome =
      tool({"record", recording(), "--real-dir", folder_with({}), "--", HVK3_BARE_TOOL, "list"});
  EXPECT_EQ(outcome.status, 7);
  EXPECT_THAT(outcome.error, HasSubstr("none of the closed libraries can be loaded from"));
}

TEST_F(Record, StandsInFrontOfNoOtherRecording) {
  const Outcome outcome =
      record_program({HVK3_BARE_TOOL, "record", m_cFolder.file("inner"), "--", "/bin/true"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("this already stands in front of a closed library"));
}

TEST_F(Record, NeedsAFolderForTheForwardersThatTheLoaderCanSearch) {
  std::filesystem::create_directory(m_cFolder.file("a:b"));
  ::setenv("TMPDIR", m_cFolder.file("a:b").c_str(), 1);
  const Outcome outcome =
      tool({"record", recording(), "--real-dir",
            folder_with({"libostrevanlf.so", "libostrevan-simulator.so"}), "--", "/bin/true"});
  ::unsetenv("TMPDIR");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("the loader takes no folder whose name has a colon"));
}

TEST_F(Record, HasNoLibraryThatIsNotThere) {
  const Json libraries = libraries_of(
      folder_with({"libKR9ScanAPI.so", "libostrevancalibratesdk.so", "libostrevan-simulator.so"}));
  EXPECT_TRUE(libraries[0]["failure"].is_null());
  EXPECT_FALSE(libraries[3]["failure"].is_null());
  const Json played = Json::parse(replay("doctor --json").out)["libraries"];
  EXPECT_EQ(played[3], libraries[3]);
}

TEST_F(Record, HasNoLibraryThatIsThereOnlyForTheLoader) {
  ::setenv("LD_LIBRARY_PATH", HVK3_SIMULATOR_DIR, 1);
  const Json libraries =
      libraries_of(folder_with({"libKR9ScanAPI.so", "libostrevan-simulator.so"}));
  ::unsetenv("LD_LIBRARY_PATH");
  EXPECT_TRUE(libraries[0]["failure"].is_null());
  EXPECT_FALSE(libraries[1]["failure"].is_null());
}

TEST_F(Record, HasNoFunctionThatIsNotThere) {
  const Json libraries = libraries_of(HVK3_SIMULATOR_DIR "/variants/ftrScanGetVersion");
  EXPECT_EQ(libraries[0]["missing"], Json::parse(R"(["ftrScanGetVersion"])"));
  const Json played = Json::parse(replay("doctor --json").out)["libraries"];
  EXPECT_EQ(played[0]["missing"], libraries[0]["missing"]);
}

TEST_F(Record, WithoutPixelsHoldsNoImage) {
  const Outcome recorded = record("capture --mode live --count 2", {}, {"--no-pixels"});
  EXPECT_THAT(recorded.error, HasSubstr("will hold no images"));
  EXPECT_LT(std::filesystem::file_size(recording()), 400000U);  // most of it is the memory
  const Outcome played = replay("capture --mode live --count 2");
  EXPECT_EQ(played.status, 0);
  EXPECT_THAT(played.out, EndsWith("image: 498 x 438 pixels, 500 DPI, mean gray 0.0\n"));
  EXPECT_THAT(played.error, HasSubstr("holds no images: frames are black"));
}

TEST_F(Record, EndsWithAFrameOfUnknownSize) {
  const Outcome outcome = record_program({HVK3_FRAME_CLIENT});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("nobody asked the scanner for the size of its frames"));
  EXPECT_EQ(calls(), 1U);
  const Outcome played = tool({"replay", recording(), "--", HVK3_FRAME_CLIENT});
  EXPECT_EQ(played.status, 9);
  EXPECT_THAT(played.error, HasSubstr("it ended at ftrScanGetImageByVariableDose(handle 1, 60"));
  EXPECT_THAT(played.error, Not(HasSubstr("were not made")));
}

/// All that stands in a recording, out of its compression.
std::string content_of(const std::string& path) {
  Osv::recorder::BlockReader file(path);
  Osv::recorder::Bytes block;
  std::string all = read_file(path);
  while (file.next(block, Osv::recorder::kLargestBlock)) {
    all.append(block.begin(), block.end());
  }
  return all;
}

TEST_F(Record, HoldsNoProtectedBytesAndNoCode) {
  const std::string code = m_cFolder.file("code");
  const std::string bytes = m_cFolder.file("bytes");
  std::ofstream(code) << "my-code";
  std::ofstream(bytes) << "mybytes";
  // The scanner's code is my-code, its bytes are SCANNER.
  const std::string script = m_cFolder.file("script");
  std::ofstream(script) << "authorization 6d792d636f6465 at 0\nsecret 5343414e4e4552 at 0\n";
  for (const std::string& command :
       {"secret read --print --code " + code, "secret authorize --code " + bytes,
        "secret write --code " + code + " --secret " + bytes}) {
    const Outcome recorded = record(command, {"--script", script});
    EXPECT_EQ(recorded.status, 0) << recorded.error;
    const std::string content = content_of(recording());
    EXPECT_THAT(content, HasSubstr("ClFutronicBaseSDK"));  // in the log
    for (const char* const hidden : {"my-code", "mybytes", "SCANNER", "6d792d", "534341"}) {
      EXPECT_THAT(content, Not(HasSubstr(hidden))) << command;
    }
  }
}

/// All entries of a recording but for when they were.
std::vector<Osv::recorder::Bytes> timeless_entries(const std::string& path) {
  using namespace Osv::recorder;
  BlockReader file(path);
  std::vector<Bytes> all;
  for (Bytes block; file.next(block, kLargestBlock);) {
    ByteReader reader(block);
    if (take_kind(reader) == eEntry::Call) {
      CallHead head = take_call(reader);
      head.begin = head.duration = 0;
      const ByteView arguments = take_arguments(reader);
      append_call(all.emplace_back(), head, Bytes(arguments.begin(), arguments.end()));
      append(all.back(), reader.rest().data(), reader.rest().size());
    }
  }
  return all;
}

/// Nor a check sum of them, by which the few of a code could be found.
TEST_F(Record, IsTheSameForOtherProtectedBytesAndCodes) {
  const std::string code = m_cFolder.file("code");
  const std::string bytes = m_cFolder.file("bytes");
  const std::string script = m_cFolder.file("script");
  const auto entries = [&](const std::string& command, char digit) {
    std::ofstream(code) << std::string(7, static_cast<char>(digit - '0'));
    std::ofstream(bytes) << std::string(7, digit);
    std::string hidden;
    for (int i = 0; i < 7; ++i) {
      hidden += std::string("0") + digit;
    }
    std::ofstream(script) << "authorization " << hidden << " at 0\nsecret " << hidden << " at 0\n";
    EXPECT_EQ(record(command, {"--script", script}).status, 0);
    return timeless_entries(recording());
  };
  for (const std::string& command :
       {"secret read --print --code " + code, "secret authorize --code " + bytes,
        "secret write --code " + code + " --secret " + bytes}) {
    EXPECT_TRUE(entries(command, '1') == entries(command, '2')) << command;
  }
}

TEST_F(Record, PlaysOtherBytesThanTheProtectedOnes) {
  const std::string code = m_cFolder.file("code");
  std::ofstream(code) << std::string(7, '\0');
  const std::string script = m_cFolder.file("script");
  std::ofstream(script) << "secret 5343414e4e4552 at 0\n";
  const std::string command = "secret read --print --code " + code;
  EXPECT_EQ(record(command, {"--script", script}).out, "5343414e4e4552\n");
  EXPECT_EQ(replay(command).out, "2a2a2a2a2a2a2a\n");
}

}  // namespace
}  // namespace hvk3::test
