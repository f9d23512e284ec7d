#pragma once

#include <array>
#include <string>

#include "bad_calls/bad_call.h"
#include "client/client_fixture.h"

/// @file
/// The situations in which a client may make a bad call.

namespace Osv::bad_calls {

using client::ClientTest;
using client::eEvent;

/// What a client, the scanner and its library can see of the state. Bad calls leave all of it.
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

/// One situation.
struct Situation {
  const char* name;
  void (InSituation::*enter)();

  /// A scanner of the family is there, so that what opens it succeeds.
  bool scanner = true;

  /// Frames come to the callback meanwhile.
  bool frames = false;

  /// Bad calls may end it: each of them has a frame grabber of its own.
  bool anew = false;
};

inline std::ostream& operator<<(std::ostream& out, const Situation& situation) {
  return out << situation.name;
}

/// A client in one of the situations.
class InSituation : public ClientTest {
 public:
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
  void enter(const Situation& situation) { (this->*situation.enter)(); }

  State state();

 private:
  /// Opens the scanner, and gives settings values that they don't have at first.
  void open_with_settings();

  /// Captures live until the scanner fails a frame with a number.
  void capture_until_error(unsigned int number);

  std::vector<unsigned int> property_values();
};

}  // namespace Osv::bad_calls
