#pragma once

#include <memory>
#include <optional>
#include <string>

#include "hvk3/interruption.h"
#include "view/board.h"
#include "view/painter.h"
#include "view/scanner_worker.h"
#include "view/view_options.h"
#include "view/window.h"

/// @file
/// The viewer between the scanner's thread and the window.

namespace hvk3::view {

/// Draws what stands on the board, and passes on what the user asks for. All of it runs on the
/// window's thread.
class Viewer {
 public:
  Viewer(const ViewOptions& options, Window& window, Painter& painter, Board& board,
         ScannerWorker& worker, EventLog& events);

  /// Returns when the user has quit and the scanner is free.
  /// @throws Failure for a signal, once the scanner is free
  void run(const Interruption& interruption);

 private:
  void work_until_the_end(const Interruption& interruption);
  void handle(const Input& input);
  void do_action(eAction action);
  void begin_to_end();
  void save();
  void save_window_picture();
  void tell(const Notice& notice);
  void take_images();
  void name_kept();
  void draw_if_needed();
  void draw();
  Layout layout() const;

  const ViewOptions& m_cOptions;
  Window& m_cWindow;
  Painter& m_cPainter;
  Board& m_cBoard;
  ScannerWorker& m_cWorker;
  EventLog& m_cEvents;
  View m_cView;
  std::unique_ptr<Kept> m_pKept;
  bool m_bDirty = true;
  unsigned long m_nRevision = 0;
  FrameRate::Clock::time_point m_cDrawn = {};
};

}  // namespace hvk3::view
