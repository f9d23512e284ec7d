#include "hvk3/capture_run.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

#include "hvk3/capture_session.h"
#include "hvk3/interruption.h"
#include "hvk3/live_screen.h"
#include "hvk3/preview.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

using Clock = std::chrono::steady_clock;

/// A capture that hands its images to a task.
class CaptureRun {
 public:
  CaptureRun(Context& context, const CaptureTask& task)
      : m_cContext(context), m_cTask(task), m_cInterruption(m_cWakeup) {
    if (context.options().preview) {
      m_cPreview.emplace(context.options().shades);
    }
  }

  void run();

 private:
  void start();
  std::function<void(const unsigned char*)> observer();
  [[nodiscard]] bool completes(const Wakeup::Deadline& deadline);
  void come_back(const Wakeup::Deadline& deadline);
  [[nodiscard]] bool starts_again();
  void wait_for_scanner(const Wakeup::Deadline& deadline);
  bool is_worth_waiting(const Failure& failure);
  bool is_listed();
  void collect(const Wakeup::Deadline& deadline);
  [[nodiscard]] bool wait(const Wakeup::Deadline& deadline, LiveScreen* screen);
  bool hand_over();
  void tell();
  void tell_warnings(const Progress& progress);
  Progress whole_progress() const;
  void summarise(Clock::duration duration);

  Context& m_cContext;
  const CaptureTask& m_cTask;
  Wakeup m_cWakeup;
  Interruption m_cInterruption;
  std::optional<Preview> m_cPreview;
  std::optional<CaptureSession> m_cSession;
  Progress m_cPast;             // of the sessions before this one
  std::size_t m_nWarnings = 0;  // told so far
  bool m_bRunning = false;      // the user knows that capture runs
  unsigned int m_nComebacks = 0;
};

void CaptureRun::run() {
  const auto begin = Clock::now();
  start();
  const Wakeup::Deadline deadline = deadline_after(m_cContext.options().timeout);
  try {
    while (!completes(deadline)) {
      come_back(deadline);
    }
  } catch (...) {
    summarise(Clock::now() - begin);
    throw;
  }
  summarise(Clock::now() - begin);
}

void CaptureRun::start() {
  m_bRunning = false;
  m_cSession.emplace(m_cContext.grabber(), m_cTask.mode, m_cWakeup, observer());
  m_cSession->start();
}

/// The preview gets the images of live mode as they are handed over, without a copy of its own in
/// the callback.
std::function<void(const unsigned char*)> CaptureRun::observer() {
  if (!m_cPreview || m_cTask.mode == eCaptureLive) {
    return m_cTask.observe;
  }
  return [this](const unsigned char* image) {
    if (m_cTask.observe) {
      m_cTask.observe(image);
    }
    m_cPreview->offer(image);
  };
}

/// @return false when the scanner has gone and may come back
bool CaptureRun::completes(const Wakeup::Deadline& deadline) {
  try {
    collect(deadline);
    m_cSession->stop();
    return true;
  } catch (const Failure& failure) {
    if (!is_worth_waiting(failure)) {
      throw;
    }
    m_cContext.console().message(std::string("the scanner has gone (") + failure.what() +
                                 "); waiting for one");
    return false;
  }
}

/// A frame grabber that was got anew has no memory of the scanner that went, whatever call was
/// under way then.
void CaptureRun::come_back(const Wakeup::Deadline& deadline) {
  do {
    m_cPast = whole_progress();
    m_cSession.reset();
    m_cContext.plugin().get_anew();
    wait_for_scanner(deadline);
  } while (!starts_again());
  ++m_nComebacks;
  m_cContext.console().message("a scanner is there again");
}

bool CaptureRun::starts_again() {
  try {
    m_cTask.prepare_again();
    start();
    return true;
  } catch (const Failure& failure) {
    if (!is_worth_waiting(failure)) {
      throw;
    }
    return false;  // it went again
  }
}

