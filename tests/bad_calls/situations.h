#pragma once

#include <array>
#include <atomic>
#include <string>

#include "bad_calls/bad_call.h"
#include "client/client_fixture.h"

/// @file
/// The situations in which a client may make a bad call.

namespace Osv::bad_calls {

using client::ClientTest;
using client::eEvent;

/// What a client, the scanner and its library can see of the state without an image. Bad calls
/// leave all of it, and what only images show: that a channel is not frozen, and that its callbacks
/// come.
struct State {
  simulator::DeviceState device;
  int base_interface = 0;
  unsigned long active_device = 0;
  std::array<unsigned char, 12> frame_information = {};
  std::vector<unsigned int> properties;  ///< and the format of image data; none while closed
};

bool operator==(const State& left, const State& right);
std::ostream& operator<<(std::ostream& out, const State& state);

class InSituation;

enum class eScanner {
  There,  ///< what opens it succeeds
  Gone,
  Replugged  ///< since it was opened: its handle is dead
};

/// One situation.
struct Situation {
  const char* name;
  void (InSituation::*enter)();

  eScanner scanner = eScanner::There;

  /// The channel captures, or would if it had not ended with an error.
  bool captures = false;

  /// Frames come to the callback meanwhile.
  bool frames = false;

  /// The client has frozen the channel.
  bool frozen = false;

  /// A call that opens the scanner ends it, and the next one has a frame grabber of its own.
  bool anew = false;
};

inline std::ostream& operator<<(std::ostream& out, const Situation& situation) {
  return out << situation.name;
}

/// A client with all callbacks, in one of the situations.
class InSituation : public ClientTest {
 public:
  /// The scanner's protected bytes are under a code that no row has.
  InSituation();
  ~InSituation() override { disconnect(); }  // no event comes behind this

  /// @name Entering
  /// @{
  void before_the_first_opening();
  void while_open();
  void without_a_scanner();
  void after_a_disconnection();
  void with_a_dead_handle();
  void during_capture();
  void while_frozen();
  void after_an_error_and_no_stop();
  /// @}

 protected:
  /// May follow another one, and what bad calls have left of it.
  void enter(const Situation& situation);

  /// A new capture has its start and its stop callback, frames, and events if there are to be any.
  /// What was the state before it is gone.
  void expect_a_capture(const Situation& situation, bool with_events);

  State state();

  /// The part of it that there is without a frame grabber.
  State scanner_state() const;

  std::atomic<int> events{0};

 private:
  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user);

  /// As `connect`, with events.
  void connect_with_events();

  void bring_scanner_back();

  /// Opens the scanner, and gives settings values that they don't have at first.
  void open_with_settings();

  /// Captures live until the scanner fails a frame with a number.
  void capture_until_error(unsigned int number);

  std::vector<unsigned int> property_values();
};

}  // namespace Osv::bad_calls
