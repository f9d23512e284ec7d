#include "contenders.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>
#include <opencv2/core.hpp>
#include <thread>

#include "client/plugin.h"
#include "driver/ostrevan_hvk3_sdk.h"
#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "stand_ins/control.h"

namespace Osv::bench {
namespace {

constexpr std::size_t kWarmUp = 5;
constexpr double kThreshold = 240;

std::vector<double> between(const std::vector<std::int64_t>& times) {
  std::vector<double> periods;
  for (std::size_t i = kWarmUp; i + 1 < times.size(); ++i) {
    periods.push_back(static_cast<double>(times[i + 1] - times[i]));
  }
  return periods;
}

/// The pause of the plug-in's worker between two passes.
void make_pause() {
  const timespec none{};
  nanosleep(&none, nullptr);
}

/// What stands in for the client's callbacks: looks at the image, as far as the compiler can tell.
void show(const unsigned char* image) { asm volatile("" : : "r"(image) : "memory"); }

/// A loop on a thread of its own, as the plug-in has one.
class Loop : public Contender {
 public:
  explicit Loop(const Size& size) : m_calls(size) {}

  std::vector<double> run(unsigned long frames, clockid_t clock) override {
    m_clock = clock;
    m_times.clear();
    m_times.reserve(frames);
    std::thread([&] { loop(frames); }).join();
    return between(m_times);
  }

 protected:
  virtual void frame() = 0;

  void deliver() {
    m_times.push_back(now(m_clock));
    show(m_calls.image());
  }

  ClosedCalls m_calls;

 private:
  void loop(unsigned long frames) {
    for (unsigned long i = 0; i < frames; ++i) {
      frame();
      make_pause();
    }
  }

  std::vector<std::int64_t> m_times;
  clockid_t m_clock = CLOCK_MONOTONIC;
};

class BareLoop : public Loop {
 public:
  using Loop::Loop;

 protected:
  void frame() override {
    m_calls.fetch();
    m_calls.calibrate();
    deliver();
  }
};

class CopyingLoop : public BareLoop {
 public:
  using BareLoop::BareLoop;

 protected:
  void frame() override {
    BareLoop::frame();
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[m_calls.image_size()]);
    std::memcpy(copy.get(), m_calls.image(), m_calls.image_size());
    show(copy.get());
  }
};

class OpenCvLoop : public Loop {
 public:
  OpenCvLoop(const Size& size, eCaptureModeIDs mode)
      : Loop(size), m_raw(size.height, size.width, CV_8UC1, m_calls.raw_pixels()), m_mode(mode) {}

 protected:
  void frame() override {
    m_calls.fetch();
    cv::flip(m_raw, m_raw, 0);
    cv::bitwise_not(m_raw, m_raw);
    m_calls.calibrate();
    deliver();
    if (m_mode == eCapturePlain) {
      look_for_finger();
    }
  }

 private:
  void look_for_finger() {
    const Size size = m_calls.size();
    unsigned char* const pixels = m_calls.image() + (m_calls.image_size() - size.pixels());
    const cv::Mat copy = cv::Mat(size.height, size.width, CV_8UC1, pixels).clone();
    if (cv::mean(copy.row(size.height / 2))[0] < kThreshold) {
      show(copy.data);
    }
  }

  cv::Mat m_raw;
  eCaptureModeIDs m_mode;
};

/// All images are fetched before the first is corrected, so it has three raw frames.
class BareFakeFingerLoop : public Loop {
 public:
  explicit BareFakeFingerLoop(const Size& size) : Loop(size), m_dark(size), m_backlight(size) {
    FakeFingerDetectionCreateHandle(&m_detector);
  }

 protected:
  void frame() override {
    constexpr std::int32_t kDose = 0;
    constexpr std::int32_t kBacklight = 1;
    constexpr std::int32_t kDark = 2;
    CalibrateSetOption(nullptr, "DynamicFingerMask = false");
    m_dark.fetch_dark();
    m_backlight.fetch_backlight();
    m_calls.fetch();
    push(m_backlight, kBacklight);
    push(m_dark, kDark);
    push(m_calls, kDose);
    double score = 0;
    FakeFingerDetectionEvaluateLiveliness(m_detector, &score);
    CalibrateSetOption(nullptr, "DynamicFingerMask = true");
    m_calls.calibrate();
    FakeFingerDetectionReset(m_detector);
    deliver();
  }

