#pragma once

#include <memory>
#include <string>
#include <vector>

#include "closed_calls.h"
#include "frame_run.h"

/// @file
/// Loops over frames that are measured against each other. All make the same pause.

namespace Osv::bench {

/// A loop that captures frames on a thread of its own and tells what each took.
class Contender {
 public:
  virtual ~Contender() = default;

  /// Nanoseconds of a clock from each frame to the next.
  virtual std::vector<double> run(unsigned long frames, clockid_t clock) = 0;
};

/// Notes the time of each frame.
class TimedRun : public FrameRun {
 public:
  using FrameRun::FrameRun;

  std::vector<double> periods(eCaptureModeIDs mode, unsigned long frames, clockid_t clock);

 protected:
  void on_frame(unsigned long frame, const unsigned char* image) override;

 private:
  std::vector<std::int64_t> m_times;
  clockid_t m_clock = CLOCK_MONOTONIC;
};

/// The plug-in.
std::unique_ptr<Contender> plugin(lx::ClFramegrabber& grabber, eCaptureModeIDs mode);

/// The closed calls and nothing else.
std::unique_ptr<Contender> bare_loop(const Size& size);

/// The same, and the one copy of the image that plain mode makes.
std::unique_ptr<Contender> copying_loop(const Size& size);

/// What an integrator would write: flip and complement in place, and in plain mode a copy of the
/// image and the mean of its middle row.
std::unique_ptr<Contender> opencv_loop(const Size& size, eCaptureModeIDs mode);

/// The closed calls of fake finger detection and nothing else.
std::unique_ptr<Contender> bare_fake_finger_loop(const Size& size);

/// The bare loop with the plug-in's own preparation of the raw frame between its calls; tells how
/// long the preparation took alone.
std::unique_ptr<Contender> preparation(const Size& size);

/// The clock of what a thread works: neither sleep counts, nor what other programs take from it.
constexpr clockid_t kWork = CLOCK_THREAD_CPUTIME_ID;

/// The best of several rounds in which the contenders took turns: for each the smallest median.
/// @return nanoseconds for a frame, in the order of the contenders
std::vector<double> compete(const std::vector<Contender*>& contenders, int rounds,
                            unsigned long frames, clockid_t clock = kWork);

/// Frames of a round that takes some 30 milliseconds.
unsigned long frames_of_a_round(const Size& size);

}  // namespace Osv::bench
