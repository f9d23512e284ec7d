#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "threads/captures.h"
#include "threads/effort.h"

namespace Osv::threads {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string memory_maps() {
  std::ifstream maps("/proc/self/maps");
  return {std::istreambuf_iterator<char>(maps), {}};
}

/// Loads the plug-in as often as it is asked.
class Loading : public simulator::SimulatorFixture {
 protected:
  Loading() { bench.record(false); }

  /// A session with everything that the plug-in loads.
  static void use_once() {
    const client::Plugin plugin;
    lx::ClFramegrabber& grabber = plugin.grabber();
    grabber.SetCallbacks(kChannel, &CaptureRecord::on_start, &CaptureRecord::on_stop);
    EXPECT_EQ(grabber.SetFGProperty(ePropLiveliness, 1), 0U);
    CaptureRecord record;
    EXPECT_EQ(grabber.StartCapture(kHandle, kChannel, eCapturePlain, &CaptureRecord::on_live,
                                   nullptr, nullptr, nullptr, &record),
              0U);
    EXPECT_TRUE(record.wait_for(eEvent::Live, 1));
    grabber.StopCapture(kChannel);
    record.close();
    plugin.destroy();
    EXPECT_EQ(record.complaint(), "");
  }

  simulator::ClosedLibraries libraries;
};

TEST_F(Loading, LeavesNothingOfThePluginInTheMapAgainAndAgain) {
  const int rounds = effort("HVK3_LOADS", 24, 4);
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    use_once();
    const std::string maps = memory_maps();
    EXPECT_THAT(maps, Not(HasSubstr("libostrevanhvk3.so")));
    EXPECT_THAT(maps, Not(HasSubstr("libKR9ScanAPI.so")));
    EXPECT_THAT(maps, Not(HasSubstr("libostrevancalibratesdk.so")));
    EXPECT_THAT(maps, Not(HasSubstr("libostrevanfakefingerdetection.so")));
  }
}

/// Runs another program out of this one. @return its exit status, -1 for none
int fork_and_run(const char* program) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(program, program, nullptr);
    ::_exit(127);
  }
  int status = 0;
  const bool ended = child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status);
  return ended ? WEXITSTATUS(status) : -1;
}

using Forking = Captures;

TEST_F(Forking, InTheMidstOfACaptureRunsTheOtherProgramAndCaptureGoesOn) {
  CaptureRecord& record = records.emplace_back();
  ASSERT_EQ(start_into(record, eCaptureLive), 0U);
  for (int number = 1; number <= 5; ++number) {
    ASSERT_TRUE(record.wait_for(eEvent::Live, record.count(eEvent::Live) + 1));
    dawdle();
    EXPECT_EQ(fork_and_run("/bin/true"), 0);
    EXPECT_EQ(fork_and_run("/bin/false"), 1);
  }
  EXPECT_TRUE(record.wait_for(eEvent::Live, record.count(eEvent::Live) + 2));
  EXPECT_EQ(record.count(eEvent::Error), 0);
  stop_at_once(record);
}

}  // namespace
}  // namespace Osv::threads
