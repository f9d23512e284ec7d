#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using Features = Tool;

TEST_F(Features, AreListedWithNumberNameTypeAndBounds) {
  const Outcome outcome = simulate("feature list");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 23);
  EXPECT_THAT(outcome.out,
              StartsWith("3\tnumber-of-channels\t8-bit\t0\t255\tNumber of channels: "));
  EXPECT_THAT(outcome.out, HasSubstr("\n24\tsignature-filter\t32-bit\t0\t500000\t"));
  EXPECT_THAT(outcome.out, HasSubstr("\n52\tdisplay-data\t-\t-\t-\tDisplay data: "));
}

TEST_F(Features, HaveTheirSchemaInJson) {
  const Json features = simulate_json("feature list")["features"];
  EXPECT_EQ(features.back(), Json::parse(R"({"number": 55, "name": "Image data format",
      "word": "image-data-format", "description": "the format used with image callbacks",
      "type": "8-bit", "minimum": 1, "maximum": 2})"));
  EXPECT_TRUE(features[19]["type"].is_null());
  EXPECT_TRUE(features[19]["maximum"].is_null());
}

TEST_F(Features, AreListedWithoutAScanner) {
  EXPECT_EQ(simulate("feature list", {"--scanners", "0"}).status, 0);
}

TEST_F(Features, AreReadByNumberOrName) {
  EXPECT_EQ(simulate("feature get", {"55"}).out, "image-data-format\t1\n");
  EXPECT_EQ(simulate_json("feature get", {"image-data-format"})["feature"],
            Json::parse(R"({"number": 55, "name": "Image data format", "value": 1})"));
}

TEST_F(Features, AreReadBackAfterTheyWereSet) {
  const Outcome outcome = simulate("feature set", {"55", "2"});
  EXPECT_EQ(outcome.out, "image-data-format\t2\n");
  EXPECT_THAT(outcome.error, HasSubstr("the setting ends with this command"));
  EXPECT_EQ(simulate_json("feature set", {"55", "2"})["feature"]["value"], 2);
}

TEST_F(Features, TellTheValueThatTheScannerMadeOfAWideOne) {
  EXPECT_EQ(simulate("feature set", {"55", "258"}).out, "image-data-format\t2\n");
}

TEST_F(Features, OutOfTheirRangeEndWith4AndNumber52) {
  const Json object = simulate_json("feature set", {"55", "3"});
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["error"]["number"], 52);
  EXPECT_EQ(object["error"]["text"], "the value is out of the feature's range");
}

TEST_F(Features, ThatThisScannerLacksEndWith4AndNumber12) {
  for (const std::string number : {"7", "52", "200"}) {
    const Outcome outcome = simulate("feature get", {number});
    EXPECT_EQ(outcome.status, 4) << number;
    EXPECT_THAT(outcome.error, HasSubstr("error 12: this scanner does not have the feature"));
  }
  EXPECT_EQ(simulate("feature set", {"24", "70000"}).status, 4);
}

TEST_F(Features, WithSecretsAreLeftToTheCommandsForThem) {
  for (const std::string number : {"53", "54", "secret7bytes"}) {
    const Outcome outcome = simulate("feature set", {number, "1"});
    EXPECT_EQ(outcome.status, 2) << number;
    EXPECT_THAT(outcome.error, HasSubstr("hvk3 secret"));
    EXPECT_EQ(simulate("feature get", {number}).status, 2) << number;
  }
}

TEST_F(Features, ThatAreUnknownByNameEndWith2) {
  const Outcome outcome = simulate("feature get", {"colour"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("no feature 'colour'"));
}

TEST_F(Features, RefuseAValueThatIsNoNumberWith2) {
  EXPECT_EQ(simulate("feature set", {"55", "two"}).status, 2);
  EXPECT_EQ(simulate("feature set", {"55", "4294967296"}).status, 2);
}

TEST_F(Features, EndWith3WithoutAScanner) {
  EXPECT_EQ(simulate("feature get", {"55", "--scanners", "0"}).status, 3);
}

}  // namespace
}  // namespace hvk3::test
