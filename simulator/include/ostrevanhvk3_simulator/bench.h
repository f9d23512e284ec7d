#ifndef OSTREVANHVK3_SIMULATOR_BENCH_H
#define OSTREVANHVK3_SIMULATOR_BENCH_H

/// @file
/// The bench: the control of the simulated scanners, in process.
///
/// The simulator is a set of stand-ins for the closed libraries, with their file names. They share
/// one bench, which holds the scene (scanners and finger), the journal of all calls and the fault
/// plan. Link `libostrevan-simulator.so`, or load it and look up `ostrevan_simulator_bench`: the
/// class below has virtual operations only, so a program that loads it needs no link.
///
/// ```
/// Osv::simulator::Bench& bench = *ostrevan_simulator_bench();
/// bench.reset();
/// bench.set_pace(0);
/// bench.set_timeline(Osv::simulator::Timeline::settled_finger());
/// bench.set_faults("ftrScanGetImageByVariableDose call 3 fails with 121");
/// ```
///
/// Without any control the default scene stands: one scanner at interface 0, on which a finger
/// comes, presses, stays and lifts again and again, at 15 frames per second. Every operation may be
/// called from any thread, also from the callbacks of a client, while calls are under way.
///
/// Interfaces are numbered from 0 to 127; another number throws std::out_of_range. Operations on an
/// interface that never had a device do too.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Osv::simulator {

/// Size of the frames that a simulated scanner delivers unless its `Device` says otherwise, in
/// pixels.
/// @{
inline constexpr int kRawWidth = 640;
inline constexpr int kRawHeight = 480;
/// @}

/// Size of the frames of the scanner that the words call small.
/// @{
inline constexpr int kSmallWidth = 480;
inline constexpr int kSmallHeight = 360;
/// @}

/// Size of the images that the calibration engine makes of frames of the usual size. They have 500
/// dots per inch.
/// @{
inline constexpr int kFinalWidth = 498;
inline constexpr int kFinalHeight = 438;
inline constexpr int kPixelsPerMetre = 19685;
/// @}

/// Number of interfaces.
inline constexpr unsigned int kInterfaceCount = 128;

/// Frames per second of the default scene.
inline constexpr unsigned int kDefaultPace = 15;

/// An 8-bit gray picture: rows from the top, `width` bytes each, no padding; 0 is black.
struct GrayImage {
  int width = 0;                      ///< pixels in a row
  int height = 0;                     ///< rows
  std::vector<unsigned char> pixels;  ///< `width` times `height` bytes
};

/// What is printed of a built-in finger.
enum class ePrint {
  Plain,  ///< the finger laid flat: an oval of 320 x 400 pixels
  Rolled  ///< from nail to nail, as a roll brings it out: 440 x 410 pixels
};

/// What the finger is made of. The detector of fake fingers tells them by their backlight image.
enum class eFingerKind {
  Live,     ///< a finger
  Printed,  ///< a sheet with a print on it, which lets no light through
  Moulded   ///< a cast of a finger, which lets light through but not as skin does
};

/// How wet the skin is.
enum class eSkin {
  Normal,  ///< neither
  Dry,     ///< thin, broken ridges
  Wet      ///< wide ridges that run into each other
};

/// How a finger rolls: to one side, or there and back.
enum class eRoll {
  Right,         ///< to the right side
  Left,          ///< to the left side
  RightAndBack,  ///< to the right side and back
  LeftAndBack    ///< to the left side and back
};

/// Where a picture comes to lie: column and row of its upper left pixel in the final image, counted
/// from the upper left corner. Negative for a picture larger than the image, which is then cut.
struct Place {
  int x = 0;  ///< column
  int y = 0;  ///< row
};

/// What a scanner's extended memory holds.
enum class eMemory {
  Calibrated,  ///< the calibration block of the unit, with the payload for its own optics
  Blank,       ///< memory, but zeros in place of a block
  None         ///< no extended memory
};

/// Four parts of a version; `kAbsentPart` in the third or fourth means that it is absent.
/// @{
using Version = std::array<std::uint16_t, 4>;
inline constexpr std::uint16_t kAbsentPart = 0xFFFF;
/// @}

