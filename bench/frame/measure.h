#pragma once

#include <ctime>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// @file
/// Clocks, quantiles, and the rows of the table.

namespace Osv::bench {

/// Nanoseconds of a clock.
std::int64_t now(clockid_t clock = CLOCK_MONOTONIC);

/// The value that a share of `values` doesn't exceed.
double quantile(std::vector<double> values, double share);

/// Sets how late the system may end the sleeps of this thread, and of those that it starts, and
/// sets the usual 50 microseconds again.
///
/// Two paces of one loop differ by less than a sleep with that slack does from the next.
class TightSleeps {
 public:
  TightSleeps();
  ~TightSleeps();
  TightSleeps(const TightSleeps&) = delete;
  TightSleeps& operator=(const TightSleeps&) = delete;
};

struct Size {
  int width;
  int height;

  std::size_t pixels() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  std::string text() const { return std::to_string(width) + "x" + std::to_string(height); }
};

/// The sizes that all tables have.
const std::vector<Size>& usual_sizes();

/// One row of the table.
struct Row {
  std::string subject;  ///< what belongs together, as in "overhead, live"
  std::string size;     ///< of the frame, or empty
  std::string what;
  double value;
  std::string unit;
  double bar = -1;  ///< what the value may be at most; negative: none
};

/// Runs the measurement that the first argument names, and writes its rows as JSON to standard
/// output. @return the exit status
int measure(int argc, char** argv,
            const std::vector<std::pair<std::string, std::function<std::vector<Row>()>>>& all);

}  // namespace Osv::bench
