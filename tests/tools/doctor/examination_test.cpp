#include "hvk3/doctor/examination.h"

#include <nlohmann/json.hpp>

#include "hvk3/doctor/report.h"
#include "tools/doctor/doctor_fixture.h"

namespace hvk3::test {
namespace {

class ExaminationTest : public DoctorTest {
 protected:
  nlohmann::ordered_json device_in_json() {
    Report report("doctor", true);
    report_examination(report, examine());
    return report["interfaces"][0];
  }
};

TEST_F(ExaminationTest, SpeaksOfLibrariesThenScannersThenTheConfiguration) {
  std::vector<std::string> subjects;
  for (const Finding& each : findings()) {
    subjects.push_back(each.subject);
  }
  EXPECT_THAT(subjects, ElementsAre(kScannerLibrary, kEngineLibrary, kDetectorLibrary, kLogLibrary,
                                    "scanner library", "interface 0", "configuration"));
}

TEST_F(ExaminationTest, HasNullInJsonForWhatWasNotReached) {
  bench.plug_in(0, {.model = 2});
  const auto device = device_in_json();
  EXPECT_EQ(device["opened"], true);
  EXPECT_EQ(device["model"], 2);
  for (const char* const key :
       {"memory_size", "block_version", "description_length", "signature", "serial", "output"}) {
    EXPECT_TRUE(device[key].is_null()) << key;
  }
  EXPECT_EQ(device["payload"], "not-tested");
}

TEST_F(ExaminationTest, TellsARefusedPayloadInJson) {
  bench.set_faults("CalibrateSetData fails with -5");
  const auto device = device_in_json();
  EXPECT_EQ(device["payload"], "refused");
  EXPECT_TRUE(device["output"].is_null());
}

TEST_F(ExaminationTest, TellsAMissingSignatureInJson) {
  std::vector<unsigned char> memory = bench.memory(0);
  memory[25 + 9] = 'X';
  bench.set_memory(0, memory);
  EXPECT_EQ(device_in_json()["signature"], false);
}

TEST_F(ExaminationTest, TellsTheWholeLengthOfALongDescriptionInJson) {
  bench.plug_in(0, {.description = std::string(255, 'd')});
  EXPECT_EQ(device_in_json()["description_length"], 255);
}

TEST_F(ExaminationTest, HasNoApiLevelInJsonWithoutTheScannerLibrary) {
  m_libraries.make_absent(kScannerLibrary);
  Report report("doctor", true);
  report_examination(report, examine());
  EXPECT_TRUE(report["api_level"].is_null());
  EXPECT_TRUE(report["libraries"][0]["path"].is_null());
}

}  // namespace
}  // namespace hvk3::test
