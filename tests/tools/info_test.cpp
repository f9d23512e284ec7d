#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using Info = Tool;

TEST_F(Info, DescribesTheFirstScanner) {
  const Outcome outcome = simulate("info");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("Ostrevan KR9 scanner"));
  EXPECT_THAT(outcome.out, HasSubstr("HVK30001"));
  EXPECT_THAT(outcome.out, HasSubstr("2.1, 3.4.5"));
  EXPECT_THAT(outcome.out, HasSubstr("2.0.1425.2"));
  EXPECT_THAT(outcome.out, HasSubstr("live, plain"));
}

TEST_F(Info, DescribesTheChosenScannerAndNotTheFirst) {
  const Json object = simulate_json("info", {"--scanners", "3", "--device", "2"});
  EXPECT_EQ(object["scanner"]["interface"], 2);
  EXPECT_EQ(object["scanner"]["serial"], "HVK30003");
}

TEST_F(Info, HasEverythingInJson) {
  const Json object = simulate_json("info");
  EXPECT_EQ(object["scanner"]["name"], "Ostrevan KR9 scanner");
  EXPECT_EQ(object["scanner"]["versions"], Json::parse(R"(["2.1", "3.4.5"])"));
  EXPECT_EQ(object["interface_version"], "2.0.1425.2");
  EXPECT_EQ(object["modes"], Json::parse(R"(["live", "plain"])"));
}

TEST_F(Info, EndsWith3ForAnInterfaceWithoutAScanner) {
  const Outcome outcome = simulate("info", {"--device", "5"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("no scanner at interface 5"));
}

TEST_F(Info, TellsNumberAndTextOfAFailure) {
  const Json object = simulate_json("info", {"--faults", "ftrScanSetOptions fails with 5"});
  EXPECT_EQ(object["status"], "scanner-failed");
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["error"]["number"], 5);
  EXPECT_EQ(object["error"]["text"], "KR9 scanner. Set camara resolution failed.");
}

}  // namespace
}  // namespace hvk3::test