/// Control bytes, authorization code or secret bytes.
using SevenBytes = std::array<unsigned char, 7>;

/// A scanner as it is plugged in.
struct Device {
  std::string serial = "HVK30001";  ///< its first 8 bytes count; a shorter one is filled with zeros
  unsigned char model = 1;          ///< 1 and 4 are scanners of the family
  unsigned int seed = 1;            ///< makes light, fixed pattern and noise of this unit
  int frame_width = kRawWidth;      ///< even; less than usual: it sees the middle of the platen
  int frame_height = kRawHeight;    ///< the same
  eMemory memory = eMemory::Calibrated;  ///< what the extended memory holds
  std::size_t memory_size = 0;  ///< bytes; 0: block and some room (Calibrated), 4096 (Blank)
  std::string revision = "simulated unit 1";  ///< of the block; its first 16 bytes count
  std::string description = "simulator";      ///< of the block, up to 255 bytes
  Version second_version = {2, 1, kAbsentPart, kAbsentPart};  ///< of the scanner's three versions
  Version third_version = {3, 4, 5, kAbsentPart};             ///< of the same
  SevenBytes control_bytes = {};                              ///< read and written without a code
  SevenBytes authorization_code = {};                         ///< guards the secret bytes
  SevenBytes secret = {};                                     ///< read and written with the code
};

/// What a scanner looks like from outside at this moment.
struct DeviceState {
  bool plugged_in = false;             ///< false: the rest is as the scanner was when it went
  std::string serial;                  ///< 8 bytes
  unsigned int options = 0;            ///< as the scanner library set them
  unsigned char green = 0;             ///< level of the LED
  unsigned char red = 0;               ///< level of the LED
  SevenBytes control_bytes = {};       ///< as they are now
  SevenBytes authorization_code = {};  ///< as it is now
  SevenBytes secret = {};              ///< as they are now
  unsigned int open_handles = 0;       ///< handles of this device not yet closed, dead ones too
};

/// What happens on the platens, counted in dose frames delivered by all scanners together since the
/// timeline was set. Phases of 0 frames are left out.
struct Timeline {
  unsigned int empty = 15;    ///< nothing lies there
  unsigned int coming = 10;   ///< touching and pressing: contact grows
  unsigned int staying = 45;  ///< the finger is settled
  unsigned int lifting = 5;   ///< contact shrinks
  bool again = true;  ///< from the beginning after the last phase; otherwise its last frame stays

  /// Nothing ever lies there.
  static constexpr Timeline empty_platen() { return {1, 0, 0, 0, false}; }
  /// A settled finger lies there from the first frame on.
  static constexpr Timeline settled_finger() { return {0, 0, 1, 0, false}; }
};

/// What clients hold of the libraries, and what they did wrong in giving it back.
struct Census {
  unsigned int scanner_handles = 0;  ///< not yet closed, dead ones too
  unsigned int engines = 0;          ///< instances of the calibration engine
  unsigned int detectors = 0;        ///< instances of the fake finger detector
  unsigned int wrong_releases = 0;   ///< of handles that were none, or given back before
  unsigned int left_behind = 0;      ///< engines and detectors in a library that was closed
};

/// How far a scenario has come.
struct ScenarioState {
  bool ended = true;    ///< no line is left
  std::string trouble;  ///< what went wrong with the last line that could not be carried out
};

/// A word of the language that steers the simulator, or an argument of such words.
struct Word {
  std::string pattern;  ///< as in "roll WAY over FRAMES frames", or "FRAMES"
  std::string meaning;  ///< a sentence or two
};

/// One call into a stand-in.
struct Call {
  std::string function;          ///< its name
  std::string arguments;         ///< in words, as in "handle 1, dose 60"
  std::string result;            ///< as in "1", "-21, size 220064", "handle 2"
  std::uint32_t last_error = 0;  ///< of the scanner library, behind the call

  /// As in "ftrScanSetOptions(handle 1, mask 4, flags 4) = 1".
  std::string text() const { return function + "(" + arguments + ") = " + result; }
};

/// Where the logging stand-in writes its lines.
enum class eLogTarget {
  Nowhere,        ///< they are dropped
  StandardError,  ///< standard error of the process
  File            ///< a file
};

