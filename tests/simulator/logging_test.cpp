#include "libraries/logging_api.h"

#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

class LoggingStandIn : public SimulatorFixture {
 protected:
  LoggingStandIn()
      : m_sPath(testing::TempDir() + "simulator_log_" +
                testing::UnitTest::GetInstance()->current_test_info()->name()) {
    std::remove(m_sPath.c_str());
  }
  ~LoggingStandIn() override { std::remove(m_sPath.c_str()); }

  std::string log() const {
    std::ostringstream text;
    text << std::ifstream(m_sPath).rdbuf();
    return text.str();
  }

  std::string m_sPath;
};

TEST_F(LoggingStandIn, GoesNowhereAtFirst) {
  testing::internal::CaptureStderr();
  OsvLFLog(3, "an error");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LoggingStandIn, FormatsToStandardError) {
  bench.set_log(eLogTarget::StandardError, "");
  testing::internal::CaptureStderr();
  OsvLFLog(3, "Error number: 0x%x", 31);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: Error number: 0x1f\n");
}

TEST_F(LoggingStandIn, FormatsToAFileThatOnlyItsOwnerReads) {
  bench.set_log(eLogTarget::File, m_sPath);
  OsvLFLog(4, "first %s", "line");
  OsvLFLog(7, "second");
  OsvLFFlush();
  EXPECT_EQ(log(), "warning: first line\ntrace: second\n");
  struct stat status {};
  ASSERT_EQ(stat(m_sPath.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(LoggingStandIn, LeavesOutLinesThatAreLessSevereThanAsked) {
  bench.set_log(eLogTarget::File, m_sPath);
  bench.set_log_level(4);
  OsvLFLog(7, "trace");
  OsvLFLog(4, "warning");
  OsvLFLog(3, "error");
  EXPECT_EQ(log(), "warning: warning\nerror: error\n");
}

TEST_F(LoggingStandIn, CutsLongLines) {
  bench.set_log(eLogTarget::File, m_sPath);
  OsvLFLog(7, "%s", std::string(5000, 'x').c_str());
  EXPECT_EQ(log().size(), std::string("trace: \n").size() + 1023);
}

TEST_F(LoggingStandIn, AFileThatCanNotBeOpenedIsRefused) {
  EXPECT_THROW(bench.set_log(eLogTarget::File, "/nonexistent/log"), std::runtime_error);
}

TEST_F(LoggingStandIn, ANullFormatDoesNothing) {
  const char* const none = nullptr;
  OsvLFLog(3, none);
  EXPECT_EQ(journal().size(), 1U);
}

}  // namespace
}  // namespace Osv::simulator
