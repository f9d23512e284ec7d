#include "view/status.h"

#include <algorithm>
#include <array>
#include <map>

#include "ostrevanhvk3/errors.h"

namespace hvk3::view {
namespace {

namespace error_number = Osv::lx::error_number;

struct Remedy {
  long number;
  const char* text;
};

constexpr char kStartAgain[] = "press Enter to start again; 'hvk3 doctor' finds out more";

constexpr long kDeviceGone = 31;
constexpr long kBusy = 121;

constexpr std::array kRemedies = {
    Remedy{long{error_number::NotConnected},
           "plug the scanner in; the picture comes back by itself"},
    Remedy{kDeviceGone, "plug the scanner in; the picture comes back by itself"},
    Remedy{long{error_number::DeviceIndex}, "plug the scanner in, or choose another one with Tab"},
    Remedy{long{error_number::CalibrationCorrupt},
           "press Enter to try again once; then have the scanner calibrated"},
    Remedy{kBusy, "press Enter to start again; if it stays, plug the scanner in anew"},
    Remedy{long{error_number::DetectionNotLoaded}, "install the library of fake finger detection"},
    Remedy{long{error_number::NoNumber},
           "see that all libraries of the scanner are installed: 'hvk3 doctor' tells"}};

}  // namespace

eState state_of(const Status& status) {
  switch (status.connection) {
    case eConnection::Starting:
      return eState::Starting;
    case eConnection::Missing:
      return eState::Missing;
    case eConnection::Stopped:
      return eState::Stopped;
    case eConnection::Failed:
      return eState::Failed;
    case eConnection::Capturing:
      break;
  }
  if (status.switches.frozen) {
    return eState::Frozen;
  }
  if (status.switches.low_contrast) {
    return eState::NoDetection;
  }
  if (!status.finger) {
    return eState::Waiting;
  }
  return status.settled ? eState::Settled : eState::Finger;
}

StateWords words_for(eState state) {
  static const std::map<eState, StateWords> kWords = {
      {eState::Starting, {"Starting", "The scanner is being opened."}},
      {eState::Waiting, {"Waiting for a finger", "Lay a finger on the platen."}},
      {eState::Finger, {"Finger", "Hold still until it has settled."}},
      {eState::Settled, {"Finger settled", "Its image stands on the right: S saves it."}},
      {eState::NoDetection,
       {"Live image only", "Low contrast mode is on: no finger is found as long as it is."}},
      {eState::Frozen, {"Frozen", "Space lets the picture go on."}},
      {eState::Missing, {"Disconnected", "Plug the scanner in: the picture comes back by itself."}},
      {eState::Stopped,
       {"Stopped", "Capture has failed. Enter starts it again, with what is switched then."}},
      {eState::Failed, {"Not working", "Put right what is told below, and start anew."}}};
  return kWords.at(state);
}

bool is_live(eState state) {
  return state == eState::Waiting || state == eState::Finger || state == eState::Settled ||
         state == eState::NoDetection;
}

const char* title_for(eState state) {
  if (state == eState::Frozen) {
    return "Frozen image";
  }
  return is_live(state) ? "Live image" : "Last image";
}

std::string remedy_for(const Failure& failure, const std::string& otherwise) {
  if (failure.status() == ExitStatus::PluginUnavailable) {
    return "install it where the loader looks, or name it with --plugin";
  }
  if (failure.status() == ExitStatus::OutputFailed) {
    return "choose another place with --out";
  }
  if (failure.status() == ExitStatus::NoScanner && !failure.number()) {
    return "plug one in; the picture comes by itself";
  }
  const auto known = std::find_if(kRemedies.begin(), kRemedies.end(), [&](const Remedy& remedy) {
    return failure.number() == remedy.number;
  });
  return known != kRemedies.end() ? known->text : otherwise;
}

std::string remedy_for(const Failure& failure) { return remedy_for(failure, kStartAgain); }

Notice warning_of(const std::string& text) {
  return {text, "nothing now, capture goes on; if it comes again, press Enter to start again"};
}

}  // namespace hvk3::view
