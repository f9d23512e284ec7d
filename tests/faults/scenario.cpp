#include "faults/scenario.h"

#include <cmath>
#include <cstdio>

#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/feature.h"

namespace Osv::faults {

using simulator::eFingerKind;
using simulator::eMemory;

const std::vector<Scenario>& all_scenarios() {
  using enum eStep;
  constexpr unsigned char kForeign = 9;
  const std::vector<Attached> one = {{0}};
  const std::vector<Attached> two = {{0}, {3}};
  const std::vector<Attached> mixed = {
      {0, kForeign}, {1, 1, eMemory::None}, {2, 1, eMemory::Blank}, {3}, {127}};
  const auto live = eFingerKind::Live;
  static const std::vector<Scenario> all = {
      {"load", one, live, {{List}, {LoadAgain}, {List}}},
      {"list", mixed, live, {{List}, {Active}, {List}}},
      {"choose", two, live, {{List}, {Choose, 3}, {Active}, {Choose, 0}, {Active}}},
      {"choose badly", mixed, live, {{Choose, 3}, {Choose, 0}, {Choose, 127}, {Active}, {Snap}}},
      {"info", one, live, {{Info}, {Info}}},
      {"snap", one, live, {{Camera}, {Snap}, {Snap}}},
      {"live", one, live, {{Live, 30}}},
      {"live again", one, live, {{Live, 2}, {LiveTwice, 2}, {StopAgain}, {Live, 1}}},
      {"plain", one, live, {{Plain, 6}, {Plain, 3}}},
      {"freeze", one, live, {{LiveFrozen, 3}}},
      {"properties",
       one,
       live,
       {{GetProperty, ePropChannelCount},
        {SetProperty, ePropChannelCount, 1},
        {SetProperty, ePropLowContrastImage, 1},
        {GetProperty, ePropLowContrastImage},
        {Plain, 2},
        {SetProperty, ePropLowContrastImage, 0},
        {SetProperty, ePropFakeDetection, 30},
        {GetProperty, ePropFakeDetection},
        {GetProperty, 99}}},
      {"LEDs",
       one,
       live,
       {{SetProperty, ePropRedLED, 1},
        {SetProperty, ePropGreenLED, 1},
        {GetProperty, ePropRedLED},
        {Live, 1},
        {SetProperty, ePropRedLED, 0},
        {SetProperty, ePropGreenLED, 0},
        {GetProperty, ePropGreenLED}}},
      {"protected bytes",
       one,
       live,
       {{SetFeature, eFeatureAuthorizationCode},
        {SetFeature, eFeatureSecretBytes},
        {GetFeature, eFeatureSecretBytes},
        {GetFeature, eFeatureAuthorizationCode}}},
      {"image data format",
       one,
       live,
       {{SetFeature, eFeatureImageDataFormat},
        {GetFeature, eFeatureImageDataFormat},
        {GetFeature, eFeatureImageDataFormat, kNoRoom}}},
      {"contamination", one, live, {{Contamination}, {Snap}, {Contamination}}},
      {"fake finger detection on and off",
       one,
       live,
       {{SetProperty, ePropLiveliness, 1},
        {GetProperty, ePropLiveliness},
        {SetProperty, ePropLiveliness, 2},
        {SetProperty, ePropLiveliness, 0},
        {Snap},
        {SetProperty, ePropLiveliness, 2}}},
      {"fake finger detection in use",
       one,
       live,
       {{SetProperty, ePropFakeDetection, 30},
        {SetProperty, ePropLiveliness, 1},
        {Live, 2},
        {FrameInfo},
        {SetProperty, ePropLiveliness, 0},
        {Snap}}},
      {"printed finger",
       one,
       eFingerKind::Printed,
       {{SetProperty, ePropLiveliness, 1},
        {SetProperty, ePropFakeDetection, 30},
        {SetProperty, ePropGreenLED, 1},
        {Snap},
        {FrameInfo},
        {Plain, 1}}},
      {"threshold",
       one,
       live,
       {{SetProperty, ePropLiveliness, 1}, {GetProperty, ePropFakeDetection}}},
      {"change of scanner",
       two,
       live,
       {{Live, 2}, {Choose, 3}, {Snap}, {Info}, {Choose, 0}, {Live, 1}}},
      {"unplug and plug in again",
       one,
       live,
       {{Live, 4, 0, Unplugging{2}}, {Snap}, {List}, {PlugInAgain, 0}, {Live, 2}}},
      {"unplug while idle",
       one,
       live,
       {{Snap}, {Unplug, 0}, {Snap}, {PlugInAgain, 0}, {Live, 1}, {Choose, 127}, {Live, 1}}},
      {"destroy", one, live, {{Live, 1}, {GetAgain}, {Snap}, {LoadAgain}, {Snap}}}};
  return all;
}

const std::vector<Scenario>& unplugging_scenarios() {
  using enum eStep;
  const std::vector<Attached> one = {
      {0}, {.interface = kElsewhere, .away = true, .serial = serial_of(0)}};
  const auto with = [&](const std::string& name, std::vector<Step> steps,
                        eFingerKind finger = eFingerKind::Live) {
    for (const Step& step :
         {Step{Live, 2}, {Live, 2}, {List}, {Choose, 127}, {Live, 2}, {GetAgain}, {Live, 2}}) {
      steps.push_back(step);
    }
    return Scenario{name, one, finger, steps};
  };
  const std::vector<Step> scored = {
      {SetProperty, ePropFakeDetection, 30}, {SetProperty, ePropLiveliness, 1}, {Live, 6}};
  static const std::vector<Scenario> all = {
      with("live", {{Live, 6}}), with("plain", {{Plain, 6}}),
      with("LEDs", {{SetProperty, ePropRedLED, 1}, {Live, 6}}),
      with("fake finger detection", scored), with("printed finger", scored, eFingerKind::Printed)};
  return all;
}

const std::vector<Step>& locking_steps() {
  using enum eStep;
  static const std::vector<Step> all = {{List}, {Snap}, {SetProperty, ePropLiveliness, 1}};
  return all;
}

bool is_capture(const Step& step) {
  using enum eStep;
  switch (step.what) {
    case Live:
    case Plain:
    case LiveFrozen:
    case LiveTwice:
      return true;
    default:
      return false;
  }
}

std::string unplugging_in_words(eReturn comes_back) {
  switch (comes_back) {
    case eReturn::Never:
      return "unplug 0\n";
    case eReturn::Here:
      return "unplug 0\nplug 0\n";
    case eReturn::Elsewhere:
      return "unplug 0\nplug " + std::to_string(kElsewhere) + "\n";
    case eReturn::Another:
      break;
  }
  return "unplug 0\nplug 0 small\n";
}

std::string serial_of(unsigned int interface) { return "HVK3" + std::to_string(1000 + interface); }

std::string in_words(const Step& step, unsigned long result, const std::string& value,
                     const std::string& text) {
  char head[64];
  std::snprintf(head, sizeof(head), "step %d (%u, %u): 0x%lx ", static_cast<int>(step.what),
                step.number, step.value, result);
  return head + value + " '" + text + "'";
}

std::string value_in_words(double value) {
  const bool own = value > 0 && value < 100;
  return std::isnan(value) ? "nan" : own ? "some" : std::to_string(static_cast<long>(value));
}

std::string listed_in_words(unsigned int interface, const std::string& serial) {
  return std::to_string(interface) + (serial == serial_of(interface) ? "" : '[' + serial + ']') +
         ' ';
}

std::string score_in_words(double score, long state) {
  return value_in_words(score) + ", state " + std::to_string(state);
}

}  // namespace Osv::faults
