#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "hvk3/plugin.h"
#include "hvk3/settling.h"
#include "hvk3/wakeup.h"
#include "view/board.h"
#include "view/event_log.h"

/// @file
/// One capture, from its start to its stop.

namespace hvk3::view {

/// Brings what the callbacks get on the board. A callback copies its image once and waits for
/// nobody. Everything but the callbacks runs on the thread that made the feed.
class LiveFeed {
 public:
  /// @param settle of so many images of a finger the darkest is kept
  /// @param wakeup is notified of an error and of a warning
  LiveFeed(Plugin& plugin, Board& board, EventLog& events, const Wakeup& wakeup,
           unsigned int settle);

  /// Stops capture; no callback comes any more.
  ~LiveFeed();
  LiveFeed(const LiveFeed&) = delete;
  LiveFeed& operator=(const LiveFeed&) = delete;

  /// @throws Failure
  void start();

  /// Tells the event of the start, and then those of images that have come already.
  void announce(const std::string& event);

  /// Judges frames from the next one on that was fetched by now.
  /// @param threshold score up to which a finger is a fake; none: judges no more
  void judge(std::optional<unsigned int> threshold);

  /// Whether the image that this thread has just taken shows a fake finger.
  bool took_fake() { return std::exchange(m_bTookFake, false); }

  /// The texts of warnings that have come since this was asked.
  std::vector<std::string> take_warnings();

  /// The text of the error that has ended capture.
  std::optional<std::string> error() const;

 private:
  static void on_frame(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);
  static void on_warning(int handle, unsigned int channel, const char* text, void* user);
  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user);

  void take_frame(const unsigned char* image);
  void take_finger(const unsigned char* image);
  void begin_touch();
  void end_touch();
  std::optional<Judgement> judge_frame();
  bool end_row();
  void tell(const std::string& event);

  Osv::lx::ClFramegrabber& m_cGrabber;
  const Osv::lx::CurrentFrameInfoFunction m_pfnFrameInfo;
  Board& m_cBoard;
  EventLog& m_cEvents;
  const Wakeup& m_cWakeup;
  const unsigned int m_nSettle;
  const std::thread::id m_cOwner = std::this_thread::get_id();
  bool m_bTookFake = false;  // the owner only

  // The plug-in's worker thread only, while capture runs.
  Settling m_cSettling;
  unsigned int m_nTouch;
  bool m_bTouching = false;
  bool m_bFinger = false;  // in the frame under way
  bool m_bFake = false;    // likewise
  bool m_bLive = false;    // an image has come

  mutable std::mutex m_cLock;  // guards everything below
  std::optional<unsigned int> m_nThreshold;
  bool m_bOldFrame = false;   // the next frame may have been fetched before judging began
  bool m_bFakeInRow = false;  // among the images of which one settles
  std::vector<std::string> m_vWarnings;
  std::optional<std::string> m_sError;
  bool m_bAnnounced = false;
  std::vector<std::string> m_vEarly;  // events before the announcement
};

}  // namespace hvk3::view
