#include <regex>

#include "recorder/recorded_tool.h"
#include "recorder/recording_builder.h"

namespace hvk3::test {
namespace {

/// A session recorded where a closed library is missing or lacks a function.
class MissingParts : public RecordedTool {
 protected:
  MissingParts() {
    std::filesystem::create_directories(libraries());
    link(kSimulator, m_cFolder.file(kSimulator));  // where stand-ins that lack a function seek it
    for (const char* const name : {kSimulator, "libKR9ScanAPI.so", "libostrevancalibratesdk.so",
                                   "libostrevanfakefingerdetection.so", "libostrevanlf.so"}) {
      link(name, libraries() / name);
    }
  }

  ~MissingParts() override { ::unsetenv("LD_LIBRARY_PATH"); }

  void leave_out(const std::string& library) const {
    std::filesystem::remove(libraries() / library);
  }

  void leave_out(const std::string& library, const std::string& function) const {
    leave_out(library);
    link("variants/" + function + '/' + library, libraries() / library);
  }

  void spoil(const std::string& library, const std::string& content) const {
    leave_out(library);
    std::ofstream(libraries() / library, std::ios::binary) << content;
  }

  /// As on a machine with words of 32 bits.
  static std::string foreign_library() { return "\177ELF\1" + std::string(59, '\0'); }

  static void link(const std::string& name, const std::filesystem::path& path) {
    std::filesystem::create_symlink(std::string(HVK3_SIMULATOR_DIR) + '/' + name, path);
  }

  /// @param needed a name as long as the simulator's
  static std::string scanner_library_that_needs(const std::string& needed) {
    std::string library =
        read_file(std::string(HVK3_SIMULATOR_DIR) + "/variants/ftrScanGetVersion/libKR9ScanAPI.so");
    EXPECT_EQ(needed.size(), sizeof(kSimulator) - 1);
    return library.replace(library.find(kSimulator), needed.size(), needed);
  }

  /// Records what the doctor finds of the libraries of the folder, and plays it.
  Json expect_the_same_findings() {
    m_cRecorded = tool({"record", recording(), "--real-dir", libraries(), "--", HVK3_BARE_TOOL,
                        "doctor", "--json"});
    m_cPlayed = replay("doctor --json");
    const Json recorded = Json::parse(without_folders(m_cRecorded.out))["libraries"];
    const Json played = Json::parse(without_folders(m_cPlayed.out))["libraries"];
    for (std::size_t i = 0; i < recorded.size(); ++i) {
      EXPECT_EQ(played[i]["failure"], recorded[i]["failure"]);
    }
    return recorded;
  }

  /// Records a client's session and plays it. @return what the client wrote both times
  std::string expect_the_same_session() const {
    const std::string bench = std::string(HVK3_SIMULATOR_DIR) + '/' + kSimulator;
    const Outcome recorded = tool({"record", recording(), "--simulate", "--simulator", libraries(),
                                   "--", HVK3_SESSION_CLIENT, HVK3_PLUGIN, bench});
    EXPECT_THAT(recorded.error, HasSubstr(" calls are in "));
    const Outcome played = tool({"replay", recording(), "--", HVK3_SESSION_CLIENT, HVK3_PLUGIN});
    EXPECT_EQ(recorded.status, 0);
    EXPECT_EQ(played.status, 0) << played.error;
    EXPECT_EQ(without_folders(played.out), without_folders(recorded.out));
    return recorded.out;
  }

  std::filesystem::path libraries() const { return m_cFolder.file("real/libraries"); }

  Outcome m_cRecorded;
  Outcome m_cPlayed;
  static constexpr char kSimulator[] = "libostrevan-simulator.so";

 private:
  /// A loader's message has the folder of the forwarders, which is another one each time.
  static std::string without_folders(const std::string& text) {
    return std::regex_replace(text, std::regex("/hvk3-\\w{6}/"), "/");
  }
};

TEST_F(MissingParts, NoScannerLibraryIsPlayed) {
  leave_out("libKR9ScanAPI.so");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("libKR9ScanAPI.so: cannot open"));
}

TEST_F(MissingParts, NoEngineIsPlayed) {
  leave_out("libostrevancalibratesdk.so");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("libostrevancalibratesdk.so: cannot open"));
}

TEST_F(MissingParts, NoDetectorIsPlayed) {
  leave_out("libostrevanfakefingerdetection.so");
  EXPECT_THAT(expect_the_same_session(),
              HasSubstr("libostrevanfakefingerdetection.so: cannot open"));
}

TEST_F(MissingParts, NoLoggingFacilityIsPlayed) {
  leave_out("libostrevanlf.so");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("finger 1 "));
}

TEST_F(MissingParts, AnEngineThatIsCutShortIsPlayed) {
  spoil("libostrevancalibratesdk.so", "short");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("libostrevancalibratesdk.so: file too short"));
}

