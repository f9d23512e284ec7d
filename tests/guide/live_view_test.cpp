#include <algorithm>

#include "guide/guide_fixture.h"

int live_view_main(int, char**);

namespace Osv::guide {
namespace {

using LiveViewExample = GuideTest;

TEST_F(LiveViewExample, DrawsAsManyImagesAsItWasAskedFor) {
  const Outcome outcome = run(&live_view_main, {"12"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 12);
  EXPECT_THAT(outcome.out, StartsWith("498 x 438, level of the middle row 2"));
}

TEST_F(LiveViewExample, EndsWithTheErrorThatEndedCapture) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 3 on fails with 1460");
  const Outcome outcome = run(&live_view_main);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "KR9 scanner. Scanner error: 1460 error: 1460\n");
}

TEST_F(LiveViewExample, ReportsThatNoScannerIsAttached) {
  bench.unplug_all();
  const Outcome outcome = run(&live_view_main);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "error 2: Failed start capturing.\n");
}

}  // namespace
}  // namespace Osv::guide
