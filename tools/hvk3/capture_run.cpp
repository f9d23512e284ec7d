#include "hvk3/capture_run.h"

#include <chrono>
#include <string_view>

#include "hvk3/capture_session.h"
#include "hvk3/interruption.h"

namespace hvk3 {
namespace {

using Clock = std::chrono::steady_clock;

/// A capture that hands its images to a task.
class CaptureRun {
 public:
  CaptureRun(Context& context, const CaptureTask& task)
      : m_cContext(context),
        m_cTask(task),
        m_cInterruption(m_cWakeup),
        m_cSession(context.grabber(), task.mode, m_cWakeup, task.observe) {}

  void run();

 private:
  void collect(const Wakeup::Deadline& deadline);
  bool hand_over();
  void tell(const Progress& progress);
  void summarise(Clock::duration duration);

  Context& m_cContext;
  const CaptureTask& m_cTask;
  Wakeup m_cWakeup;
  Interruption m_cInterruption;
  CaptureSession m_cSession;
  std::size_t m_nWarnings = 0;  // told so far
  bool m_bRunning = false;      // the user knows that capture runs
};

/// The error callback's text is "<text> error: <number>".
Failure to_failure(const std::string& callback_text) {
  constexpr std::string_view kMark = " error: ";
  const std::size_t mark = callback_text.rfind(kMark);
  if (mark == std::string::npos) {
    return {ExitStatus::ScannerFailed, callback_text};
  }
  return {std::atol(callback_text.c_str() + mark + kMark.size()), callback_text.substr(0, mark)};
}

void CaptureRun::run() {
  const auto begin = Clock::now();
  m_cSession.start();
  try {
    collect(deadline_after(m_cContext.options().timeout));
    m_cSession.stop();
  } catch (...) {
    summarise(Clock::now() - begin);
    throw;
  }
  summarise(Clock::now() - begin);
}

void CaptureRun::collect(const Wakeup::Deadline& deadline) {
  while (true) {
    const Progress progress = m_cSession.progress();
    tell(progress);
    if (hand_over()) {
      return;
    }
    m_cInterruption.check();
    if (progress.error) {
      throw to_failure(*progress.error);
    }
    if (!m_cWakeup.wait(deadline)) {
      throw Failure(ExitStatus::Timeout, "the images did not come in time");
    }
  }
}

/// @return true when the task has enough
bool CaptureRun::hand_over() {
  while (std::optional<Image> image = m_cSession.take()) {
    if (m_cTask.take(std::move(*image))) {
      return true;
    }
  }
  return false;
}

void CaptureRun::tell(const Progress& progress) {
  Console& console = m_cContext.console();
  if (progress.running && !m_bRunning) {
    m_bRunning = true;
    console.detail("capturing");
  }
  for (; m_nWarnings < progress.warnings.size(); ++m_nWarnings) {
    console.message("warning: " + progress.warnings[m_nWarnings]);
  }
  console.progress(std::to_string(progress.frames) + " frames, " +
                   std::to_string(progress.fingers) + " finger images");
}

void CaptureRun::summarise(Clock::duration duration) {
  const Progress progress = m_cSession.progress();
  Report& report = m_cContext.report();
  report["frames"] = progress.frames;
  report["finger_images"] = progress.fingers;
  report["seconds"] = std::chrono::duration<double>(duration).count();
  report["warnings"] = progress.warnings;
}

}  // namespace

void run_capture(Context& context, const CaptureTask& task) { CaptureRun(context, task).run(); }

}  // namespace hvk3
