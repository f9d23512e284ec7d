#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "hvk3/context.h"
#include "hvk3/wakeup.h"
#include "view/board.h"
#include "view/controls.h"
#include "view/event_log.h"
#include "view/live_feed.h"

/// @file
/// What is done with the scanner.

namespace hvk3::view {

/// Captures, switches, and comes back by itself when the scanner was unplugged. One thread works
/// with it; what it has to tell stands on the board.
class ScannerDesk {
 public:
  /// @param wakeup is notified when there is something to look at
  ScannerDesk(Context& context, Board& board, EventLog& events, const Wakeup& wakeup);

  /// Begins to capture, or to wait for a scanner.
  /// @throws Failure `PluginUnavailable`
  void open();

  /// What the user asks for. Failures are told on the board.
  void perform(eAction action);

  /// Sees to an error of capture, an unplugging, a scanner that has come back.
  void look();

  /// When to look again without a notification.
  Wakeup::Deadline next_look() const;

 private:
  void begin();
  ListedScanner find_scanner_to_begin_with();
  void turn_to(const ListedScanner& scanner);
  void look_at_scanner();
  std::optional<unsigned int> present() const;
  bool is_present_attached();
  bool has_come_back();
  void tell_warnings();
  void lose(const Failure& failure);
  void part_from_scanner();
  void prepare();
  Switches read_switches();
  void restore(eAction action);
  void perform_without_capture(eAction action);
  void refuse();
  void toggle(eAction action);
  void set(eAction action, bool on);
  void set_detection(bool on);
  void freeze(bool on);
  void snap();
  void measure_dirt();
  void look_for_scanners();
  std::vector<unsigned int> places_to_go_on_to() const;
  void go_to_next_scanner();
  void tell_of_no_other();
  bool choose(unsigned int interface);
  void restart();
  void tell(const std::string& text, const std::string& event);
  void complain(const Failure& failure, const std::string& remedy);
  bool is_gone(const Failure& failure);
  Osv::lx::ClFramegrabber& grabber() { return m_cContext.grabber(); }

  Context& m_cContext;
  Board& m_cBoard;
  EventLog& m_cEvents;
  const Wakeup& m_cWakeup;
  const std::optional<unsigned int> m_nWanted;  // interface of --device; none: any will do
  std::map<unsigned int, std::string> m_cSeen;  // interfaces with a scanner, and its serial number
  std::optional<Switches> m_cWanted;            // kept over a scanner that comes back
  std::map<eAction, bool> m_cEarly;             // switched when there were no such yet
  std::optional<LiveFeed> m_cFeed;              // while capture runs, or has ended with an error
  eConnection m_eConnection = eConnection::Starting;
  std::chrono::steady_clock::time_point m_cLastLook = {};
};

}  // namespace hvk3::view
