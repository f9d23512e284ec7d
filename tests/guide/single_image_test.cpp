#include <fstream>
#include <string>

#include "guide/guide_fixture.h"

int single_image_main(int, char**);

namespace Osv::guide {
namespace {

class SingleImageExample : public GuideTest {
 protected:
  Outcome run_it() { return run(&single_image_main, {path}); }

  hvk3::test::TemporaryFolder folder;
  std::string path = folder.file("platen.pgm");
};

TEST_F(SingleImageExample, MeasuresTheDirtAndWritesAnImage) {
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "dirt: 0\n");
  EXPECT_EQ(std::filesystem::file_size(path), 15UL + 498UL * 438UL);
}

TEST_F(SingleImageExample, TellsHowDirtyThePlatenIs) {
  bench.set_faults("ContaminationDetection gives 37");
  EXPECT_EQ(run_it().out, "dirt: 37\n");
}

TEST_F(SingleImageExample, ReportsThatNoScannerIsAttached) {
  bench.unplug_all();
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, StartsWith("error 2: "));
}

TEST_F(SingleImageExample, DoesNotTakeAFailureWithoutAReasonForAnImage) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 3 on fails with 0");
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "the scanner failed without a reason\n");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace Osv::guide
