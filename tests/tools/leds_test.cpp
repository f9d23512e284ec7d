#include <csignal>

#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using Leds = Tool;

TEST_F(Leds, AreSwitchedAndHeld) {
  const Outcome outcome = simulate("leds", {"--red", "on", "--hold", "0.01"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "red on, green off\n");
}

TEST_F(Leds, StandInJson) {
  const Json object = simulate_json("leds", {"--red", "off", "--green", "on", "--hold", "0.01"});
  EXPECT_EQ(object["leds"], Json::parse(R"({"red": false, "green": true})"));
  EXPECT_EQ(object["hold"], 0.01);
}

TEST_F(Leds, ThatAreNotNamedStayAsTheyAre) {
  const std::string log = m_cFolder.file("log");
  simulate("leds", {"--green", "on", "--hold", "0.01", "--log", log});
  EXPECT_THAT(read_file(log), HasSubstr("setting of property. Property ID: 8, value: 1"));
  EXPECT_THAT(read_file(log), Not(HasSubstr("setting of property. Property ID: 7")));
}

TEST_F(Leds, AreHeldUntilCtrlCAndThenEndWith130) {
  Process process(
      command("leds", {"--red", "on", "--hold", "0", "--verbose", "--log", m_cFolder.file("log")}));
  EXPECT_TRUE(process.wait_for_error_text("hvk3: holding"));
  process.send(SIGINT);
  EXPECT_EQ(process.wait().status, 130);
}

TEST_F(Leds, EndWith4WhenTheScannerRefuses) {
  const Outcome outcome = simulate(
      "leds", {"--red", "on", "--hold", "1", "--faults", "ftrScanSetDiodesStatus fails with 5"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.error, HasSubstr("error 5: Switch the LED failed"));
}

TEST_F(Leds, NeedATimeAndKnowOnAndOff) {
  EXPECT_EQ(simulate("leds", {"--red", "on"}).status, 2);
  EXPECT_EQ(simulate("leds", {"--red", "blue", "--hold", "1"}).status, 2);
  EXPECT_EQ(simulate("leds", {"--red", "on", "--hold", "-1"}).status, 2);
}

TEST_F(Leds, EndWith3WithoutAScanner) {
  EXPECT_EQ(simulate("leds", {"--red", "on", "--hold", "1", "--scanners", "0"}).status, 3);
}

}  // namespace
}  // namespace hvk3::test
