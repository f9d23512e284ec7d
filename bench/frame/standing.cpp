// What the library keeps resident, and how long it takes to list scanners.

#include <fstream>
#include <string>

#include "measurements.h"
#include "session.h"
#include "stand_ins/control.h"

namespace Osv::bench {
namespace {

constexpr double kKibibyte = 1024;

/// Kibibytes that the process has resident.
double resident() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  std::string word;
  double size = 0;
  while (rollup >> word && word != "Rss:") {
  }
  rollup >> size;
  return size;
}

/// Notes what is resident at its last frame.
class ResidentRun : public FrameRun {
 public:
  using FrameRun::FrameRun;
  static constexpr unsigned long kFrames = 100;

  double value() const { return m_resident; }

 protected:
  void on_frame(unsigned long frame, const unsigned char* /*image*/) override {
    if (frame == kFrames - 1) {
      m_resident = resident();
    }
  }

 private:
  double m_resident = 0;
};

/// Notes when its first frame comes.
class FirstFrame : public FrameRun {
 public:
  using FrameRun::FrameRun;

  std::int64_t time() const { return m_time; }

 protected:
  void on_frame(unsigned long /*frame*/, const unsigned char* /*image*/) override {
    m_time = now();
  }

 private:
  std::int64_t m_time = 0;
};

}  // namespace

std::vector<Row> start() {
  constexpr int kTimes = 15;
  constexpr double kMilli = 1e-6;
  constexpr double kMiddle = 0.5;
  std::vector<Row> rows;
  for (const Size& size : usual_sizes()) {
    set_frame_size(size);
    ClosedCalls(size).fetch();  // makes the stand-in's own frame
    std::vector<double> times;
    for (int i = 0; i < kTimes; ++i) {
      const std::int64_t begin = now();
      Session session(size);
      FirstFrame first(session.grabber());
      first.run(eCaptureLive, 1);
      times.push_back(static_cast<double>(first.time() - begin) * kMilli);
    }
    rows.push_back({"start on free stand-ins", size.text(), "dlopen to the first image",
                    quantile(times, kMiddle), "ms"});
  }
  return rows;
}

std::vector<Row> memory() {
  constexpr double kBitmaps = 2;
  constexpr double kMebibyte = 1024;
  const Size size{1600, 1500};
  set_frame_size(size);
  {
    ClosedCalls calls(size);
    calls.fetch();  // makes the stand-in's own frame
  }
  (void)resident();
  const double before = resident();
  Session session(size);
  ResidentRun run(session.grabber());
  run.run(eCaptureLive, ResidentRun::kFrames);
  const double all = run.value() - before;
  const double bitmaps = kBitmaps * static_cast<double>(size.pixels()) / kKibibyte;
  const std::string subject = "resident memory";
  return {{subject, size.text(), "library with one channel", all, "KiB"},
          {subject, size.text(), "raw and corrected frame", bitmaps, "KiB"},
          {subject, size.text(), "all beside them", all - bitmaps, "KiB", kMebibyte}};
}

std::vector<Row> listing() {
  constexpr int kTimes = 200;
  constexpr double kMicro = 1e-3;
  std::vector<Row> rows;
  Session session({640, 480});
  for (const int interfaces : {1, 8, 128}) {
    ostrevan_bench_scanner()->interfaces = interfaces;
    std::vector<DeviceInfo> list(128);
    std::vector<double> times;
    for (int i = 0; i < kTimes; ++i) {
      unsigned long count = list.size();
      const std::int64_t begin = now();
      session.grabber().AvailableDevices(list.data(), count);
      times.push_back(static_cast<double>(now() - begin) * kMicro);
    }
    rows.push_back(
        {"listing", "", std::to_string(interfaces) + " interfaces", quantile(times, 0.5), "us"});
  }
  return rows;
}

}  // namespace Osv::bench
