#pragma once

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "foundation/logging_client.h"
#include "foundation/wait.h"

/// @file
/// Stand-ins for the waits and for the log, in force while they live. One of each at a time.

namespace Osv::test {

/// Takes the place of the real waits; gives up the processor instead.
class WaitRecorder {
 public:
  /// @param on_wait called on the waiting thread with the time in milliseconds
  explicit WaitRecorder(std::function<void(int)> on_wait = nullptr) {
    s_on_wait = std::move(on_wait);
    m_before = ExchangeWaitFunction(&WaitRecorder::wait);
  }
  WaitRecorder(const WaitRecorder&) = delete;
  WaitRecorder& operator=(const WaitRecorder&) = delete;
  ~WaitRecorder() { ExchangeWaitFunction(m_before); }

 private:
  static void wait(eWait kind, int milliseconds) {
    if (s_on_wait != nullptr && kind == eWait::Nanosleep) {
      s_on_wait(milliseconds);
    }
    std::this_thread::yield();
  }

  inline static std::function<void(int)> s_on_wait;
  WaitFunction m_before;
};

/// Takes the log's lines as "<level> <text>".
class LogRecorder {
 public:
  using Client = utilities::ClLoggingFacilityClient;

  LogRecorder() {
    s_lines.clear();
    Client::m_fpLog = &LogRecorder::log;
    Client::m_fpLogInstance = reinterpret_cast<Client*>(this);  // only its presence counts
  }
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;
  ~LogRecorder() {
    Client::m_fpLogInstance = nullptr;
    Client::m_fpLog = nullptr;
  }

  const std::vector<std::string>& lines() const { return s_lines; }

 private:
  static void log(OsvLFLogLevelstag level, const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    s_lines.push_back(std::to_string(level) + " " + text);
  }

  inline static std::vector<std::string> s_lines;
};

}  // namespace Osv::test
