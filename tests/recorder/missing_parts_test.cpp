#include <regex>

#include "recorder/recorded_tool.h"

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

  void leave_out(const std::string& library) const {
    std::filesystem::remove(libraries() / library);
  }

  void leave_out(const std::string& library, const std::string& function) const {
    leave_out(library);
    link("variants/" + function + '/' + library, libraries() / library);
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

 private:
  static constexpr char kSimulator[] = "libostrevan-simulator.so";

  std::filesystem::path libraries() const { return m_cFolder.file("real/libraries"); }

  static void link(const std::string& name, const std::filesystem::path& path) {
    std::filesystem::create_symlink(std::string(HVK3_SIMULATOR_DIR) + '/' + name, path);
  }

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
