#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using List = Tool;

TEST_F(List, PrintsInterfaceAndSerialNumberOfEachScanner) {
  const Outcome outcome = simulate("list", {"--scanners", "2"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "0\tHVK30001\n1\tHVK30002\n");
  EXPECT_THAT(outcome.error, IsEmpty());
}

TEST_F(List, NamesSchemaCommandAndEndInJson) {
  const Json object = simulate_json("list");
  EXPECT_EQ(object["schema"], "hvk3/1");
  EXPECT_EQ(object["command"], "list");
  EXPECT_EQ(object["status"], "ok");
  EXPECT_EQ(object["exit"], 0);
  EXPECT_FALSE(object.contains("error"));
}

TEST_F(List, HasTheScannersInJson) {
  const Json object = simulate_json("list", {"--scanners", "2"});
  EXPECT_EQ(object["scanners"], Json::parse(R"([{"interface": 0, "serial": "HVK30001"},
                                                {"interface": 1, "serial": "HVK30002"}])"));
}

TEST_F(List, EndsWith3WithoutAScanner) {
  const Outcome outcome = simulate("list", {"--scanners", "0"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.error, HasSubstr("no scanner is attached"));
}

TEST_F(List, IsAnEmptyArrayInJsonWithoutAScanner) {
  const Json object = simulate_json("list", {"--scanners", "0"});
  EXPECT_EQ(object["scanners"], Json::array());
  EXPECT_EQ(object["status"], "no-scanner");
  EXPECT_EQ(object["exit"], 3);
}

}  // namespace
}  // namespace hvk3::test
