#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// What a client does in a run.

namespace Osv::faults {

/// One thing that a client does. `number` and `value` mean what the comment says.
enum class eStep {
  List,           ///< the scanners
  Choose,         ///< the scanner at interface `number`
  Active,         ///< which scanner is chosen
  Info,           ///< the description of the scanner
  Camera,         ///< chooses the one there is
  Snap,           ///< one image
  Live,           ///< captures live, and stops inside image `number`
  Plain,          ///< captures to the first finger image, at most `number` live images
  LiveFrozen,     ///< as Live, frozen for a while behind the first image
  LiveTwice,      ///< as Live, with another start in the middle of it
  StopAgain,      ///< stops what isn't capturing
  SetProperty,    ///< property `number` to `value`
  GetProperty,    ///< property `number`
  SetFeature,     ///< feature `number`
  GetFeature,     ///< feature `number`, into room of the client's or, for `kNoRoom`, the plug-in's
  Contamination,  ///< how dirty the platen is
  FrameInfo,      ///< what the last frame was scored with
  Unplug,         ///< the scanner at interface `number`
  PlugInAgain,    ///< the scanner at interface `number`
  GetAgain,       ///< destroys the frame grabber and gets it again
  LoadAgain       ///< the same with the plug-in closed and opened between
};

/// The `value` of a step whose client leaves it to the plug-in to allocate.
constexpr unsigned int kNoRoom = 1;

/// Callbacks of a capture: the start, image 1 and so on, the others.
constexpr unsigned int kStartCallback = 0;
constexpr unsigned int kStopCallback = 1000;
constexpr unsigned int kFingerCallback = 1001;
constexpr unsigned int kErrorCallback = 1002;
constexpr unsigned int kEventCallback = 1003;

/// What comes back of a scanner that was unplugged at interface 0.
enum class eReturn {
  Never,
  Here,       ///< it, where it was
  Elsewhere,  ///< one at interface `kElsewhere`, where one was before
  Another     ///< a new one where it was, with larger frames
};

constexpr eReturn kReturns[] = {eReturn::Never, eReturn::Here, eReturn::Elsewhere,
                                eReturn::Another};
constexpr unsigned int kElsewhere = 3;
constexpr char kSerialOfAnother[] = "HVK30001";

/// The lines of a scenario for the bench that do it.
std::string unplugging_in_words(eReturn comes_back);

/// The scanner goes, and comes back at once or not, inside the first callback of a kind.
struct Unplugging {
  unsigned int callback = 0;
  eReturn comes_back = eReturn::Never;
};

struct Step {
  eStep what = {};
  unsigned int number = 0;
  unsigned int value = 0;
  std::optional<Unplugging> unplugs = {};  ///< of a capture
};

bool is_capture(const Step& step);

/// Sizes of frames: a run takes as long as its pixels.
constexpr std::pair kTinyFrames = {160, 120};
constexpr std::pair kLargerFrames = {simulator::kSmallWidth, simulator::kSmallHeight};

/// A device at an interface.
struct Attached {
  unsigned int interface = 0;
  unsigned char model = 1;
  simulator::eMemory memory = simulator::eMemory::Calibrated;
  std::pair<int, int> frames = kTinyFrames;
  bool away = false;                       ///< it is known at the interface, and not plugged in
  std::optional<std::string> serial = {};  ///< nothing: that of the interface
};

struct Scenario {
  std::string name;
  std::vector<Attached> attached = {};
  simulator::eFingerKind finger = simulator::eFingerKind::Live;
  std::vector<Step> steps = {};
};

const std::vector<Scenario>& all_scenarios();

/// Captures whose first step an unplugging meets, and what a client does then: it starts again
/// twice, chooses another interface, and gets the frame grabber anew.
const std::vector<Scenario>& unplugging_scenarios();

/// What takes every lock of the plug-in: those of channel and callbacks, of the driver, its opening
/// and the device, and those of engine and detector if there is one.
const std::vector<Step>& locking_steps();

/// The serial number of the scanner at an interface.
std::string serial_of(unsigned int interface);

/// What a client has of a step: the result, what was given out, and the text of the last failure.
std::string in_words(const Step& step, unsigned long result, const std::string& value,
                     const std::string& text);

/// A value that depends on the finger is `some`.
std::string value_in_words(double value);

std::string score_in_words(double score, long state);

/// A scanner in the list, with its serial number when that is not its own.
std::string listed_in_words(unsigned int interface, const std::string& serial);

/// What a property that is not read reads as.
constexpr unsigned int kUnread = 7;

}  // namespace Osv::faults
