// The path of a frame with fake finger detection.

#include <sys/resource.h>

#include "contenders.h"
#include "libraries/detector_api.h"
#include "measurements.h"
#include "session.h"
#include "stand_ins/control.h"
#include "support/allocations.h"

namespace Osv::bench {
namespace {

constexpr double kMicro = 1e-3;

long page_faults_of_thread() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_minflt;
}

/// What a frame takes from the system.
class SystemRun : public FrameRun {
 public:
  using FrameRun::FrameRun;

  double faults_per_frame() const { return per_frame(m_faults); }
  double allocations_per_frame() const { return per_frame(m_allocations); }

 protected:
  void on_frame(unsigned long frame, const unsigned char* /*image*/) override {
    constexpr unsigned long kSettled = 10;
    if (frame == kSettled) {
      m_faults = -page_faults_of_thread();
      m_allocations = -test::allocations_so_far();
    }
    if (frame == kSettled + kCounted) {
      m_faults += page_faults_of_thread();
      m_allocations += test::allocations_so_far();
    }
  }

 private:
  static constexpr unsigned long kCounted = 100;
  static double per_frame(long count) { return static_cast<double>(count) / kCounted; }

  long m_faults = 0;
  long m_allocations = 0;
};

/// The calls of the search, without the search.
double bare_search() {
  constexpr int kQueries = 202;
  char text[32];
  const std::int64_t begin = now();
  for (int i = 0; i < kQueries; ++i) {
    FakeFingerDetectionSetPropertyA(nullptr, "dQueryScore", "50");
    unsigned long length = 0;
    FakeFingerDetectionGetPropertyA(nullptr, "dQueryFRR", nullptr, &length);
    length = sizeof(text);
    FakeFingerDetectionGetPropertyA(nullptr, "dQueryFRR", text, &length);
  }
  return static_cast<double>(now() - begin) * kMicro;
}

}  // namespace

std::vector<Row> fake_finger() {
  constexpr int kRounds = 15;
  constexpr int kImages = 3;
  constexpr unsigned long kFrames = 120;
  const std::string subject = "frame, fake finger detection";
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    Session session(size);
    session.detect_fake_fingers();
    const TightSleeps tight;
    const auto bare = bare_fake_finger_loop(size);
    const auto ours = plugin(session.grabber(), eCaptureLive);
    const auto prepare = preparation(size);
    const std::vector<double> best = compete({bare.get(), ours.get(), prepare.get()}, kRounds,
                                             frames_of_a_round(size) / kImages + kImages);
    SystemRun run(session.grabber());
    run.run(eCaptureLive, kFrames);
    const auto add = [&](const char* what, double value, const char* unit, double bar = -1) {
      rows.push_back({subject, size.text(), what, value, unit, bar});
    };
    add("bare calls", best[0] * kMicro, "us");
    add("plug-in", best[1] * kMicro, "us");
    add("overhead of the plug-in", (best[1] - best[0]) * kMicro, "us");
    add("PrepareImage alone, three times", kImages * best[2] * kMicro, "us");
    add("overhead / PrepareImage alone", (best[1] - best[0]) / (kImages * best[2]), "");
    add("allocations", run.allocations_per_frame(), "", kImages);
    add("page faults", run.faults_per_frame(), "", 0);
  }
  return rows;
}

std::vector<Row> threshold() {
  constexpr double kScores = 202;
  Session session({640, 480});
  session.detect_fake_fingers();
  const DetectorControl before = *ostrevan_bench_detector();
  unsigned int found = 0;
  const std::int64_t begin = now();
  session.grabber().GetFGProperty(ePropFakeDetection, found);
  const double time = static_cast<double>(now() - begin) * kMicro;
  const DetectorControl& after = *ostrevan_bench_detector();
  const auto calls = [&](unsigned long DetectorControl::*count) {
    return static_cast<double>(after.*count - before.*count);
  };
  const std::string subject = "search of the threshold";
  return {{subject, "", "threshold found", static_cast<double>(found), ""},
          {subject, "", "writes", calls(&DetectorControl::property_writes), "", kScores},
          {subject, "", "reads, two calls each", calls(&DetectorControl::property_reads) / 2, "",
           kScores},
          {subject, "", "other calls", calls(&DetectorControl::other_calls), "", 0},
          {subject, "", "time", time, "us"},
          {subject, "", "the same calls bare", bare_search(), "us"}};
}

}  // namespace Osv::bench
