#include <csignal>

#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Capture : public Tool {
 protected:
  /// A capture that nothing ends, once it runs; then the signal.
  Outcome end_by(int signal, const Words& more = {}) {
    Words words = {"--empty", "--timeout", "0", "--verbose", "--log", m_cFolder.file("log")};
    words.insert(words.end(), more.begin(), more.end());
    Process process(command("capture", words));
    EXPECT_TRUE(process.wait_for_error_text("hvk3: capturing"));
    process.send(signal);
    return process.wait();
  }

  double mean_after(const std::string& settle) {
    return simulate_json("capture", {"--settle", settle})["images"][0]["mean"];
  }
};

TEST_F(Capture, WritesTheSettledFingerImage) {
  const std::string path = m_cFolder.file("finger.png");
  const Outcome outcome = simulate("capture", {"--out", path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith(path + ": 498 x 438 pixels, 500 DPI, mean gray "));
  EXPECT_THAT(outcome.error, IsEmpty());  // progress goes to terminals only
  EXPECT_THAT(read_file(path), HasSubstr(chunk_of_500_dpi()));
  EXPECT_EQ(mode_of(path), 0600U);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(Capture, ShowsItsProgressOnATerminalAndRemovesItInTheEnd) {
  const Outcome outcome = run(command("capture", {}), {.error = true});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr(" frames, "));
  EXPECT_THAT(outcome.error, EndsWith(" finger images\r\x1b[K"));
}

TEST_F(Capture, KeepsTheDarkestOfTheImagesThatSettle) {
  EXPECT_LT(mean_after("20"), mean_after("1"));
}

TEST_F(Capture, WaitsForSoManyFinishedImages) {
  EXPECT_GE(simulate_json("capture", {"--settle", "12"})["finger_images"], 12);
}

TEST_F(Capture, TellsWhatCameInInJson) {
  const Json object = simulate_json("capture");
  EXPECT_EQ(object["schema"], "hvk3/1");
  EXPECT_EQ(object["mode"], "plain");
  EXPECT_EQ(object["images"].size(), 1U);
  EXPECT_GT(object["frames"], object["finger_images"]);
  EXPECT_GT(object["seconds"], 0.0);
  EXPECT_EQ(object["warnings"], Json::array());
}

TEST_F(Capture, NumbersTheFilesOfSeveralImages) {
  const Outcome outcome =
      simulate("capture", {"--mode", "live", "--count", "3", "--out", m_cFolder.file("live.bmp")});
  EXPECT_EQ(outcome.status, 0);
  for (const std::string name : {"live-1.bmp", "live-2.bmp", "live-3.bmp"}) {
    EXPECT_THAT(read_file(m_cFolder.file(name)), StartsWith("BM")) << name;
  }
}

TEST_F(Capture, TakesEveryFrameInLiveModeWithOrWithoutAFinger) {
  const Json object = simulate_json("capture", {"--mode", "live", "--empty", "--count", "5"});
  EXPECT_EQ(object["mode"], "live");
  EXPECT_EQ(object["images"].size(), 5U);
  EXPECT_EQ(object["finger_images"], 0);
}

TEST_F(Capture, EndsWith5WhenNoFingerComes) {
  const Outcome outcome = simulate("capture", {"--empty", "--timeout", "0.2"});
  EXPECT_EQ(outcome.status, 5);
  EXPECT_THAT(outcome.error, HasSubstr("did not come in time"));
}

TEST_F(Capture, EndsWith4AndTheNumberWhenTheScannerFailsMeanwhile) {
  const Json object = simulate_json(
      "capture", {"--faults", "ftrScanGetImageByVariableDose from call 5 on fails with 87"});
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["error"]["number"], 87);
  EXPECT_EQ(object["error"]["text"], "KR9 scanner. Scanner error: 87");
}

TEST_F(Capture, EndsWith3WhenTheScannerIsUnpluggedMeanwhile) {
  const Json object = simulate_json(
      "capture", {"--faults", "ftrScanGetImageByVariableDose from call 5 on fails with 31"});
  EXPECT_EQ(object["exit"], 3);
  EXPECT_EQ(object["error"]["number"], 2);
}

TEST_F(Capture, EndsWith6WhenTheFileCannotBeWritten) {
  EXPECT_EQ(simulate("capture", {"--out", m_cFolder.file("absent/finger.png")}).status, 6);
}

TEST_F(Capture, EndsWith130OnCtrlC) {
  const Outcome outcome = end_by(SIGINT);
  EXPECT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.error, HasSubstr("interrupted"));
}

TEST_F(Capture, EndsAtOnceOnASecondCtrlC) {
  // The first one waits in vain for the worker, which is in a call that never returns.
  Process process(command("capture", {"--verbose", "--timeout", "0", "--faults",
                                      "ftrScanGetImageByVariableDose call 1 blocks until told"}));
  EXPECT_TRUE(process.wait_for_error_text("Preparation of calibration"));
  process.send(SIGINT);
  EXPECT_TRUE(process.wait_for_error_text("Calling StopCapture function"));
  process.send(SIGINT);
  const Outcome outcome = process.wait();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.error, Not(HasSubstr("interrupted")));
}

TEST_F(Capture, EndsWith143OnTermination) { EXPECT_EQ(end_by(SIGTERM).status, 143); }

TEST_F(Capture, LeavesNoFileBehindOnCtrlC) {
  end_by(SIGINT, {"--out", m_cFolder.file("finger.png")});
  EXPECT_EQ(m_cFolder.count(), 1);  // the log
}

TEST_F(Capture, StopsTheChannelOnCtrlC) {
  end_by(SIGINT);
  EXPECT_THAT(read_file(m_cFolder.file("log")), HasSubstr("Calling StopCapture function"));
}

TEST_F(Capture, TellsOfTheInterruptionInJson) {
  const Json object = Json::parse(end_by(SIGINT, {"--json"}).out);
  EXPECT_EQ(object["status"], "interrupted");
  EXPECT_EQ(object["exit"], 130);
}

}  // namespace
}  // namespace hvk3::test
