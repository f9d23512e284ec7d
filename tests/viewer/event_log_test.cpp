#include "view/event_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

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

  static constexpr std::size_t kTooMany = 2 * view::EventLog::kMost;

  static void tell_too_much(view::EventLog& log) {
    for (std::size_t i = 0; i < kTooMany; ++i) {
      log.tell("x");
    }
  }

  /// @return how many of the lines came, and how many were told to be lost; more than once, when
  /// one
  ///   was taken to be written while others were lost
  std::pair<std::size_t, std::size_t> read_all_that_was_told() const {
    constexpr std::size_t kWord = 4;
    std::size_t kept = 0;
    std::size_t lost = 0;
    while (kept + lost < kTooMany) {
      const std::string line = read_to("\n");
      if (line == "x\n") {
        ++kept;
      } else {
        lost += std::stoul(line.substr(kWord));  // 'lost', without its blank
      }
    }
    return {kept, lost};
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
  view::EventLog log(true);
  tell_too_much(log);
  const auto [kept, lost] = read_all_that_was_told();
  EXPECT_LE(kept, view::EventLog::kMost + 1);  // and one that is being written
  EXPECT_EQ(kept + lost, kTooMany);
}

TEST_F(EventLog, GoesOnBehindALoss) {
  view::EventLog log(true);
  tell_too_much(log);
  read_all_that_was_told();
  log.tell("finger");
  EXPECT_EQ(read_to("\n"), "finger\n");
}

TEST_F(EventLog, EndsThoughNobodyReads) {
  view::EventLog log(true, std::chrono::milliseconds(1));
  log.tell("finger");
  log.close();
  EXPECT_THROW(log.check(), Failure);
}

}  // namespace
}  // namespace hvk3::test
