#pragma once

#include <span>
#include <string>

#include "view/status.h"

/// @file
/// What the user can do, each with a key and a button.

namespace hvk3::view {

enum class eAction {
  RedLed,
  GreenLed,
  Detection,
  LowContrast,
  Freeze,
  Snap,
  Save,
  Contamination,
  NextScanner,
  Restart,
  Help,
  Quit,
  WindowPicture
};

struct Control {
  eAction action;
  const char* key;    ///< as SDL names it
  const char* sign;   ///< the key on the button
  const char* label;  ///< on the button
  const char* help;   ///< one line
  bool button;        ///< or a key alone
};

/// All controls; those with buttons first, in the order of the buttons.
std::span<const Control> controls();

/// How many of them have buttons.
std::size_t button_count();

/// What to do when one has failed and capture goes on.
std::string remedy_for_control(const Failure& failure, eAction action);

/// Whether the control is a switch that is on.
bool is_on(eAction action, const Switches& switches);

}  // namespace hvk3::view
