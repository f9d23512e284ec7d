#include "view/controls.h"

#include <algorithm>
#include <array>

namespace hvk3::view {
namespace {

constexpr std::array kControls = {
    Control{eAction::RedLed, "R", "R", "Red LED", "switches the red LED", true},
    Control{eAction::GreenLed, "G", "G", "Green LED", "switches the green LED", true},
    Control{eAction::Detection, "F", "F", "Fake detection",
            "switches fake finger detection, with its score over time", true},
    Control{eAction::LowContrast, "C", "C", "Low contrast",
            "switches the low contrast image, on which no finger is found", true},
    Control{eAction::Freeze, "Space", "Space", "Freeze", "freezes the picture, and lets it go on",
            true},
    Control{eAction::Snap, "N", "N", "Snap", "takes one image at once, whatever lies there", true},
    Control{eAction::Save, "S", "S", "Save", "saves the image on the right", true},
    Control{eAction::Contamination, "D", "D", "Measure dirt",
            "measures the dirt on the platen; lift the finger first", true},
    Control{eAction::NextScanner, "Tab", "Tab", "Next scanner", "goes on to the next scanner",
            true},
    Control{eAction::Restart, "Return", "Enter", "Start again", "starts capture again", true},
    Control{eAction::Help, "F1", "?", "Keys", "shows this, or takes it away (F1 too)", true},
    Control{eAction::Quit, "Q", "Q", "Quit", "ends capture and the program", true},
    Control{eAction::WindowPicture, "F12", "F12", "Picture", "saves a picture of this window",
            false}};

}  // namespace

std::span<const Control> controls() { return kControls; }

std::size_t button_count() {
  return static_cast<std::size_t>(std::count_if(
      kControls.begin(), kControls.end(), [](const Control& control) { return control.button; }));
}

std::string remedy_for_control(const Failure& failure, eAction action) {
  const auto control = std::find_if(kControls.begin(), kControls.end(),
                                    [=](const Control& each) { return each.action == action; });
  return remedy_for(failure, std::string("press ") + control->sign +
                                 " to try it again; 'hvk3 doctor' finds out more");
}

bool is_on(eAction action, const Switches& switches) {
  switch (action) {
    case eAction::RedLed:
      return switches.red_led;
    case eAction::GreenLed:
      return switches.green_led;
    case eAction::Detection:
      return switches.detection;
    case eAction::LowContrast:
      return switches.low_contrast;
    case eAction::Freeze:
      return switches.frozen;
    default:
      return false;
  }
}

}  // namespace hvk3::view
