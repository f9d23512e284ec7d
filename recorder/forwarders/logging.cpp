#include <array>
#include <cstdarg>
#include <cstdio>

#include "recorder/forwarders/forwarder.h"

/// @file
/// The forwarder for the logging facility. Lines are recorded for who reads the recording; they are
/// no part of a replay.

namespace Osv::recorder {
namespace {

constexpr std::size_t kLongestLine = 2048;

}  // namespace
}  // namespace Osv::recorder

using namespace Osv::recorder;

OSV_FORWARDER __attribute__((format(printf, 2, 3))) void OsvLFLog(int level, const char* format,
                                                                  ...) {
  constexpr auto kFunction = eFunction::OsvLFLog;
  if (format == nullptr || Session::get().player() != nullptr) {
    return;
  }
  std::array<char, kLongestLine> line = {};
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(line.data(), line.size(), format, values);
  va_end(values);
  const char* text = line.data();
  exchange<int>(
      kFunction, Arguments().number(level).text(format),
      [&] {
        real<decltype(OsvLFLog)>(kFunction)(level, "%s", text);
        return 0;
      },
      [&](Answer& answer, int& /*nothing*/) { answer.text(text); });
}

OSV_FORWARDER void OsvLFFlush() {
  constexpr auto kFunction = eFunction::OsvLFFlush;
  exchange<int>(
      kFunction, Arguments(),
      [] {
        real<decltype(OsvLFFlush)>(kFunction)();
        return 0;
      },
      [](Answer& /*answer*/, int& /*nothing*/) {});
}
