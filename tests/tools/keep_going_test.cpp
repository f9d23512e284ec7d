#include <csignal>

#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

/// Captures across unpluggings. A scenario steers them.
class KeepGoing : public Tool {
 protected:
  Words words_for(const std::string& scenario, const Words& more = {}) const {
    std::ofstream(m_cFolder.file("script")) << scenario;
    Words words = {"--keep-going", "--script", m_cFolder.file("script")};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  /// 20 live images.
  Json capture(const std::string& scenario, const Words& more = {}) const {
    Words words = words_for(scenario, {"--mode", "live", "--count", "20"});
    words.insert(words.end(), more.begin(), more.end());
    return simulate_json("capture", words);
  }
};

constexpr char kGone[] = "wait 3 frames\nunplug 0\nwait 1 call of ftrScanGetInterfaces\n";
constexpr char kGoneAtOnce[] =
    "wait 1 call of ftrScanGetImageSize\nunplug 0\nwait 1 call of ftrScanGetInterfaces\n";

TEST_F(KeepGoing, CapturesAgainWhenTheScannerIsBack) {
  const Json object = capture(std::string(kGone) + "plug 0\n");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_EQ(object["images"].size(), 20U);
  EXPECT_EQ(object["comebacks"], 1);
}

TEST_F(KeepGoing, SaysWhatItWaitsFor) {
  const Outcome outcome = simulate("capture", words_for(std::string(kGone) + "plug 0\n"));
  EXPECT_THAT(outcome.error, HasSubstr("disconnected from the host, error: 2); waiting for one\n"));
  EXPECT_THAT(outcome.error, EndsWith("a scanner is there again\n"));
}

TEST_F(KeepGoing, TakesAScannerAtAnotherInterface) {
  EXPECT_EQ(capture(std::string(kGone) + "plug 5\n")["comebacks"], 1);
}

TEST_F(KeepGoing, TakesAScannerWithSmallerFrames) {
  const Json images = capture(std::string(kGone) + "plug 0 small\n")["images"];
  EXPECT_EQ(images.size(), 20U);
  EXPECT_EQ(images.front()["width"], 498);
  EXPECT_EQ(images.back()["width"], 374);
}

TEST_F(KeepGoing, ComesBackAgainAndAgain) {
  const std::string once = std::string(kGone) + "plug 0\n";
  const Json object = capture(once + once + once);
  EXPECT_EQ(object["images"].size(), 20U);
  EXPECT_EQ(object["comebacks"], 3);
}

TEST_F(KeepGoing, ComesBackFromAnUnpluggingDuringThePreparation) {
  const Json object = capture(std::string(kGoneAtOnce) + "plug 0\n");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_EQ(object["comebacks"], 1);
}

TEST_F(KeepGoing, ComesBackFromAnUnpluggingDuringTheComeback) {
  const Json object = capture(std::string(kGone) +
                              "plug 0\nwait 1 call of CalibrateCreate\nunplug 0\n"
                              "wait 1 call of ftrScanGetInterfaces\nplug 0\n");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_EQ(object["images"].size(), 20U);
}

TEST_F(KeepGoing, WaitsForTheScannerThatIsAskedForAlone) {
  // The scanner is to be gone before the time is over.
  const Json object =
      capture(std::string(kGoneAtOnce) + "plug 5\n", {"--device", "0", "--timeout", "5"});
  EXPECT_EQ(object["exit"], 5);
  EXPECT_EQ(object["error"]["text"], "no scanner came back in time");
}

TEST_F(KeepGoing, SetsThePropertiesAgain) {
  const Json object = capture(std::string(kGone) + "plug 0\n",
                              {"--set", "red-led=on", "--log", m_cFolder.file("log")});
  EXPECT_EQ(object["comebacks"], 1);
  const std::string log = read_file(m_cFolder.file("log"));
  const std::string line = "setting of property. Property ID: 7, value: 1";
  EXPECT_NE(log.find(line), log.rfind(line));
}

TEST_F(KeepGoing, BeginsAnewWithAFingerThatWasSettling) {
  const Json object = simulate_json(
      "capture",
      words_for("wait 20 frames\nunplug 0\nwait 1 call of ftrScanGetInterfaces\nplug 0\n",
                {"--settle", "12"}));
  EXPECT_EQ(object["comebacks"], 1);
  EXPECT_EQ(object["images"].size(), 1U);
  EXPECT_GT(object["finger_images"], 12);
}

TEST_F(KeepGoing, CountsTheFramesOfAllSessions) {
  EXPECT_GE(capture(std::string(kGone) + "plug 0\n")["frames"], 20);
}

TEST_F(KeepGoing, EndsOnCtrlCWhileItWaits) {
  Process process(command("capture", words_for(kGone, {"--timeout", "0"})));
  EXPECT_TRUE(process.wait_for_error_text("waiting for one"));
  process.send(SIGINT);
  EXPECT_EQ(process.wait().status, 130);
}

TEST_F(KeepGoing, EndsWith4WhenTheScannerIsThereAndFails) {
  const Json object =
      capture("# nothing happens\n",
              {"--faults", "ftrScanGetImageByVariableDose from call 5 on fails with 87"});
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["comebacks"], 0);
}

TEST_F(KeepGoing, EndsWith3WhenThereIsNoScannerAtTheBeginning) {
  EXPECT_EQ(capture("unplug 0\n")["exit"], 3);
}

}  // namespace
}  // namespace hvk3::test
