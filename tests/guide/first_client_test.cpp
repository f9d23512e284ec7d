#include <algorithm>

#include "guide/guide_fixture.h"

int first_client_main();

namespace Osv::guide {
namespace {

/// A finger that lies on the platen.
class FirstClientExample : public GuideTest {
 protected:
  FirstClientExample() { bench.set_timeline(simulator::Timeline::settled_finger()); }

  static Outcome run_it() {
    return run([](int, char**) { return first_client_main(); });
  }
};

TEST_F(FirstClientExample, DrawsTheFinger) {
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("Put a finger on the scanner.\n"));
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1 + 24);
  EXPECT_GT(std::count(outcome.out.begin(), outcome.out.end(), '#'), 50);
}

TEST_F(FirstClientExample, SaysWhatItMisses) {
  libraries.make_absent("libKR9ScanAPI.so");
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, StartsWith("error 23: "));
  EXPECT_THAT(outcome.out, HasSubstr("libKR9ScanAPI.so"));
}

TEST_F(FirstClientExample, EndsWithTheErrorThatEndedCapture) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 5 on fails with 1460");
  const Outcome outcome = run_it();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, EndsWith("\nKR9 scanner. Scanner error: 1460 error: 1460\n"));
}

}  // namespace
}  // namespace Osv::guide
