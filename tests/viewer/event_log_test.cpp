#include "view/event_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>

#include "hvk3/failure.h"

namespace hvk3::test {
namespace {

/// Standard output is a pipe that is full.
class EventLog : public testing::Test {
 protected:
  EventLog() {
    EXPECT_EQ(::pipe2(m_aEnds.data(), O_NONBLOCK), 0);
    const std::string blanks(4096, ' ');
    while (::write(m_aEnds[1], blanks.data(), blanks.size()) > 0) {
    }
    ::fcntl(m_aEnds[0], F_SETFL, 0);
    ::fcntl(m_aEnds[1], F_SETFL, 0);
    std::fflush(stdout);  // what the test program has written is not read here
    ::dup2(m_aEnds[1], STDOUT_FILENO);
    ::close(m_aEnds[1]);
  }

  ~EventLog() override {
    ::dup2(m_nOutput, STDOUT_FILENO);
    ::close(m_nOutput);
    ::close(m_aEnds[0]);
  }

  /// Up to a line with this text.
  std::string read_to(const std::string& line) const {
    std::string text;
    for (char byte = 0; text.find(line) == std::string::npos;) {
      if (::read(m_aEnds[0], &byte, 1) == 1 && byte != ' ') {
        text += byte;
      }
    }
    return text;
  }

 private:
  const int m_nOutput = ::dup(STDOUT_FILENO);
  std::array<int, 2> m_aEnds = {};
};

TEST_F(EventLog, LetsNobodyWaitForWhoeverReads) {
  view::EventLog log(true);
  log.tell("finger");
  log.tell("settled");
  log.tell("lifted");
  EXPECT_EQ(read_to("lifted\n"), "finger\nsettled\nlifted\n");
}

TEST_F(EventLog, SaysHowManyLinesAreLostOnASlowReader) {
  constexpr std::size_t kTold = 2 * view::EventLog::kMost;
  view::EventLog log(true);
  for (std::size_t i = 0; i < kTold; ++i) {
    log.tell("x");
  }
  const std::string kept = read_to("lost");
  const auto written = static_cast<std::size_t>(std::count(kept.begin(), kept.end(), 'x'));
  EXPECT_LE(written, view::EventLog::kMost);
  EXPECT_EQ(std::stoul(read_to("\n")), kTold - written);
}

TEST_F(EventLog, GoesOnBehindALoss) {
  view::EventLog log(true);
  for (std::size_t i = 0; i < 2 * view::EventLog::kMost; ++i) {
    log.tell("x");
  }
  read_to("lost");
  log.tell("finger");
  read_to("\n");
  EXPECT_EQ(read_to("finger\n"), "finger\n");
}

TEST_F(EventLog, EndsThoughNobodyReads) {
  view::EventLog log(true, std::chrono::milliseconds(1));
  log.tell("finger");
  log.close();
  EXPECT_THROW(log.check(), Failure);
}

}  // namespace
}  // namespace hvk3::test
