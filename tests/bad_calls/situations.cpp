#include "bad_calls/situations.h"

#include <tuple>

namespace Osv::bad_calls {
namespace {

auto visible(const simulator::DeviceState& device) {
  return std::tie(device.plugged_in, device.serial, device.options, device.green, device.red,
                  device.control_bytes, device.authorization_code, device.secret,
                  device.open_handles);
}

auto visible(const State& state) {
  return std::tie(state.base_interface, state.active_device, state.frame_information,
                  state.properties);
}

}  // namespace

bool operator==(const State& left, const State& right) {
  return visible(left) == visible(right) && visible(left.device) == visible(right.device);
}

std::ostream& operator<<(std::ostream& out, const State& state) {
  out << "open handles " << state.device.open_handles << ", base " << state.base_interface
      << ", LEDs " << +state.device.green << ' ' << +state.device.red << ", active "
      << state.active_device << ", properties";
  for (const unsigned int value : state.properties) {
    out << ' ' << value;
  }
  return out;
}

InSituation::InSituation() {
  connect_with_events();
  bench.set_authorization_code(0, {1, 2, 3, 4, 5, 6, 7});
  bench.set_secret(0, {7, 6, 5, 4, 3, 2, 1});
}

void InSituation::on_event(int, unsigned int, eFGs, unsigned int, void* user) {
  ++static_cast<InSituation*>(user)->events;
}

void InSituation::connect_with_events() {
  connect();
  EXPECT_EQ(grabber->EnableEvents(0, 0, &InSituation::on_event, this), 0U);
}

void InSituation::bring_scanner_back() {
  if (!bench.state(0).plugged_in) {
    bench.plug_in_again(0);
  }
}

void InSituation::enter(const Situation& situation) {
  bring_scanner_back();
  (this->*situation.enter)();
}

// The choice of an interface where no scanner is ends what was under way, and a dead handle too.
void InSituation::expect_a_capture(const Situation& situation, bool with_events) {
  bring_scanner_back();
  EXPECT_EQ(grabber->SetActiveDevice(1), 0x1000001BU);
  if (situation.frozen) {
    EXPECT_EQ(grabber->Freeze(kChannel, false), 0U);
  }
  bench.set_timeline(simulator::Timeline::settled_finger());
  bench.set_finger_kind(simulator::eFingerKind::Printed);  // each frame raises an event
  EXPECT_EQ(grabber->SetFGProperty(ePropLiveliness, 1), 0U);
  recorder.clear();
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(recorder.count(eEvent::Start), 1U);
  EXPECT_EQ(recorder.count(eEvent::Stop), 1U);
  EXPECT_EQ(events > 0, with_events);
}

void InSituation::before_the_first_opening() {
  disconnect();
  connect_with_events();
}

void InSituation::while_open() { open_with_settings(); }

void InSituation::without_a_scanner() { bench.unplug_all(); }

void InSituation::after_a_disconnection() {
  open_with_settings();
  capture_until_error(259);
  EXPECT_EQ(stop(), 0U);
  bench.unplug(0);
}

void InSituation::with_a_dead_handle() {
  disconnect();
  connect_with_events();
  open_with_settings();
  bench.unplug(0);
  bench.plug_in_again(0);
}

void InSituation::during_capture() {
  open_with_settings();
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live));
}

void InSituation::while_frozen() {
  open_with_settings();
  EXPECT_EQ(grabber->Freeze(kChannel, true), 0U);
  sleeps.forget();
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(await_freeze_polls(1));
}

void InSituation::after_an_error_and_no_stop() {
  open_with_settings();
  capture_until_error(1460);
}

void InSituation::open_with_settings() {
  const unsigned char format = 2;
  const osvlx3_feature feature{eFeatureImageDataFormat, 0, 1, 1,
                               const_cast<unsigned char*>(&format)};
  EXPECT_EQ(plugin.set_feature()(kChannel, &feature), 0U);
  EXPECT_EQ(grabber->SetFGProperty(ePropGreenLED, 1), 0U);
  EXPECT_EQ(grabber->SetFGProperty(ePropLowContrastImage, 1), 0U);
}

void InSituation::capture_until_error(unsigned int number) {
  bench.set_faults(client::kFrameCall + std::string(" call 3 fails with ") +
                   std::to_string(number));
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Stop));
}

State InSituation::state() {
  State state = scanner_state();
  EXPECT_EQ(grabber->GetActiveDevice(state.active_device), 0U);
  EXPECT_EQ(plugin.frame_info()(0, 0, 1, state.frame_information.data()), 0U);
  if (state.device.open_handles > 0) {
    state.properties = property_values();
  }
  return state;
}

State InSituation::scanner_state() const {
  State state;
  state.device = bench.state(0);
  state.base_interface = bench.base_interface();
  return state;
}

std::vector<unsigned int> InSituation::property_values() {
  std::vector<unsigned int> values;
  for (const ePropertyIDs property : {ePropChannelCount, ePropLiveliness, ePropRedLED,
                                      ePropGreenLED, ePropFakeDetection, ePropLowContrastImage}) {
    values.push_back(7);
    EXPECT_EQ(grabber->GetFGProperty(property, values.back()), 0U);
  }
  unsigned char format = 0;
  osvlx3_feature feature{eFeatureImageDataFormat, 0, 1, 1, &format};
  EXPECT_EQ(plugin.get_feature()(kChannel, &feature), 0U);
  values.push_back(format);
  return values;
}

}  // namespace Osv::bad_calls
