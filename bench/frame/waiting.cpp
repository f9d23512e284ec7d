// Processor time while nothing is to do, and the wait for the driver's lock.

#include <atomic>
#include <chrono>
#include <thread>

#include "measurements.h"
#include "session.h"
#include "stand_ins/control.h"

namespace Osv::bench {
namespace {

constexpr Size kSize{640, 480};
constexpr double kMicro = 1e-3;

/// Processor time of the process, in percent of one processor, while the caller sleeps.
double processor_time(std::chrono::milliseconds time) {
  constexpr double kPercent = 100;
  const std::int64_t begin = now();
  const std::int64_t used = now(CLOCK_PROCESS_CPUTIME_ID);
  std::this_thread::sleep_for(time);
  return kPercent * static_cast<double>(now(CLOCK_PROCESS_CPUTIME_ID) - used) /
         static_cast<double>(now() - begin);
}

/// Counts the frames while the client's thread does something.
class CountedCapture {
 public:
  explicit CountedCapture(lx::ClFramegrabber& grabber) : m_grabber(grabber) {
    m_grabber.StartCapture(0, kChannel, eCaptureLive, &frame, nullptr, nullptr, nullptr, this);
    while (m_frames < 10) {
      std::this_thread::yield();
    }
  }
  ~CountedCapture() { m_grabber.StopCapture(kChannel); }
  CountedCapture(const CountedCapture&) = delete;
  CountedCapture& operator=(const CountedCapture&) = delete;

  unsigned long frames() const { return m_frames; }

 private:
  static void frame(int, unsigned int, unsigned char*, void* user) {
    ++static_cast<CountedCapture*>(user)->m_frames;
  }

  lx::ClFramegrabber& m_grabber;
  std::atomic<unsigned long> m_frames{0};
};

constexpr std::chrono::milliseconds kLong{4000};
constexpr std::chrono::milliseconds kBusyTries{1500};  // the scanner is given up behind 2 seconds
constexpr double kNotMeasurable = 0.1;                 // percent

double while_frozen(lx::ClFramegrabber& grabber) {
  const CountedCapture capture(grabber);
  grabber.Freeze(kChannel, true);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  const double used = processor_time(kLong);
  grabber.Freeze(kChannel, false);
  return used;
}

double while_busy(lx::ClFramegrabber& grabber) {
  const CountedCapture capture(grabber);
  ostrevan_bench_scanner()->busy = true;
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const double used = processor_time(kBusyTries);
  ostrevan_bench_scanner()->busy = false;
  return used;
}

void call(lx::ClFramegrabber& grabber, ePropertyIDs property) {
  unsigned int value = 0;
  grabber.GetFGProperty(property, value);
}

/// How long calls took, and how many frames came meanwhile.
struct Waits {
  std::vector<double> times;
  std::vector<double> frames;
};

template <typename Call>
Waits waits_of(const CountedCapture& capture, Call call) {
  constexpr int kCalls = 2000;
  Waits waits;
  for (int i = 0; i < kCalls; ++i) {
    // So that calls come at any moment of a frame.
    std::this_thread::sleep_for(std::chrono::microseconds(i % 97 * 7));
    const unsigned long before = capture.frames();
    const std::int64_t begin = now();
    call();
    waits.times.push_back(static_cast<double>(now() - begin) * kMicro);
    waits.frames.push_back(static_cast<double>(capture.frames() - before));
  }
  return waits;
}

/// The bar stands on what the lock takes nearly always: the longest waits are those of a thread
/// that doesn't get a processor, as the calls without a lock show.
void add_waits(std::vector<Row>& rows, const std::string& subject, const Size& size,
               const Waits& waits, double bar) {
  const std::pair<std::string, double> shares[] = {
      {"p50", 0.5}, {"p99", 0.99}, {"p99.9", 0.999}, {"longest", 1.0}};
  for (const auto& [name, share] : shares) {
    rows.push_back({subject, size.text(), name, quantile(waits.times, share), "us"});
  }
  for (const auto& [name, share] : shares) {
    rows.push_back({subject, size.text(), name + " in frames", quantile(waits.frames, share), "",
                    name == "p99" ? bar : -1});
  }
}

}  // namespace

std::vector<Row> rest() {
  Session session(kSize);
  lx::ClFramegrabber& grabber = session.grabber();
  call(grabber, ePropLiveliness);  // opens the scanner
  const std::string subject = "processor time at rest";
  return {{subject, "", "idle", processor_time(kLong), "%", kNotMeasurable},
          {subject, "", "frozen", while_frozen(grabber), "%", kNotMeasurable},
          {subject, "", "busy scanner", while_busy(grabber), "%", kNotMeasurable}};
}

std::vector<Row> lock() {
  constexpr double kFewFrames = 3;
  constexpr double kNoBar = -1;
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    Session session(size);
    const CountedCapture capture(session.grabber());
    const auto ask = [&](ePropertyIDs property) {
      return waits_of(capture, [&] { call(session.grabber(), property); });
    };
    add_waits(rows, "wait for the driver's lock", size, ask(ePropLiveliness), kFewFrames);
    add_waits(rows, "the same call without a lock", size, ask(ePropChannelCount), kNoBar);
  }
  return rows;
}

}  // namespace Osv::bench
