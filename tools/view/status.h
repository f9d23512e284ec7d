#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "hvk3/failure.h"
#include "hvk3/judgement.h"
#include "hvk3/scanner.h"
#include "view/frame_rate.h"

/// @file
/// What the window tells of the scanner, beside the images.

namespace hvk3::view {

/// What is switched on.
struct Switches {
  bool red_led = false;
  bool green_led = false;
  bool detection = false;  ///< of fake fingers
  bool low_contrast = false;
  bool frozen = false;
};

/// How it stands with the scanner.
enum class eConnection {
  Starting,
  Capturing,
  Missing,  ///< not attached, or unplugged: it comes back by itself
  Stopped,  ///< capture has failed, and the scanner is there
  Failed    ///< for good: the plug-in can't be loaded
};

/// A line for the user.
struct Notice {
  std::string text;
  std::string remedy;  ///< what to do about it; empty for good news
};

struct Status {
  eConnection connection = eConnection::Starting;
  std::optional<ListedScanner> scanner;  ///< the chosen one
  std::size_t scanners = 0;              ///< how many there are
  Switches switches;
  bool finger = false;       ///< on the platen
  bool settled = false;      ///< and one of its images is the settled one
  unsigned int touch = 0;    ///< number of the finger, from 1
  unsigned int settle = 0;   ///< images of it that were looked at for the settled one
  unsigned long frames = 0;  ///< since the beginning
  FrameRate rate;
  unsigned int threshold = 0;    ///< score up to which a finger is a fake
  std::deque<Judgement> scores;  ///< of the last frames, the newest behind
  Notice reason;                 ///< why nothing captures; empty while it does
  Notice notice;                 ///< what was told since
};

/// How many scores are kept.
inline constexpr std::size_t kScores = 150;

/// What the window says first.
enum class eState {
  Starting,
  Waiting,
  Finger,
  Settled,
  NoDetection,
  Frozen,
  Missing,
  Stopped,
  Failed
};

eState state_of(const Status& status);

/// The state in a few words, and what they mean for the user.
struct StateWords {
  const char* title;
  const char* explanation;
};
StateWords words_for(eState state);

/// Without a newer image than that the picture of this state may be of long ago.
bool is_live(eState state);

/// What the newest image is called in this state.
const char* title_for(eState state);

/// What to do about a failure.
std::string remedy_for(const Failure& failure);

/// @param otherwise is what to do when nothing better is known
std::string remedy_for(const Failure& failure, const std::string& otherwise);

/// Capture goes on behind a warning.
Notice warning_of(const std::string& text);

}  // namespace hvk3::view