void CaptureRun::wait_for_scanner(const Wakeup::Deadline& deadline) {
  constexpr std::chrono::milliseconds kPeriod(200);
  do {
    const auto next = Clock::now() + kPeriod;
    (void)m_cWakeup.wait(deadline ? std::min(*deadline, next) : next);
    m_cInterruption.check();
    if (deadline && Clock::now() >= *deadline) {
      throw Failure(ExitStatus::Timeout, "no scanner came back in time");
    }
  } while (!is_listed());
}

/// Whatever the number: the operation that met the unplugging gave its own.
bool CaptureRun::is_worth_waiting(const Failure& failure) {
  const bool keeps_going = m_cContext.options().keep_going && m_cTask.prepare_again;
  return keeps_going && (failure.status() == ExitStatus::NoScanner ||
                         (failure.number().has_value() && !is_listed()));
}

/// Whether the scanner that the user wants is there.
bool CaptureRun::is_listed() {
  return is_attached(m_cContext.grabber(), m_cContext.options().device);
}

void CaptureRun::collect(const Wakeup::Deadline& deadline) {
  std::optional<Console::Pause> pause;  // ends behind the screen
  std::optional<LiveScreen> screen;     // given back before capture stops, which may take a while
  if (m_cPreview) {
    pause.emplace(m_cContext.console());
    screen.emplace(m_cWakeup);
  }
  while (true) {
    const Progress progress = m_cSession->progress();
    tell();
    if (hand_over()) {
      return;
    }
    m_cInterruption.check();
    if (progress.error) {
      throw Failure::of_capture(*progress.error);
    }
    if (!wait(deadline, screen ? &*screen : nullptr)) {
      throw Failure(ExitStatus::Timeout, "the images did not come in time");
    }
  }
}

/// Draws and waits. @return false when the deadline has passed
bool CaptureRun::wait(const Wakeup::Deadline& deadline, LiveScreen* screen) {
  if (screen == nullptr) {
    return m_cWakeup.wait(deadline);
  }
  m_cPreview->draw_on(*screen);
  const Wakeup::Deadline next = m_cPreview->next(*screen);
  const bool draws_first = next && (!deadline || *next < *deadline);
  return m_cWakeup.wait(draws_first ? next : deadline, screen->awaited_file()) || draws_first;
}

/// @return true when the task has enough
bool CaptureRun::hand_over() {
  while (std::optional<Image> image = m_cSession->take()) {
    if (m_cPreview && m_cTask.mode == eCaptureLive) {
      m_cPreview->offer(image->block().data());
    }
    if (m_cTask.take(std::move(*image))) {
      return true;
    }
  }
  return false;
}

void CaptureRun::tell() {
  const Progress progress = whole_progress();
  Console& console = m_cContext.console();
  if (progress.running && !m_bRunning) {
    m_bRunning = true;
    console.detail("capturing");
  }
  const std::string line = std::to_string(progress.frames) + " frames, " +
                           std::to_string(progress.fingers) + " finger images";
  tell_warnings(progress);
  if (m_cPreview) {
    m_cPreview->set_status(line);
  } else {
    console.progress(line);
  }
}

void CaptureRun::tell_warnings(const Progress& progress) {
  for (; m_nWarnings < progress.warnings.size(); ++m_nWarnings) {
    m_cContext.console().message("warning: " + progress.warnings[m_nWarnings]);
  }
}

/// What all sessions together have had.
Progress CaptureRun::whole_progress() const {
  if (!m_cSession) {
    return m_cPast;
  }
  Progress whole = m_cSession->progress();
  whole.frames += m_cPast.frames;
  whole.fingers += m_cPast.fingers;
  whole.warnings.insert(whole.warnings.begin(), m_cPast.warnings.begin(), m_cPast.warnings.end());
  return whole;
}

void CaptureRun::summarise(Clock::duration duration) {
  const Progress progress = whole_progress();
  tell_warnings(progress);
  Report& report = m_cContext.report();
  report["frames"] = progress.frames;
  report["finger_images"] = progress.fingers;
  report["seconds"] = std::chrono::duration<double>(duration).count();
  report["warnings"] = progress.warnings;
  if (m_cTask.prepare_again) {
    report["comebacks"] = m_nComebacks;
  }
}

}  // namespace

void run_capture(Context& context, const CaptureTask& task) { CaptureRun(context, task).run(); }

}  // namespace hvk3
