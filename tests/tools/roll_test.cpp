#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using Roll = Tool;

TEST_F(Roll, SaysThatTheScannerDoesNotOfferIt) {
  const Outcome outcome = simulate("roll", {"--timeout", "0"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("this scanner does not offer rolled capture"));
  EXPECT_THAT(outcome.out, StartsWith("image: 498 x 438 pixels, 500 DPI, mean gray "));
}

TEST_F(Roll, TellsInJsonThatItIsNotOffered) {
  const Json object = simulate_json("roll", {"--timeout", "0"});
  EXPECT_EQ(object["mode"], "rolled");
  EXPECT_EQ(object["offered"], false);
  EXPECT_EQ(object["images"].size(), 1U);
  EXPECT_GT(object["frames"], 1);
}

TEST_F(Roll, WritesThePrint) {
  const std::string path = m_cFolder.file("rolled.png");
  EXPECT_EQ(simulate("roll", {"--out", path, "--timeout", "0"}).status, 0);
  EXPECT_THAT(read_file(path), HasSubstr(chunk_of_500_dpi()));
  EXPECT_EQ(mode_of(path), 0600U);
}

TEST_F(Roll, EndsWith5WhenNoFingerRolls) {
  EXPECT_EQ(simulate("roll", {"--empty", "--timeout", "0.2"}).status, 5);
}

TEST_F(Roll, EndsWith3WithoutAScanner) {
  EXPECT_EQ(simulate("roll", {"--scanners", "0"}).status, 3);
}

}  // namespace
}  // namespace hvk3::test