TEST_F(MissingParts, LibrariesThatCannotBeLoadedAreNamed) {
  spoil("libKR9ScanAPI.so", "short");
  spoil("libostrevancalibratesdk.so", std::string(100, '-'));
  spoil("libostrevanfakefingerdetection.so", foreign_library());
  const Json libraries = expect_the_same_findings();
  const Words reasons = {"libKR9ScanAPI.so: file too short",
                         "libostrevancalibratesdk.so: invalid ELF header",
                         "libostrevanfakefingerdetection.so: wrong ELF class: ELFCLASS32"};
  for (std::size_t place = 0; place < reasons.size(); ++place) {
    const std::string& why = reasons[place];
    EXPECT_THAT(libraries[place]["failure"].get<std::string>(), EndsWith(why));
    const std::string name = libraries[place]["name"];
    EXPECT_THAT(m_cRecorded.error, HasSubstr(name + " is there and can't be loaded: /"));
    EXPECT_THAT(m_cPlayed.error, HasSubstr(name + " was there and could not be loaded: /"));
    EXPECT_THAT(m_cPlayed.error, HasSubstr(why));
  }
}

TEST_F(MissingParts, ALibraryForAnotherMachineIsNotReplacedByTheLoaders) {
  spoil("libostrevanfakefingerdetection.so", foreign_library());
  ::setenv("LD_LIBRARY_PATH", HVK3_SIMULATOR_DIR, 1);
  const Json libraries = expect_the_same_findings();
  EXPECT_TRUE(libraries[0]["failure"].is_null());
  EXPECT_FALSE(libraries[2]["failure"].is_null());
}

TEST_F(MissingParts, ALibraryFindsWhatItNeedsInItsFolder) {
  leave_out("libKR9ScanAPI.so", "ftrScanGetVersion");
  std::filesystem::remove(m_cFolder.file(kSimulator));
  EXPECT_TRUE(expect_the_same_findings()[0]["failure"].is_null());
  EXPECT_THAT(m_cRecorded.error, Not(HasSubstr("can't be loaded")));
}

TEST_F(MissingParts, ALibraryThatNeedsOneThatIsNotThereIsNamed) {
  spoil("libKR9ScanAPI.so", scanner_library_that_needs("libostrevan-is-absent.so"));
  EXPECT_EQ(expect_the_same_findings()[0]["failure"],
            "libostrevan-is-absent.so: cannot open shared object file: No such file or directory");
  EXPECT_THAT(m_cPlayed.error, HasSubstr("libKR9ScanAPI.so was there and could not be loaded: "));
}

// Else the program would load it and what needs it, and nothing of that would be recorded.
TEST_F(MissingParts, WhatTheRecorderDoesNotFindByItsNameTheProgramDoesNotFindEither) {
  spoil("libKR9ScanAPI.so", scanner_library_that_needs("libostrevan-othername.so"));
  link(kSimulator, libraries() / "libostrevan-othername.so");
  EXPECT_EQ(expect_the_same_findings()[0]["failure"],
            "libostrevan-othername.so: cannot open shared object file: No such file or directory");
}

TEST_F(MissingParts, WhatALibraryNeededIsNotFoundOnThisMachineEither) {
  Osv::recorder::Header header;
  header.failures[0] = "libcrypt.so.1: cannot open shared object file: No such file or directory";
  const Osv::recorder::test::RecordingBuilder builder(header);
  const Outcome played = tool({"doctor", "--json", "--replay", builder.path()});
  EXPECT_EQ(Json::parse(played.out)["libraries"][0]["failure"], header.failures[0]);
}

TEST_F(MissingParts, AScannerLibraryThatLacksAFunctionIsPlayed) {
  leave_out("libKR9ScanAPI.so", "ftrScanGetImage2");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("undefined symbol: ftrScanGetImage2"));
}

TEST_F(MissingParts, AScannerLibraryOfTheBaseLevelIsPlayed) {
  leave_out("libKR9ScanAPI.so", "ftrScanGetVersion");
  EXPECT_THAT(expect_the_same_session(), Not(HasSubstr("live ")));
}

TEST_F(MissingParts, AnEngineThatLacksAFunctionIsPlayed) {
  leave_out("libostrevancalibratesdk.so", "CalibrateGetOption");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("undefined symbol: CalibrateGetOption"));
}

TEST_F(MissingParts, ADetectorThatLacksAFunctionIsPlayed) {
  leave_out("libostrevanfakefingerdetection.so", "FakeFingerDetectionReset");
  EXPECT_THAT(expect_the_same_session(), HasSubstr("undefined symbol: FakeFingerDetectionReset"));
}

TEST_F(MissingParts, AToolOnTheSimulatorIsRecordedWithoutTheScannerLibrary) {
  leave_out("libKR9ScanAPI.so");
  const Outcome recorded = tool({"record", recording(), "--simulate", "--simulator",
                                 m_cFolder.file("real/libraries"), "--", HVK3_BARE_TOOL, "list",
                                 "--simulate", "--simulator", m_cFolder.file("real/libraries")});
  EXPECT_EQ(recorded.status, 4);
  EXPECT_EQ(errors(replay("list")), errors(recorded));
}

}  // namespace
}  // namespace hvk3::test