 private:
  void push(ClosedCalls& calls, std::int32_t kind) {
    calls.calibrate_into(m_calls);
    FakeFingerDetectionSetImage(m_detector, kind, m_calls.image_header(), m_calls.image_size());
  }

  ClosedCalls m_dark;
  ClosedCalls m_backlight;
  void* m_detector = nullptr;
};

struct Driver : lx::ClOstrevanHVK3SDK {
  Driver() : ClOstrevanHVK3SDK(nullptr) {}
  void FreezeSDK(lx::ClFrameGrabberChannel& /*channel*/, bool /*freeze*/) override {}
  using ClOstrevanHVK3SDK::PrepareImage;
};

class Preparation : public Contender {
 public:
  explicit Preparation(const Size& size) : m_calls(size) {
    m_raw.Create(static_cast<unsigned long>(size.width), static_cast<unsigned long>(size.height), 8,
                 0);
  }

  std::vector<double> run(unsigned long frames, clockid_t clock) override {
    std::vector<double> times;
    times.reserve(frames);
    std::thread([&] {
      for (unsigned long i = 0; i < frames; ++i) {
        m_calls.fetch();
        std::copy_n(m_calls.raw_pixels(), m_raw.PixelSize(), m_raw.Pixel());
        const std::int64_t begin = now(clock);
        m_driver.PrepareImage(m_raw);
        times.push_back(static_cast<double>(now(clock) - begin));
        make_pause();
      }
    }).join();
    return times;
  }

 private:
  ClosedCalls m_calls;
  utilities::ClSimpleBitmap m_raw;
  Driver m_driver;
};

class PluginContender : public Contender {
 public:
  PluginContender(lx::ClFramegrabber& grabber, eCaptureModeIDs mode)
      : m_run(grabber), m_mode(mode) {}

  std::vector<double> run(unsigned long frames, clockid_t clock) override {
    return m_run.periods(m_mode, frames, clock);
  }

 private:
  TimedRun m_run;
  eCaptureModeIDs m_mode;
};

}  // namespace

std::vector<double> TimedRun::periods(eCaptureModeIDs mode, unsigned long frames, clockid_t clock) {
  m_clock = clock;
  m_times.clear();
  m_times.reserve(frames);
  run(mode, frames);
  return between(m_times);
}

void TimedRun::on_frame(unsigned long /*frame*/, const unsigned char* image) {
  m_times.push_back(now(m_clock));
  show(image);
}

std::unique_ptr<Contender> plugin(lx::ClFramegrabber& grabber, eCaptureModeIDs mode) {
  return std::make_unique<PluginContender>(grabber, mode);
}

std::unique_ptr<Contender> bare_loop(const Size& size) { return std::make_unique<BareLoop>(size); }

std::unique_ptr<Contender> copying_loop(const Size& size) {
  return std::make_unique<CopyingLoop>(size);
}

std::unique_ptr<Contender> opencv_loop(const Size& size, eCaptureModeIDs mode) {
  return std::make_unique<OpenCvLoop>(size, mode);
}

std::unique_ptr<Contender> bare_fake_finger_loop(const Size& size) {
  return std::make_unique<BareFakeFingerLoop>(size);
}

std::unique_ptr<Contender> preparation(const Size& size) {
  return std::make_unique<Preparation>(size);
}

std::vector<double> compete(const std::vector<Contender*>& contenders, int rounds,
                            unsigned long frames, clockid_t clock) {
  constexpr double kMiddle = 0.5;
  std::vector<double> best(contenders.size(), std::numeric_limits<double>::max());
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      best[i] = std::min(best[i], quantile(contenders[i]->run(frames, clock), kMiddle));
    }
  }
  return best;
}

unsigned long frames_of_a_round(const Size& size) {
  constexpr double kRound = 30e6;
  constexpr double kPause = 8e3;
  constexpr double kPixel = 0.4;
  constexpr double kFewest = 20;
  return static_cast<unsigned long>(
      std::max(kFewest, kRound / (kPause + kPixel * static_cast<double>(size.pixels()))));
}

}  // namespace Osv::bench