/// The control of the simulator. Owned by the library; never delete it.
class Bench {
 public:
  virtual ~Bench() = default;

  /// Brings back the default scene, an empty journal that does not record, no faults and a log that
  /// goes nowhere. Blocked calls are released, and all scanner handles are gone. Their numbers
  /// start at 1 again, so one that is kept across a reset may come to life.
  virtual void reset() = 0;

  /// @name Scanners
  /// @{

  /// Plugs a scanner in; one that was there is unplugged first. All its handles stay dead.
  virtual void plug_in(unsigned int interface, const Device& device) = 0;

  /// Takes a scanner off. Its handles are dead from now on: every call with them but the closing,
  /// with a buffer that is not null, fails with 259.
  virtual void unplug(unsigned int interface) = 0;

  /// Brings back what was last unplugged here, with its memory and settings; LEDs are off.
  virtual void plug_in_again(unsigned int interface) = 0;

  /// Leaves no scanner at any interface.
  virtual void unplug_all() = 0;

  /// What the scanner looks like now.
  virtual DeviceState state(unsigned int interface) const = 0;

  /// Sets the levels of the LEDs, as if the application had done it.
  virtual void set_leds(unsigned int interface, unsigned char green, unsigned char red) = 0;

  /// Sets the code that guards the secret bytes, or these.
  /// @{
  virtual void set_authorization_code(unsigned int interface, const SevenBytes& code) = 0;
  virtual void set_secret(unsigned int interface, const SevenBytes& bytes) = 0;
  /// @}

  /// The scanner's whole extended memory.
  virtual std::vector<unsigned char> memory(unsigned int interface) const = 0;

  /// Replaces the extended memory, its size included.
  virtual void set_memory(unsigned int interface, const std::vector<unsigned char>& bytes) = 0;

  /// The number that `ftrSetBaseInterface` has set last, at first 0.
  virtual int base_interface() const = 0;

  /// With true, interfaces below the base interface report no device in the list, so that the list
  /// begins with the scanner at the base. By default the list does not depend on the base.
  virtual void list_from_base(bool on) = 0;
  /// @}

  /// @name Finger and frames
  /// @{

  /// Sets what happens on the platens, and starts its clock anew.
  virtual void set_timeline(const Timeline& timeline) = 0;

  /// Move the finger in place of a timeline, from how the sensor saw it last; its clock starts
  /// anew.
  /// @{

  /// It comes within 5 frames and stays.
  virtual void touch_down() = 0;

  /// It lifts within 3 frames and stays away.
  virtual void lift_off() = 0;

  /// It rolls, and stays on the side that it has reached. If it doesn't lie on the side where it
  /// begins, it first touches down there within 3 frames. A strip of four tenths of the picture's
  /// width touches at a time.
  /// @param way to which side, and whether back
  /// @param frames from the first position to the last one, there and back together
  /// @throws std::invalid_argument for no frames
  virtual void roll(eRoll way, unsigned int frames) = 0;
  /// @}

  /// Dose frames delivered since the timeline was set, or the finger moved.
  virtual unsigned int frame_count() const = 0;

  /// Takes an 8-bit gray PNG or BMP file as the finger, ridges dark, 500 dots per inch.
  /// @throws std::runtime_error for a file that can't be read, or is no such picture
  virtual void load_finger(const std::string& path) = 0;

  /// Takes a picture as the finger. @throws std::invalid_argument for an inconsistent one
  virtual void set_finger(const GrayImage& picture) = 0;

  /// Takes the built-in print as the finger: that of seed 1, laid flat.
  virtual void set_built_in_finger() = 0;

  /// Takes the built-in print of a seed as the finger.
  virtual void set_print(unsigned int seed, ePrint shape) = 0;

  /// The picture that is the finger now, as it is with normal skin.
  virtual GrayImage finger() const = 0;

  /// Sets what the finger is made of, or how wet its skin is.
  /// @{
  virtual void set_finger_kind(eFingerKind kind) = 0;
  virtual void set_skin(eSkin skin) = 0;
  /// @}

  /// How firmly the finger presses, from 0 to 100 percent of what settles it. Less makes the
  /// contact smaller and weaker. @throws std::invalid_argument for more
  virtual void set_pressure(unsigned int percent) = 0;

