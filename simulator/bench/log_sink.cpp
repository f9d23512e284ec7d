#include "bench/log_sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/simulation.h"

namespace Osv::simulator {
namespace {

const char* level_name(int level) {
  constexpr int kError = 3;
  constexpr int kWarning = 4;
  if (level <= kError) {
    return "error";
  }
  return level == kWarning ? "warning" : "trace";
}

std::FILE* open_log(const std::string& path) {
  const int file =
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
  std::FILE* const stream = file < 0 ? nullptr : ::fdopen(file, "a");
  if (stream == nullptr) {
    throw std::runtime_error("the log file can't be opened: " + path);
  }
  return stream;
}

}  // namespace

void LogSink::set_target(eLogTarget target, const std::string& path) {
  std::FILE* const file = target == eLogTarget::File ? open_log(path) : nullptr;
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_pFile.reset(file);
  m_eTarget = target;
}

std::FILE* LogSink::stream() const {
  return m_eTarget == eLogTarget::StandardError ? stderr : m_pFile.get();
}

void LogSink::write(int level, const char* text) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (stream() != nullptr && wants(level)) {
    std::fprintf(stream(), "%s: %s\n", level_name(level), text);
    std::fflush(stream());
  }
}

void LogSink::flush() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (stream() != nullptr) {
    std::fflush(stream());
  }
}

bool log_wants(int level) { return simulation().log.wants(level); }

void log_write(int level, const char* text) { simulation().log.write(level, text); }

void log_flush() { simulation().log.flush(); }

}  // namespace Osv::simulator
