#include "driver/logging_callback.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>

#include "driver/driver_fixture.h"
#include "driver/support/mutex_watch.h"

namespace Osv::lx {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing_support::is_held;

constexpr auto kUnknownEvent = static_cast<OsvLFCBEventstag>(2);

/// A page of memory between two that nobody may touch.
class GuardedPage {
 public:
  GuardedPage()
      : m_pMemory(static_cast<char*>(
            mmap(nullptr, 3 * m_cnSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    EXPECT_EQ(mprotect(begin(), m_cnSize, PROT_READ | PROT_WRITE), 0);
  }
  ~GuardedPage() { munmap(m_pMemory, 3 * m_cnSize); }
  GuardedPage(const GuardedPage&) = delete;
  GuardedPage& operator=(const GuardedPage&) = delete;

  char* begin() const { return m_pMemory + m_cnSize; }
  char* end() const { return begin() + m_cnSize; }

 private:
  const std::size_t m_cnSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  char* const m_pMemory;
};

void refuse_line(OsvLFLogLevelstag /*level*/, const char* /*format*/, ...) {
  throw ClLXException("no room for the log", 77);
}

/// The scanner library can't log and warns each time that it is asked to: that shows which events
/// reach it.
class LoggingCallback : public DriverFixture {
 protected:
  LoggingCallback() { Driver::m_pCBData = &driver; }
  ~LoggingCallback() override {
    CBLoggingFacility(OsvLFCBStop, nullptr);
    Driver::m_pCBData = nullptr;
  }

  void start() {
    ASSERT_EQ(CBLoggingFacility(OsvLFCBStart, data.data()), 0UL);
    bench.clear_journal();
  }

  void expect_one_warning() const {
    EXPECT_THAT(log_lines(), SizeIs(1));
    EXPECT_THAT(log_lines(), Each("4 The installed version of KR9ScanAPI doesn't support the "
                                  "logging facility"));
  }

  bool is_on() {
    bench.clear_journal();
    CBLoggingFacility(OsvLFCBLevel, data.data());
    return !log_lines().empty();
  }

  std::array<char, 1024> data{};
};

TEST_F(LoggingCallback, NobodyIsRegistered) {
  Driver::m_pCBData = nullptr;
  const Driver another;
  EXPECT_EQ(Driver::m_pCBData, nullptr);
}

TEST_F(LoggingCallback, StartSwitchesTheScannersLogOn) {
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStart, data.data()), 0UL);
  expect_one_warning();
  EXPECT_TRUE(is_on());
}

TEST_F(LoggingCallback, StartDoesNothingWhileTheLogIsOn) {
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStart, data.data()), 0UL);
  EXPECT_THAT(log_lines(), IsEmpty());
}

TEST_F(LoggingCallback, StartWithoutDataDoesNothing) {
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStart, nullptr), 0UL);
  EXPECT_THAT(log_lines(), IsEmpty());
  EXPECT_FALSE(is_on());
}

TEST_F(LoggingCallback, StartWithoutADriverDoesNothing) {
  Driver::m_pCBData = nullptr;
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStart, data.data()), 0UL);
  Driver::m_pCBData = &driver;
  EXPECT_FALSE(is_on());
}

TEST_F(LoggingCallback, StopSwitchesTheLogOff) {
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStop, data.data()), 0UL);
  EXPECT_FALSE(is_on());
}

TEST_F(LoggingCallback, StopWhileTheLogIsOffTouchesNothing) {
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStop, data.data()), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(LoggingCallback, ALevelReachesTheScannerWhileTheLogIsOn) {
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBLevel, data.data()), 0UL);
  expect_one_warning();
}

TEST_F(LoggingCallback, NothingInFrontOfByte768IsReadForALevel) {
  const GuardedPage page;
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBLevel, page.begin() - 768), 0UL);
  expect_one_warning();
}

TEST_F(LoggingCallback, NothingBehindTheTwoBytesAt768IsReadForALevel) {
  const GuardedPage page;
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBLevel, page.end() - 770), 0UL);
  expect_one_warning();
}

TEST_F(LoggingCallback, ALevelWithoutDataDoesNothing) {
  start();
  EXPECT_EQ(CBLoggingFacility(OsvLFCBLevel, nullptr), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(LoggingCallback, ALevelDoesNothingWhileTheLogIsOff) {
  EXPECT_EQ(CBLoggingFacility(OsvLFCBLevel, data.data()), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(LoggingCallback, HoldsItsOwnMutexOverTheDevicesCallAndNeverTheDriversLock) {
  bench.set_faults("OsvLFLog call 1 blocks until told");
  std::thread caller([this] { CBLoggingFacility(OsvLFCBStart, data.data()); });
  bench.wait_until_blocked("OsvLFLog");
  EXPECT_TRUE(is_held(Driver::m_cCBMutex));
  EXPECT_FALSE(is_held(driver.m_cLock));
  bench.release();
  caller.join();
  EXPECT_FALSE(is_held(Driver::m_cCBMutex));
}

TEST_F(LoggingCallback, NeverWaitsForTheDriversLock) {
  const std::lock_guard<CXMutex> held(driver.m_cLock);
  std::thread caller([this] { CBLoggingFacility(OsvLFCBStart, data.data()); });
  caller.join();
  expect_one_warning();
}

TEST_F(LoggingCallback, AFailureOnTheWayComesBackAsItsNumber) {
  using Client = utilities::ClLoggingFacilityClient;
  const auto kept = std::exchange(Client::m_fpLog, &refuse_line);
  EXPECT_EQ(CBLoggingFacility(OsvLFCBStart, data.data()), 77UL);
  Client::m_fpLog = kept;
  EXPECT_FALSE(is_on());
}

TEST_F(LoggingCallback, AnyOtherEventDoesNothing) {
  start();
  EXPECT_EQ(CBLoggingFacility(kUnknownEvent, data.data()), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

}  // namespace
}  // namespace Osv::lx
