#include <chrono>

#include "hvk3/capture_session.h"
#include "hvk3/commands.h"
#include "hvk3/delivery.h"
#include "hvk3/interruption.h"
#include "hvk3/scanner.h"
#include "hvk3/settling.h"

namespace hvk3 {
namespace {

using Clock = std::chrono::steady_clock;

/// A capture that delivers images until there are enough.
class Capture {
 public:
  explicit Capture(Context& context)
      : m_cContext(context),
        m_cInterruption(m_cWakeup),
        m_cSession(context.grabber(),
                   context.options().mode == eMode::Live ? eCaptureLive : eCapturePlain, m_cWakeup),
        m_cSettling(context.options().mode == eMode::Live ? 1 : context.options().settle) {}

  void run();

 private:
  void collect(const Wakeup::Deadline& deadline);
  void deliver_waiting();
  void tell(const Progress& progress);
  void summarise(Clock::duration duration);
  bool is_complete() const { return m_nDelivered == m_cContext.options().count; }

  Context& m_cContext;
  Wakeup m_cWakeup;
  Interruption m_cInterruption;
  CaptureSession m_cSession;
  Settling m_cSettling;
  unsigned int m_nDelivered = 0;
  std::size_t m_nWarnings = 0;  // told so far
  bool m_bRunning = false;      // the user knows that capture runs
};

Wakeup::Deadline deadline_after(double seconds) {
  if (seconds == 0.0) {
    return std::nullopt;
  }
  return Clock::now() +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

/// The error callback's text is "<text> error: <number>".
Failure to_failure(const std::string& callback_text) {
  constexpr std::string_view kMark = " error: ";
  const std::size_t mark = callback_text.rfind(kMark);
  if (mark == std::string::npos) {
    return {ExitStatus::ScannerFailed, callback_text};
  }
  return {std::atol(callback_text.c_str() + mark + kMark.size()), callback_text.substr(0, mark)};
}

void Capture::run() {
  m_cContext.report()["images"] = nlohmann::ordered_json::array();
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

void Capture::collect(const Wakeup::Deadline& deadline) {
  while (true) {
    const Progress progress = m_cSession.progress();
    tell(progress);
    deliver_waiting();
    if (is_complete()) {
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

void Capture::deliver_waiting() {
  while (!is_complete()) {
    std::optional<Image> image = m_cSession.take();
    if (!image) {
      return;
    }
    if (const std::optional<Image> settled = m_cSettling.add(std::move(*image))) {
      deliver(m_cContext, *settled, ++m_nDelivered);
    }
  }
}

void Capture::tell(const Progress& progress) {
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

void Capture::summarise(Clock::duration duration) {
  const Progress progress = m_cSession.progress();
  Report& report = m_cContext.report();
  report["frames"] = progress.frames;
  report["finger_images"] = progress.fingers;
  report["seconds"] = std::chrono::duration<double>(duration).count();
  report["warnings"] = progress.warnings;
}

void run(Context& context) {
  choose_scanner(context.grabber(), context.options().device);
  context.report()["mode"] = context.options().mode == eMode::Live ? "live" : "plain";
  Capture(context).run();
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_image_options(app, options);
  add_capture_options(app, options);
}

}  // namespace

const Command kCaptureCommand = {
    "capture", "Capture live frames, or wait for a finger and take its settled image", &add_options,
    &run};

}  // namespace hvk3
