#include <csignal>
#include <iostream>

#include "hvk3/context.h"
#include "hvk3/program_options.h"
#include "view/display_loss.h"
#include "view/view_options.h"
#include "view/viewer.h"

namespace hvk3::view {
namespace {

/// What goes in the opposite order: the scanner is free before the plug-in goes, and the window
/// goes last but for the simulation.
class Program {
 public:
  Program(const ViewOptions& options, Console& console)
      : m_cOptions(options),
        m_cConsole(console),
        m_cReport("view", false),
        m_cEvents(options.events) {}

  int run();

 private:
  int end_without_display();

  const ViewOptions& m_cOptions;
  Console& m_cConsole;
  Report m_cReport;
  EventLog m_cEvents;
  Board m_cBoard;
  std::optional<Context> m_cContext;
  std::optional<ScannerWorker> m_cWorker;
};

int Program::run() {
  const Wakeup wakeup;
  const Interruption interruption(wakeup);
  m_cContext.emplace(m_cOptions.tool, m_cConsole, m_cReport);
  const Screen screen;
  Window window("hvk3-view");
  Painter painter(window.get());
  m_cWorker.emplace(*m_cContext, m_cBoard, m_cEvents);
  const DisplayLoss loss([this] { return end_without_display(); });
  Viewer(m_cOptions, window, painter, m_cBoard, *m_cWorker, m_cEvents).run(interruption);
  if (const std::optional<Failure>& failure = m_cWorker->failure()) {
    return failure->exit_code();
  }
  m_cEvents.close();
  m_cEvents.check();
  return static_cast<int>(ExitStatus::Ok);
}

int Program::end_without_display() {
  m_cWorker.reset();
  m_cContext.reset();
  m_cConsole.message("error: the display has gone");
  m_cEvents.tell("quit");
  m_cEvents.close();
  return static_cast<int>(ExitStatus::OutputFailed);
}

int run(const ViewOptions& options) {
  Console console(options.tool.verbose);
  try {
    return Program(options, console).run();
  } catch (const Failure& failure) {
    console.message(std::string("error: ") + failure.what());
    return failure.exit_code();
  } catch (const std::exception& error) {
    console.message(std::string("error: ") + error.what());
    return static_cast<int>(ExitStatus::Internal);
  }
}

}  // namespace
}  // namespace hvk3::view

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a lost standard output ends the viewer in good order
  hvk3::view::CommandLine line;
  try {
    line.app().parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return hvk3::end_parsing(line.app(), error);
  }
  return hvk3::view::run(line.options());
}
