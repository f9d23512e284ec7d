#include "foundation/logging_client.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/exceptions.h"
#include "foundation/loader_redirection.h"
#include "foundation/logging_journal.h"
#include "support/failure_of.h"

namespace {

std::vector<std::string>& journal() {
  static std::vector<std::string> lines;
  return lines;
}

}  // namespace

void hvk3_journal(const char* line) { journal().emplace_back(line); }

namespace Osv::utilities {
namespace {

using Client = ClLoggingFacilityClient;
using Lines = std::vector<std::string>;

struct Probe : Client {
  using Client::Initialize;
};

class LoggingClient : public testing::Test {
 protected:
  LoggingClient() { use(HVK3_LOGGING_LIBRARY); }

  ~LoggingClient() override {
    Client::Destroy();
    Client::m_fpLog = nullptr;
    Client::m_fpFlush = nullptr;
  }

  static void use(const char* path) {
    testing_support::put_in_place_of("libostrevanlf.so", path);
    journal().clear();
  }

  static CXOtherException failure_of_create() {
    return testing_support::failure_of<CXOtherException>(&Client::Create);
  }
};

TEST_F(LoggingClient, LoadsTheFacilityAndKeepsItsEntryPoints) {
  Client::Create();
  EXPECT_NE(Client::m_fpLogInstance, nullptr);
  EXPECT_NE(Client::m_fpLog, nullptr);
  EXPECT_NE(Client::m_fpFlush, nullptr);
  EXPECT_EQ(journal(), Lines{"loaded"});
}

TEST_F(LoggingClient, BindsAllSymbolsAtOnce) {
  Client::Create();
  ASSERT_EQ(testing_support::loader_calls().size(), 1U);
  EXPECT_EQ(testing_support::loader_calls()[0].name, "libostrevanlf.so");
  EXPECT_EQ(testing_support::loader_calls()[0].mode, 2);
}

TEST_F(LoggingClient, LoadsNothingASecondTime) {
  Client::Create();
  const Client* const first = Client::m_fpLogInstance;
  Client::Create();
  EXPECT_EQ(Client::m_fpLogInstance, first);
  EXPECT_EQ(testing_support::loader_calls().size(), 1U);
}

TEST_F(LoggingClient, ThrowsForAMissingFacilityAndStaysSilent) {
  use("");
  const CXOtherException failure = failure_of_create();
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_NE(std::string(failure.GetDescription()).find("libostrevanlf.so"), std::string::npos);
  EXPECT_EQ(Client::m_fpLogInstance, nullptr);
  OSV_LOG(OsvLFError, "nobody reads this");
}

TEST_F(LoggingClient, ThrowsForAFacilityWithoutItsLogFunctionAndClosesIt) {
  use(HVK3_LOGGING_LIBRARY_WITHOUT_LOG);
  const CXOtherException failure = failure_of_create();
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_NE(std::string(failure.GetDescription()).find("OsvLFLog"), std::string::npos);
  EXPECT_EQ(Client::m_fpLog, nullptr);
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded"}));
}

TEST_F(LoggingClient, NeverUsesTheLogFunctionOfAFacilityWithoutFlush) {
  use(HVK3_LOGGING_LIBRARY_WITHOUT_FLUSH);
  const CXOtherException failure = failure_of_create();
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_NE(std::string(failure.GetDescription()).find("OsvLFFlush"), std::string::npos);
  EXPECT_NE(Client::m_fpLog, nullptr);
  EXPECT_EQ(Client::m_fpLogInstance, nullptr);
  OSV_LOG(OsvLFError, "nobody reads this");
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded"}));
}

TEST_F(LoggingClient, ClosesTheFacilityButKeepsTheEntryPointsWhenDestroyed) {
  Client::Create();
  const auto log = Client::m_fpLog;
  const auto flush = Client::m_fpFlush;
  Client::Destroy();
  EXPECT_EQ(Client::m_fpLogInstance, nullptr);
  EXPECT_EQ(Client::m_fpLog, log);
  EXPECT_EQ(Client::m_fpFlush, flush);
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded"}));
}

TEST_F(LoggingClient, DoesNothingWhenDestroyedWithoutAnObject) {
  Client::Destroy();
  EXPECT_EQ(Client::m_fpLogInstance, nullptr);
  EXPECT_TRUE(testing_support::loader_calls().empty());
}

TEST_F(LoggingClient, LoadsTheFacilityAgainAfterDestroy) {
  Client::Create();
  Client::Destroy();
  Client::Create();
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded", "loaded"}));
}

TEST_F(LoggingClient, ClosesAnOpenHandleWhenInitialisedAgain) {
  Probe probe;
  probe.Initialize();
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded", "loaded"}));
}

TEST_F(LoggingClient, WritesALineWithLevelAndArguments) {
  Client::Create();
  OSV_LOG(OsvLFError, "failed with %d", 7);
  OSV_LOG(OsvLFWarning, "%s", "careful");
  OSV_LOG(OsvLFTrace, "plain");
  EXPECT_EQ(journal(), (Lines{"loaded", "3 failed with 7", "4 careful", "7 plain"}));
}

TEST_F(LoggingClient, EvaluatesTheArgumentsOnlyWhenThereIsALog) {
  int evaluations = 0;
  const auto count = [&] { return ++evaluations; };
  OSV_LOG(OsvLFTrace, "%d", count());
  EXPECT_EQ(evaluations, 0);
  Client::Create();
  OSV_LOG(OsvLFTrace, "%d", count());
  EXPECT_EQ(evaluations, 1);
}

TEST_F(LoggingClient, HasALogOperationThatDoesNothing) {
  Client::Create();
  Client::Log(OsvLFError, "%d", 1);
  EXPECT_EQ(journal(), Lines{"loaded"});
}

}  // namespace
}  // namespace Osv::utilities
