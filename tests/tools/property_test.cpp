#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Properties : public Tool {
 protected:
  /// The lines of the plug-in's log that a command leaves.
  std::string log_of(const std::string& name, Words more) {
    more.insert(more.end(), {"--log", m_cFolder.file("log")});
    EXPECT_EQ(simulate(name, more).status, 0);
    return read_file(m_cFolder.file("log"));
  }
};

TEST_F(Properties, AreAllReadByName) {
  const Outcome outcome = simulate("property get");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "channels\t1\nliveness\t0\toff\nred-led\t0\toff\ngreen-led\t0\toff\nthreshold\t0\n"
            "low-contrast\t0\toff\n");
}

TEST_F(Properties, AreReadByNameOrNumber) {
  EXPECT_EQ(simulate("property get", {"low-contrast", "3"}).out,
            "low-contrast\t0\toff\nchannels\t1\n");
}

TEST_F(Properties, HaveNumberNameValueAndMeaningInJson) {
  const Json object = simulate_json("property get", {"red-led", "channels"});
  EXPECT_EQ(object["command"], "property get");
  EXPECT_EQ(object["properties"], Json::parse(R"([
      {"number": 7, "name": "red-led", "value": 0, "meaning": "off", "writable": true},
      {"number": 3, "name": "channels", "value": 1, "meaning": null, "writable": false}])"));
}

TEST_F(Properties, AreReadBackAfterTheyWereSet) {
  const Outcome outcome = simulate("property set", {"low-contrast", "on"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "low-contrast\t100\n");
  EXPECT_THAT(outcome.error, HasSubstr("the setting ends with this command"));
}

TEST_F(Properties, TellInJsonThatASettingDoesNotLast) {
  EXPECT_EQ(simulate_json("property set", {"liveness", "level-2"})["property"],
            Json::parse(R"({"number": 6, "name": "liveness", "value": 100, "lasts": false})"));
}

TEST_F(Properties, TakeTheWordsOfTheirValues) {
  EXPECT_THAT(log_of("property set", {"liveness", "level-2"}),
              HasSubstr("Property ID: 6, value: 2"));
  EXPECT_THAT(log_of("property set", {"liveness", "on"}), HasSubstr("Property ID: 6, value: 1"));
  EXPECT_THAT(log_of("property set", {"red-led", "off"}), HasSubstr("Property ID: 7, value: 0"));
}

TEST_F(Properties, ThatAreUnknownByNumberEndWith4AndNumber12) {
  for (const std::string command : {"property get", "property set"}) {
    const Json object =
        simulate_json(command, command == "property set" ? Words{"5", "1"} : Words{"5"});
    EXPECT_EQ(object["exit"], 4);
    EXPECT_EQ(object["error"]["number"], 12);
    EXPECT_EQ(object["error"]["text"], "Incorrect property or frame grabber does not support");
  }
}

TEST_F(Properties, ThatAreReadOnlyEndWith4AndNumber18) {
  const Outcome outcome = simulate("property set", {"channels", "2"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.error, HasSubstr("error 18: The property is read only"));
}

TEST_F(Properties, ThatAreUnknownByNameEndWith2) {
  const Outcome outcome = simulate("property get", {"brightness"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("no property 'brightness'"));
}

TEST_F(Properties, RefuseAValueThatIsNoneOfTheirsWith2) {
  const Outcome outcome = simulate("property set", {"red-led", "bright"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("'bright' is no value of red-led"));
}

TEST_F(Properties, EndWith3WithoutAScanner) {
  EXPECT_EQ(simulate("property get", {"--scanners", "0"}).status, 3);
}

TEST_F(Properties, AreSetForACapture) {
  EXPECT_THAT(log_of("capture", {"--set", "red-led=on", "--set", "threshold=60"}),
              testing::AllOf(HasSubstr("Property ID: 7, value: 1"),
                             HasSubstr("Property ID: 12, value: 60")));
}

TEST_F(Properties, AreSetForASnap) {
  EXPECT_THAT(log_of("snap", {"--set", "13=1"}), HasSubstr("Property ID: 13, value: 1"));
}

TEST_F(Properties, ChangeTheImagesOfTheCommandThatSetsThem) {
  const Json plain = simulate_json("snap", {"--empty"});
  const Json sensitive = simulate_json("snap", {"--empty", "--set", "low-contrast=on"});
  EXPECT_NE(plain["images"][0]["mean"], sensitive["images"][0]["mean"]);
}

TEST_F(Properties, InASettingThatCannotBeUnderstoodEndWith2) {
  for (const std::string setting : {"red-led", "brightness=1", "red-led=bright", "=1"}) {
    EXPECT_EQ(simulate("snap", {"--set", setting}).status, 2) << setting;
  }
}

TEST_F(Properties, InASettingThatTheScannerRefusesEndWith4) {
  EXPECT_EQ(simulate("capture", {"--set", "channels=2"}).status, 4);
}

}  // namespace
}  // namespace hvk3::test
