#include "recorder/session/recorder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "recorder/format/recording.h"
#include "recorder/recording_builder.h"

namespace Osv::recorder::test {
namespace {

constexpr auto kList = eFunction::ftrScanGetInterfaces;

void nothing(Answer& /*answer*/) {}

TEST(Recorder, LetsAForkGoOnThatCameWithinACall) {
  const RecordingBuilder file;
  Recorder recorder(file.path());
  int status = -1;
  recorder.write(kList, 1, 0, {}, [&](Answer&) {
    const pid_t fork = ::fork();
    if (fork == 0) {
      ::alarm(10);  // it waits for a lock that nobody in it holds, otherwise
      recorder.write(kList, 1, 0, {}, &nothing);
      ::_exit(0);
    }
    ::waitpid(fork, &status, 0);
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Recording(file.path()).calls().size(), 1U);
}

TEST(Recorder, TellsOfAForkOnce) {
  const RecordingBuilder file;
  Recorder recorder(file.path());
  testing::internal::CaptureStderr();
  const pid_t fork = ::fork();
  if (fork == 0) {
    recorder.write(kList, 1, 0, {}, &nothing);
    recorder.write(kList, 1, 0, {}, &nothing);
    ::_exit(0);
  }
  ::waitpid(fork, nullptr, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "hvk3 record: this process is not recorded: it is a fork\n");
  EXPECT_TRUE(Recording(file.path()).calls().empty());
}

TEST(Recorder, LetsTheProgramGoOnThoughTheFileMayNotGrow) {
  constexpr std::uintmax_t kSize = 1 << 20;  // more than those of the test's own output
  const RecordingBuilder file;
  Recorder recorder(file.path());
  std::filesystem::resize_file(file.path(), kSize);
  struct rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const struct rlimit limit = {kSize + 1, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  recorder.write(kList, 1, 0, {}, &nothing);
  ::setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(std::filesystem::file_size(file.path()), kSize);
}

}  // namespace
}  // namespace Osv::recorder::test
