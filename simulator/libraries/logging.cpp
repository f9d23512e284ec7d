#include <array>
#include <cstdarg>
#include <cstdio>

#include "bench/log_sink.h"
#include "bench/recorded_call.h"
#include "libraries/logging_api.h"

/// @file
/// The stand-in for the logging facility.

using Osv::simulator::eFunction;
using Osv::simulator::Quoted;
using Osv::simulator::RecordedCall;

void OsvLFLog(int level, const char* format, ...) {
  constexpr std::size_t kLongestLine = 1024;
  RecordedCall call(eFunction::OsvLFLog);
  const bool wanted = Osv::simulator::log_wants(level);
  if (format == nullptr || !(wanted || call.recorded())) {
    return;
  }
  std::array<char, kLongestLine> text = {};
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  call.arguments("level %d, %s", level, Quoted(text.data()).c_str());
  if (wanted) {
    Osv::simulator::log_write(level, text.data());
  }
}

void OsvLFFlush() {
  const RecordedCall call(eFunction::OsvLFFlush);
  Osv::simulator::log_flush();
}
