#pragma once

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "bench/visibility.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Where log lines go.

namespace Osv::simulator {

/// Any thread may call it.
class LogSink {
 public:
  static constexpr int kEverything = 7;

  /// @throws std::runtime_error for a file that can't be opened
  void set_target(eLogTarget target, const std::string& path);
  void set_level(int level) { m_nLevel = level; }

  /// Whether a line of this level would be written.
  bool wants(int level) const { return m_eTarget != eLogTarget::Nowhere && level <= m_nLevel; }

  void write(int level, const char* text);
  void flush();

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::FILE* stream() const;

  std::atomic<eLogTarget> m_eTarget = eLogTarget::Nowhere;
  std::atomic<int> m_nLevel = kEverything;
  std::mutex m_cLock;  // guards the file and keeps lines whole
  std::unique_ptr<std::FILE, Closer> m_pFile;
};

/// The logging stand-in's ways to the sink.
/// @{
OSV_SIMULATOR_API bool log_wants(int level);
OSV_SIMULATOR_API void log_write(int level, const char* text);
OSV_SIMULATOR_API void log_flush();
/// @}

}  // namespace Osv::simulator
