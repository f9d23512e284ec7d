#include "view/viewer.h"

#include <cstdlib>

#include "hvk3/image_file.h"
#include "view/window_picture.h"

namespace hvk3::view {

Viewer::Viewer(const ViewOptions& options, Window& window, Painter& painter, Board& board,
               ScannerWorker& worker, EventLog& events)
    : m_cOptions(options),
      m_cWindow(window),
      m_cPainter(painter),
      m_cBoard(board),
      m_cWorker(worker),
      m_cEvents(events) {}

void Viewer::run(const Interruption& interruption) {
  std::optional<Failure> interrupted;
  try {
    work_until_the_end(interruption);
  } catch (const Failure& failure) {
    interrupted = failure;
    begin_to_end();
  }
  constexpr int kTick = 15;
  while (!m_cWorker.has_ended()) {
    if (const std::optional<Input> input = Window::wait(kTick)) {
      handle(*input);
    }
    draw_if_needed();
  }
  m_cEvents.tell("quit");
  if (interrupted) {
    throw Failure(*interrupted);
  }
}

void Viewer::work_until_the_end(const Interruption& interruption) {
  constexpr int kTick = 15;
  while (!m_cView.ending) {
    for (std::optional<Input> input = Window::wait(kTick); input; input = Window::wait(0)) {
      handle(*input);
    }
    interruption.check();
    m_cEvents.check();
    take_images();
    draw_if_needed();
  }
}

void Viewer::handle(const Input& input) {
  m_bDirty = m_bDirty || input.exposed;
  const Layout places = layout();
  if (input.pointed) {
    const auto hovered = places.button_at(input.pointed->x, input.pointed->y);
    m_bDirty = m_bDirty || hovered != m_cView.hovered;
    m_cView.hovered = hovered;
  }
  if (input.pressed && m_cView.help) {
    do_action(eAction::Help);  // whatever lies behind the keys
  } else if (input.pressed) {
    if (const auto button = places.button_at(input.pressed->x, input.pressed->y)) {
      do_action(controls()[*button].action);
    }
  }
  if (input.action) {
    do_action(*input.action);
  }
  if (input.escape && m_cView.help) {
    do_action(eAction::Help);
  }
  if (input.close) {
    do_action(eAction::Quit);
  }
}

void Viewer::do_action(eAction action) {
  m_bDirty = true;
  switch (action) {
    case eAction::Quit:
      begin_to_end();
      break;
    case eAction::Help:
      m_cView.help = !m_cView.help;
      m_cEvents.tell(m_cView.help ? "keys shown" : "keys hidden");
      break;
    case eAction::Save:
      save();
      break;
    case eAction::WindowPicture:
      save_window_picture();
      break;
    default:
      m_cWorker.ask(action);
  }
}

/// The plug-in may hang in a call: whoever asks again does not want to wait for it.
void Viewer::begin_to_end() {
  if (m_cView.ending) {
    std::_Exit(static_cast<int>(ExitStatus::ScannerFailed));
  }
  m_cView.ending = true;
  m_bDirty = true;
  m_cEvents.tell("ending");
  m_cWorker.end();
}

void Viewer::save() {
  take_images();
  if (!m_pKept) {
    tell({"nothing to save yet", "lay a finger on the platen until it has settled, or press N"});
    m_cEvents.tell("nothing to save");
    return;
  }
  try {
    const std::string path = write_numbered_image(m_pKept->image, m_cOptions.out);
    tell({"saved as " + path, ""});
    m_cEvents.tell("saved " + path);
  } catch (const Failure& failure) {
    tell({failure.what(), remedy_for(failure)});
    m_cEvents.tell("error");
  }
}

void Viewer::save_window_picture() {
  take_images();
  draw();
  try {
    write_window_picture(m_cPainter.canvas().read(), m_cOptions.picture);
    tell({"picture of the window saved as " + m_cOptions.picture, ""});
    m_cEvents.tell("window picture " + m_cOptions.picture);
  } catch (const Failure& failure) {
    tell({failure.what(), "choose another place with --window-picture"});
    m_cEvents.tell("error");
  }
}

void Viewer::tell(const Notice& notice) {
  m_cBoard.update([&](Status& status) { status.notice = notice; });
}

void Viewer::take_images() {
  if (const auto live = m_cBoard.live.take()) {
    m_cPainter.set_live(live->get());
    m_bDirty = true;
  }
  if (auto kept = m_cBoard.kept.take()) {
    m_pKept = *std::move(kept);
    name_kept();
    m_cPainter.set_kept(m_pKept ? &m_pKept->image : nullptr);
    m_bDirty = true;
  }
}

void Viewer::name_kept() {
  m_cView.kept_fake = m_pKept && m_pKept->fake;
  if (!m_pKept) {
    m_cView.kept_title.clear();
  } else {
    m_cView.kept_title =
        m_pKept->snap ? "Snap" : "Settled finger " + std::to_string(m_pKept->touch);
  }
}

/// A scanner that hangs has to be seen too, so something is drawn now and then.
void Viewer::draw_if_needed() {
  constexpr std::chrono::milliseconds kLongest(500);
  const unsigned long revision = m_cBoard.revision();
  const auto now = FrameRate::Clock::now();
  if (m_bDirty || revision != m_nRevision || now - m_cDrawn > kLongest) {
    m_nRevision = revision;
    draw();
    m_cPainter.canvas().show();
    m_cDrawn = now;
  }
}

void Viewer::draw() {
  m_bDirty = false;
  m_cView.status = m_cBoard.status();
  m_cPainter.paint(m_cView, layout());
}

Layout Viewer::layout() const {
  const SDL_Point size = m_cWindow.size();
  return lay_out(size.x, size.y, button_count());
}

}  // namespace hvk3::view
