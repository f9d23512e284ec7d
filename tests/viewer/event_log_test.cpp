#include "view/event_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

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

}  // namespace
}  // namespace hvk3::test
