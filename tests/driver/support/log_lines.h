#pragma once

#include <string>
#include <vector>

#include "foundation/logging_client.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Log lines on the bench.

namespace Osv::testing_support {

/// The log is on while an object of this class lives.
class LogOn {
 public:
  LogOn() { utilities::ClLoggingFacilityClient::Create(); }
  ~LogOn() { utilities::ClLoggingFacilityClient::Destroy(); }
  LogOn(const LogOn&) = delete;
  LogOn& operator=(const LogOn&) = delete;
};

/// The recorded lines in their order, as in "level 7, 'text'".
inline std::vector<std::string> log_lines(const simulator::Bench& bench) {
  std::vector<std::string> lines;
  for (const simulator::Call& call : bench.calls()) {
    if (call.function == "OsvLFLog") {
      lines.push_back(call.arguments);
    }
  }
  return lines;
}

}  // namespace Osv::testing_support
