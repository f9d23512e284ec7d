#include "recorder/format/replay_report.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "support/temporary_folder.h"

namespace Osv::recorder::test {
namespace {

/// A tool's report, and that of a program.
class Reporting : public testing::Test {
 protected:
  Reporting() { ReplayReport::create(path()); }

  std::string path() const { return m_cFolder.file("report"); }

  /// Does something in another process.
  static void elsewhere(const std::function<void()>& work) {
    const pid_t process = ::fork();
    if (process == 0) {
      work();
      ::_exit(0);
    }
    ::waitpid(process, nullptr, 0);
  }

  hvk3::test::TemporaryFolder m_cFolder;
};

TEST_F(Reporting, HasNothingToTellAtFirst) {
  const ReplayReport tool(path());
  EXPECT_FALSE(tool.has_begun());
  EXPECT_EQ(tool.played(), 0U);
  EXPECT_FALSE(tool.trouble());
}

TEST_F(Reporting, TellsWhatAProgramDidThatHasEnded) {
  const ReplayReport tool(path());
  elsewhere([this] {
    ReplayReport program(path());
    program.begin();
    program.played(7);
    program.end({9, 8, eFunction::Calibrate, "call 8"});
  });
  EXPECT_TRUE(tool.has_begun());
  EXPECT_EQ(tool.played(), 7U);
  ASSERT_TRUE(tool.trouble());
  EXPECT_EQ(tool.trouble()->status, 9);
  EXPECT_EQ(tool.trouble()->call, 8U);
  EXPECT_EQ(tool.trouble()->function, eFunction::Calibrate);
  EXPECT_EQ(tool.trouble()->text, "call 8");
}

TEST_F(Reporting, CountsTheCallsOfTheFirstProcess) {
  ReplayReport first(path());
  first.begin();
  first.played(7);
  elsewhere([this] {
    ReplayReport second(path());
    second.begin();
    second.played(1);
  });
  EXPECT_EQ(first.played(), 7U);
}

TEST_F(Reporting, KeepsTheFirstTrouble) {
  ReplayReport program(path());
  program.end({9, 8, eFunction::Calibrate, "first"});
  program.end({2, 3, eFunction::CalibrateCreate, "second"});
  EXPECT_EQ(program.trouble()->text, "first");
}

TEST_F(Reporting, CutsALongText) {
  ReplayReport program(path());
  program.end({9, 8, eFunction::Calibrate, std::string(100000, 'x')});
  EXPECT_EQ(program.trouble()->text, std::string(16384, 'x'));
}

TEST_F(Reporting, NeedsTheFileThatTheToolMade) {
  std::filesystem::resize_file(path(), 1);
  EXPECT_THROW(ReplayReport{path()}, std::exception);
  EXPECT_THROW(ReplayReport(m_cFolder.file("absent")), std::exception);
  EXPECT_THROW(ReplayReport::create(m_cFolder.file("absent/report")), std::exception);
}

}  // namespace
}  // namespace Osv::recorder::test
