// What the plug-in adds to the calls into the closed libraries, beside what an integrator's own
// loop adds.

#include "contenders.h"
#include "measurements.h"
#include "session.h"

namespace Osv::bench {
namespace {

constexpr double kMicro = 1e-3;
constexpr int kRounds = 25;

std::string subject_of(eCaptureModeIDs mode) {
  return mode == eCapturePlain ? "frame, plain" : "frame, live";
}

/// Nanoseconds for a frame.
struct Times {
  double bare;
  double opencv;
  double plugin;
  double preparation;
  double copying;
};

Times compare(const Size& size, eCaptureModeIDs mode, int rounds) {
  Session session(size);
  const TightSleeps tight;
  const auto bare = bare_loop(size);
  const auto opencv = opencv_loop(size, mode);
  const auto ours = plugin(session.grabber(), mode);
  const auto prepare = preparation(size);
  const auto copying = copying_loop(size);
  const std::vector<double> best =
      compete({bare.get(), opencv.get(), ours.get(), prepare.get(), copying.get()}, rounds,
              frames_of_a_round(size));
  return {best[0], best[1], best[2], best[3], best[4]};
}

void add_rows(std::vector<Row>& rows, const Size& size, eCaptureModeIDs mode, const Times& times) {
  constexpr double kShareOfPreparation = 1.3;
  constexpr double kAllowance = 2.0;
  constexpr std::size_t kLarge = 2'000'000;
  const double overhead = (times.plugin - times.bare) * kMicro;
  const double theirs = (times.opencv - times.bare) * kMicro;
  const double preparation = times.preparation * kMicro;
  const std::string subject = subject_of(mode);
  const auto add = [&](const char* what, double value, const char* unit, double bar = -1) {
    rows.push_back({subject, size.text(), what, value, unit, bar});
  };
  add("bare loop (a)", times.bare * kMicro, "us");
  add("OpenCV loop (b)", times.opencv * kMicro, "us");
  add("plug-in", times.plugin * kMicro, "us");
  add("PrepareImage alone", preparation, "us");
  if (mode == eCapturePlain) {
    add("allocation + memcpy alone", (times.copying - times.bare) * kMicro, "us");
  }
  add("overhead of (b)", theirs, "us");
  add("overhead of the plug-in", overhead, "us",
      mode == eCaptureLive ? kShareOfPreparation * preparation + kAllowance : -1);
  const double bar = size.pixels() > kLarge ? 0.8 : 0.6;
  add("overhead of the plug-in / of (b)", overhead / theirs, "", mode == eCapturePlain ? bar : -1);
}

}  // namespace

std::vector<Row> overhead() {
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    for (const eCaptureModeIDs mode : {eCaptureLive, eCapturePlain}) {
      add_rows(rows, size, mode, compare(size, mode, kRounds));
    }
  }
  return rows;
}

std::vector<Row> growth() {
  constexpr int kSteps = 10;
  constexpr int kStep = 400;
  constexpr int kFewRounds = 7;
  std::vector<Row> rows;
  for (int step = 1; step <= kSteps; ++step) {
    const Size size{step * kStep, step * kStep};
    for (const eCaptureModeIDs mode : {eCaptureLive, eCapturePlain}) {
      const Times times = compare(size, mode, kFewRounds);
      const std::string subject = "growth, " + subject_of(mode);
      rows.push_back({subject, size.text(), "bare loop (a)", times.bare * kMicro, "us"});
      rows.push_back({subject, size.text(), "OpenCV loop (b)", times.opencv * kMicro, "us"});
      rows.push_back({subject, size.text(), "plug-in", times.plugin * kMicro, "us"});
    }
  }
  return rows;
}

}  // namespace Osv::bench
