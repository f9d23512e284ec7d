// When and how a frame reaches the client: pause, rate, latency, allocations, copies.

#include <dlfcn.h>

#include <ctime>
#include <set>
#include <stdexcept>

#include "contenders.h"
#include "measurements.h"
#include "session.h"
#include "stand_ins/control.h"
#include "support/allocations.h"

namespace Osv::bench {
namespace {

constexpr double kMicro = 1e-3;
constexpr double kMiddle = 0.5;

double median_pause() {
  constexpr int kPauses = 2000;
  std::vector<double> pauses;
  for (int i = 0; i < kPauses; ++i) {
    const timespec none{};
    const std::int64_t begin = now();
    nanosleep(&none, nullptr);
    pauses.push_back(static_cast<double>(now() - begin) * kMicro);
  }
  return quantile(pauses, kMiddle);
}

class LatencyRun : public FrameRun {
 public:
  explicit LatencyRun(lx::ClFramegrabber& grabber, unsigned long frames) : FrameRun(grabber) {
    m_latencies.reserve(frames);
  }

  const std::vector<double>& latencies() const { return m_latencies; }

 protected:
  void on_frame(unsigned long /*frame*/, const unsigned char* /*image*/) override {
    m_latencies.push_back(static_cast<double>(now() - ostrevan_bench_scanner()->returned_at) *
                          kMicro);
  }

 private:
  std::vector<double> m_latencies;
};

std::vector<double> bare_latencies(const Size& size, unsigned long frames) {
  ClosedCalls calls(size);
  std::vector<double> latencies;
  for (unsigned long i = 0; i < frames; ++i) {
    calls.fetch();
    calls.calibrate();
    latencies.push_back(static_cast<double>(now() - ostrevan_bench_scanner()->returned_at) *
                        kMicro);
    const timespec none{};
    nanosleep(&none, nullptr);
  }
  return latencies;
}

void add_quantiles(std::vector<Row>& rows, const std::string& subject, const Size& size,
                   const std::vector<double>& values) {
  const std::pair<const char*, double> shares[] = {{"p50", 0.5}, {"p99", 0.99}, {"p99.9", 0.999}};
  for (const auto& [name, share] : shares) {
    rows.push_back({subject, size.text(), name, quantile(values, share), "us"});
  }
}

std::vector<Row> latencies(const std::string& subject) {
  constexpr unsigned long kFrames = 5000;
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    Session session(size);
    ostrevan_bench_scanner()->clocked = true;
    LatencyRun run(session.grabber(), kFrames);
    run.run(eCaptureLive, kFrames);
    add_quantiles(rows, subject, size, run.latencies());
  }
  return rows;
}

/// The blocks that a frame's pixels come to lie in.
class CountingRun : public FrameRun {
 public:
  using FrameRun::FrameRun;

  double allocations_per_frame() const {
    return static_cast<double>(m_last - m_first) / static_cast<double>(m_frames);
  }

  /// All blocks but the two that scanner and engine fill.
  std::size_t copies_per_frame() const { return m_blocks.size() - 2; }

 protected:
  void on_frame(unsigned long frame, const unsigned char* image) override {
    constexpr unsigned long kSettled = 10;
    if (frame == kSettled) {
      m_first = test::allocations_so_far();
    }
    if (frame >= kSettled) {
      m_last = test::allocations_so_far();
      m_frames = frame == kSettled ? 1 : m_frames + 1;
    }
    m_image = image;
  }

  void on_finger(const unsigned char* image) override { m_finger = image; }

 public:
  void look_at_blocks() {
    const unsigned char* const input =
        lx::ImageView(static_cast<const unsigned char*>(ostrevan_bench_engine()->input)).pixels();
    m_blocks = {ostrevan_bench_scanner()->buffer, input, ostrevan_bench_engine()->output, m_image};
    if (m_finger != nullptr) {
      m_blocks.insert(m_finger);
    }
  }

 private:
  long m_first = 0;
  long m_last = 0;
  long m_frames = 1;
  const void* m_image = nullptr;
  const void* m_finger = nullptr;
  std::set<const void*> m_blocks;
};

void* attach_log() {
  void* const library = dlopen(HVK3_STAND_INS "/libostrevanlf.so", RTLD_NOW);
  if (library == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return library;
}

unsigned long log_lines(void* library) {
  using Function = unsigned long (*)();
  return reinterpret_cast<Function>(dlsym(library, "ostrevan_bench_log_lines"))();
}

}  // namespace

std::vector<Row> pause() {
  std::vector<Row> rows;
  rows.push_back({"pause of the loop", "", "usual slack of timers", median_pause(), "us"});
  const TightSleeps tight;
  rows.push_back({"pause of the loop", "", "least slack of timers", median_pause(), "us"});
  return rows;
}

std::vector<Row> rate() {
  constexpr double kSecond = 1e9;
  constexpr int kRounds = 8;
  constexpr unsigned long kFrames = 200;
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    Session session(size);
    const auto bare = bare_loop(size);
    const auto opencv = opencv_loop(size, eCapturePlain);
    const auto live = plugin(session.grabber(), eCaptureLive);
    const auto plain = plugin(session.grabber(), eCapturePlain);
    const std::vector<double> best = compete({bare.get(), opencv.get(), live.get(), plain.get()},
                                             kRounds, kFrames, CLOCK_MONOTONIC);
    const char* const names[] = {"bare loop (a)", "OpenCV loop (b), plain", "plug-in, live",
                                 "plug-in, plain"};
    for (std::size_t i = 0; i < best.size(); ++i) {
      rows.push_back({"frames per second", size.text(), names[i], kSecond / best[i], "1/s"});
    }
  }
  return rows;
}

std::vector<Row> latency() {
  std::vector<Row> rows = latencies("latency");
  for (const Size& size : usual_sizes()) {
    constexpr unsigned long kFrames = 5000;
    set_frame_size(size);
    add_quantiles(rows, "latency, bare loop (a)", size, bare_latencies(size, kFrames));
  }
  return rows;
}

std::vector<Row> latency_with_log() {
  void* const library = attach_log();
  std::vector<Row> rows = latencies("latency with a log");
  rows.push_back(
      {"latency with a log", "", "log lines", static_cast<double>(log_lines(library)), ""});
  dlclose(library);
  return rows;
}

std::vector<Row> allocations() {
  constexpr unsigned long kFrames = 500;
  std::vector<Row> rows;
  for (const eCaptureModeIDs mode : {eCaptureLive, eCapturePlain}) {
    const Size size{640, 480};
    Session session(size);
    CountingRun run(session.grabber());
    run.run(mode, kFrames);
    run.look_at_blocks();
    const bool plain = mode == eCapturePlain;
    const std::string subject = plain ? "frame, plain" : "frame, live";
    rows.push_back({subject, "", "allocations", run.allocations_per_frame(), "", plain ? 1.0 : 0});
    rows.push_back(
        {subject, "", "copies", static_cast<double>(run.copies_per_frame()), "", plain ? 1.0 : 0});
  }
  return rows;
}

}  // namespace Osv::bench
