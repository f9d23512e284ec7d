#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using Contamination = Tool;

TEST_F(Contamination, IsTold) {
  const Outcome outcome =
      simulate("contamination", {"--empty", "--faults", "ContaminationDetection gives 12"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "contamination level 12.0\n");
}

TEST_F(Contamination, StandsInJson) {
  EXPECT_EQ(simulate_json("contamination", {"--empty", "--faults",
                                            "ContaminationDetection gives 12"})["contamination"],
            12.0);
}

TEST_F(Contamination, IsLowOnACleanPlaten) {
  EXPECT_LT(simulate_json("contamination", {"--empty"})["contamination"], 5.0);
}

TEST_F(Contamination, EndsWith4AndTheNumberWhenTheFrameFails) {
  const Json object =
      simulate_json("contamination", {"--faults", "ftrScanGetImageByVariableDose fails with 87"});
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["error"]["number"], 87);
  EXPECT_EQ(object["error"]["text"], "Capture image failed.");
}

TEST_F(Contamination, EndsWith3WithoutAScanner) {
  EXPECT_EQ(simulate("contamination", {"--scanners", "0"}).status, 3);
}

}  // namespace
}  // namespace hvk3::test
