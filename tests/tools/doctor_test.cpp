#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Doctor : public Tool {
 protected:
  static Json finding(const Json& object, const std::string& subject) {
    for (const Json& each : object["findings"]) {
      if (each["subject"] == subject) {
        return each;
      }
    }
    return {};
  }
};

TEST_F(Doctor, EndsWith0WhenAllIsGood) {
  const Outcome outcome = simulate("doctor");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("good  libKR9ScanAPI.so: " HVK3_SIMULATOR_DIR));
  EXPECT_THAT(outcome.out, HasSubstr("good  scanner library: API level 1"));
  EXPECT_THAT(outcome.out, HasSubstr("good  interface 0: scanner HVK30001, model 1, memory of "));
  EXPECT_THAT(outcome.out, HasSubstr("block version 1, description of 9 bytes, signature present; "
                                     "payload accepted, images of 498 x 438 pixels"));
  EXPECT_THAT(outcome.out, HasSubstr("libostrevanhvk3.so, interface version 2.0.1425.2"));
}

TEST_F(Doctor, TestsThePayloadOfTheFirstScannerOnly) {
  const Json interfaces = simulate_json("doctor", {"--scanners", "2"})["interfaces"];
  EXPECT_EQ(interfaces[0]["payload"], "accepted");
  EXPECT_EQ(interfaces[0]["output"], Json::parse(R"({"width": 498, "height": 438})"));
  EXPECT_EQ(interfaces[1]["payload"], "not-tested");
  EXPECT_TRUE(interfaces[1]["output"].is_null());
  EXPECT_THAT(simulate("doctor", {"--scanners", "2"}).out,
              HasSubstr("payload not tested: not the first of the list"));
}

TEST_F(Doctor, HasWhatItReadInJson) {
  const Json object = simulate_json("doctor");
  EXPECT_EQ(object["api_level"], 1);
  EXPECT_EQ(object["libraries"].size(), 4U);
  const Json& device = object["interfaces"][0];
  EXPECT_EQ(device["interface"], 0);
  EXPECT_EQ(device["opened"], true);
  EXPECT_EQ(device["model"], 1);
  EXPECT_GT(device["memory_size"], 0);
  EXPECT_EQ(device["block_version"], 1);
  EXPECT_EQ(device["description_length"], 9);
  EXPECT_EQ(device["signature"], true);
  EXPECT_EQ(device["serial"], "HVK30001");
}

TEST_F(Doctor, EndsWith8AndSaysWhatToDoWithoutADevice) {
  const Json object = simulate_json("doctor", {"--scanners", "0"});
  EXPECT_EQ(object["exit"], 8);
  EXPECT_EQ(object["status"], "defect-found");
  EXPECT_EQ(object["error"]["text"], "1 defect found");
  const Json bad = finding(object, "interfaces");
  EXPECT_EQ(bad["kind"], "bad");
  EXPECT_EQ(bad["text"], "no interface has a device");
  EXPECT_THAT(bad["remedy"], HasSubstr("Plug the scanner in"));
}

TEST_F(Doctor, PrintsTheRemedyUnderTheDefect) {
  const Outcome outcome =
      simulate("doctor", {"--faults", "ftrScanOpenDeviceOnInterface fails with 5"});
  EXPECT_EQ(outcome.status, 8);
  EXPECT_THAT(outcome.out, HasSubstr("bad   interface 0: can't be opened (error 5)\n"
                                     "      -> Close other programs"));
  EXPECT_THAT(outcome.error, HasSubstr("1 defect found"));
}

TEST_F(Doctor, LooksOnWhenThePluginCannotBeLoaded) {
  const Json object = simulate_json("doctor", {"--plugin", m_cFolder.file("absent.so")});
  EXPECT_EQ(object["exit"], 8);
  EXPECT_EQ(finding(object, "plug-in")["kind"], "bad");
  EXPECT_EQ(finding(object, "interface 0")["kind"], "good");
}

}  // namespace
}  // namespace hvk3::test
