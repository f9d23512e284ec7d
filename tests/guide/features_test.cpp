#include <fstream>

#include "guide/guide_fixture.h"

int features_main(int, char**);

namespace Osv::guide {
namespace {

constexpr char kOutput[] =
    "property 3: 1\nproperty 6: 0\nproperty 7: 0\nproperty 8: 100\nproperty 12: 0\nproperty 13: 0\n"
    "image data format: 1\nimage data format 3: refused with 52\n";

class FeaturesExample : public GuideTest {
 protected:
  std::string code_file(const std::string& code) {
    std::string path = folder.file("code");
    std::ofstream(path, std::ios::binary) << code;
    return path;
  }

  hvk3::test::TemporaryFolder folder;
};

TEST_F(FeaturesExample, PrintsPropertiesAndFeatures) {
  const Outcome outcome = run(&features_main);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, kOutput);
}

TEST_F(FeaturesExample, ReadsTheProtectedBytesAndDoesNotPrintThem) {
  simulator::Device device;
  device.authorization_code = {'c', 'o', 'd', 'e', '1', '2', '3'};
  bench.plug_in(0, device);
  const Outcome outcome = run(&features_main, {code_file("code123")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, std::string(kOutput) + "the protected bytes were read\n");
}

TEST_F(FeaturesExample, ReportsAWrongCode) {
  const Outcome outcome = run(&features_main, {code_file("wrong..")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "error 83: Invalid authorization code\n");
}

}  // namespace
}  // namespace Osv::guide