  /// Makes so much of the platens dirty; of a clean one the contamination measure gives about this
  /// number. @throws std::invalid_argument for more than 100
  virtual void set_dirt(unsigned int percent) = 0;

  /// Where a picture of this size lies in the final image, one pixel on one pixel.
  virtual Place place(int width, int height) const = 0;

  /// Frames per second; the frame calls wait for their time. 0: they don't wait.
  virtual void set_pace(unsigned int frames_per_second) = 0;
  /// @}

  /// @name Journal
  /// @{

  /// Starts or stops recording. Calls are counted always; stopped, nothing is allocated for a call.
  virtual void record(bool on) = 0;

  /// The recorded calls, in the order in which they ended.
  virtual std::vector<Call> calls() const = 0;

  /// Calls of a function since the journal was cleared, recorded or not.
  /// @throws std::invalid_argument for a name that no stand-in has
  virtual unsigned int count(const std::string& function) const = 0;

  /// Forgets recorded calls and counts.
  virtual void clear_journal() = 0;
  /// @}

  /// @name Fault plan
  /// @{

  /// Replaces the fault plan and counts calls anew from 1 for it. Blocked calls are released.
  /// @param words faults, separated by line ends or semicolons, in the words of docs/simulator.md
  /// @throws std::invalid_argument naming the word that is not understood; the old plan stays
  virtual void set_faults(const std::string& words) = 0;

  /// Adds faults to the plan, and counts calls for them from now on. Nothing is released.
  /// @throws std::invalid_argument as `set_faults`
  virtual void add_faults(const std::string& words) = 0;

  /// As `set_faults` with no faults.
  virtual void clear_faults() = 0;

  /// Lets all calls go on that are blocked at this moment.
  virtual void release() = 0;

  /// Waits until a call of the function is blocked by the fault plan.
  /// @throws std::invalid_argument for a name that no stand-in has
  virtual void wait_until_blocked(const std::string& function) = 0;
  /// @}

  /// @name Words
  /// The words of docs/simulator.md steer a scene while it runs: line by line, or as a scenario.
  /// Both know how to wait; while the one waits, the other goes on.
  /// @{

  /// Carries out a line of words, or keeps it until an earlier line has waited long enough. Blank
  /// lines, and what stands behind a '#', mean nothing.
  /// @return the answer to a line that asks something; empty for any other, and for one that is
  /// kept
  /// @throws std::invalid_argument for a line that is not understood, saying where and what would
  /// be
  /// @throws std::runtime_error for one that can't be carried out
  virtual std::string run(const std::string& line) = 0;

  /// Reads a scenario file and begins with it, in place of an earlier scenario. Lines behind a
  /// wait are carried out by the thread whose call ended it, at the end of this call.
  /// @throws std::runtime_error for a file that can't be read
  /// @throws std::invalid_argument as `set_scenario`
  virtual void load_scenario(const std::string& path) = 0;

  /// The same with the lines themselves. All are read before the first is carried out; pictures are
  /// loaded then, too.
  /// @throws std::invalid_argument for a line as in `run`, with its number; nothing is carried out
  virtual void set_scenario(const std::string& lines) = 0;

  /// How far the scenario has come.
  virtual ScenarioState scenario() const = 0;

  /// All words, or all their arguments.
  /// @{
  virtual std::vector<Word> vocabulary() const = 0;
  virtual std::vector<Word> arguments() const = 0;
  /// @}
  /// @}

  /// @name Logging stand-in
  /// @{

  /// Sets where log lines go. A file is created with mode 0600 or appended to.
  /// @param target where to
  /// @param path of the file, unused for other targets
  /// @throws std::runtime_error for a file that can't be opened
  virtual void set_log(eLogTarget target, const std::string& path) = 0;

  /// Writes only lines of this level or a more severe one: 3 errors, 4 warnings too, 7 everything.
  virtual void set_log_level(int level) = 0;
  /// @}

  /// Counts what is given out at this moment, and mistakes since the last `reset`.
  virtual Census census() const = 0;
};

}  // namespace Osv::simulator

/// The one bench of the process.
extern "C" __attribute__((visibility("default"))) Osv::simulator::Bench* ostrevan_simulator_bench();

#endif
