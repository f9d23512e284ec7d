#include <future>
#include <string>

#include "guide/guide_fixture.h"

int recovery_main(int, char**);

namespace Osv::guide {
namespace {

constexpr char kFrameCall[] = "ftrScanGetImageByVariableDose";
constexpr char kListCall[] = "ftrScanGetInterfaces";

class RecoveryExample : public GuideTest {
 protected:
  /// The next fault plan lets go of what the one before has blocked.
  void block(const std::string& function, int call) {
    bench.set_faults(function + " call " + std::to_string(call) + " blocks until told");
  }

  /// Unplugs the scanner when the frame call is blocked, and plugs it in when the list call is.
  void unplug_and_plug_in() {
    bench.wait_until_blocked(kFrameCall);
    bench.unplug(0);
    block(kListCall, 3);
    bench.wait_until_blocked(kListCall);
    bench.plug_in_again(0);
    bench.clear_faults();
  }
};

TEST_F(RecoveryExample, WaitsForAScannerThatWasUnpluggedAndGoesOn) {
  block(kFrameCall, 5);
  std::future<void> hands = std::async(std::launch::async, [this] { unplug_and_plug_in(); });
  const Outcome outcome = run(&recovery_main, {"12"});
  hands.get();
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("KR9 scanner is disconnected from the host, error: 2"));
  EXPECT_THAT(outcome.out, EndsWith("\n12 images\n"));
  EXPECT_GE(sleeps.nanosleeps(1, 0), 2);
}

TEST_F(RecoveryExample, ForgetsAScannerThatWasUnpluggedWhileNothingWasCaptured) {
  bench.set_faults("ftrScanGetImageSize call 1 fails with 259");
  const Outcome outcome = run(&recovery_main, {"5"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("Couldn't read the image size of scanner. error: 2"));
  EXPECT_EQ(bench.count("CalibrateSetData"), 2U);  // once for each opening
}

TEST_F(RecoveryExample, GivesUpAfterAnyOtherError) {
  bench.set_faults(std::string(kFrameCall) + " from call 3 on fails with 1460");
  const Outcome outcome = run(&recovery_main);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("Scanner error: 1460"));
}

}  // namespace
}  // namespace Osv::guide
