#include "privacy/whole_session.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <stdexcept>
#include <string>

#include "client/recorder.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/image_block.h"
#include "support/sleeps.h"

namespace Osv::privacy {
namespace {

using client::eEvent;
using client::Recorder;
using simulator::SevenBytes;

constexpr unsigned int kChannel = 1;
constexpr int kHandle = 3;
constexpr long kFreezePoll = 100'000'000;  // nanoseconds

void require(bool good, const char* what) {
  if (!good) {
    throw std::runtime_error(std::string("not as it should be: ") + what);
  }
}

/// Code and bytes in the form of feature 54.
struct Both {
  SevenBytes code;
  SevenBytes bytes;
};
static_assert(sizeof(Both) == 14);

class Session {
 public:
  Session(const client::Plugin& plugin, simulator::Bench& bench, const test::Sleeps& sleeps,
          const ProtectedBytes& bytes)
      : m_plugin(plugin),
        m_bench(bench),
        m_sleeps(sleeps),
        m_bytes(bytes),
        m_grabber(plugin.grabber()) {}

  ~Session() {
    m_bench.clear_faults();
    m_grabber.StopCapture(kChannel);
    m_plugin.destroy();
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void run() {
    choose_scanner();
    use_settings();
    use_features();
    take_images();
    capture_live();
    capture_plain();
    detect_fake_fingers();
    meet_failures_of_frames();
    meet_failure_of_engine();
    meet_unplugging();
    meet_corrupt_calibration();
  }

 private:
  void choose_scanner() {
    DeviceInfo scanner{};
    unsigned long count = 1;
    require(m_grabber.AvailableDevices(&scanner, count) == 0, "AvailableDevices");
    require(m_grabber.SetActiveDevice(scanner.nInterface) == 0, "SetActiveDevice");
    std::string text(200, '\0');
    unsigned long size = text.size();
    require(m_grabber.GetInfo(text.data(), size) == 0, "GetInfo");
    size = text.size();
    require(m_grabber.GetVersion(text.data(), size) == 0, "GetVersion");
  }

  void use_settings() {
    require(m_grabber.SetCallbacks(kChannel, &Recorder::on_start, &Recorder::on_stop) == 0,
            "SetCallbacks");
    require(m_grabber.EnableEvents(0, kHandle, &Session::on_event, this) == 0, "EnableEvents");
    require(m_grabber.SetCamera(kChannel, eCamera8, eColorModeGray) == 0, "SetCamera");
    require(m_grabber.SetFilter(kChannel, eFilterNone) == 0, "SetFilter");
    require(m_grabber.SetResolution(kChannel, lx::ClImageResolution()) != 0, "SetResolution");
    for (const ePropertyIDs property : {ePropRedLED, ePropGreenLED, ePropLowContrastImage}) {
      for (const unsigned int value : {1U, 0U}) {
        require(m_grabber.SetFGProperty(property, value) == 0, "SetFGProperty");
        require(read(property) == value * 100, "GetFGProperty");
      }
    }
    double level = 0;
    require(m_grabber.ContaminationDetection(kChannel, &level) == 0, "ContaminationDetection");
  }

  unsigned int read(ePropertyIDs property) {
    unsigned int value = 0;
    require(m_grabber.GetFGProperty(property, value) == 0, "GetFGProperty");
    return value;
  }

  void use_features() {
    SevenBytes code = m_bytes.code;
    Both both{m_bytes.code, m_bytes.bytes};
    Both back{m_bytes.code, {}};
    Both wrong{m_bytes.wrong_code, m_bytes.bytes};
    require(set(eFeatureAuthorizationCode, code) == 0, "writing the authorization code");
    require(set(eFeatureSecretBytes, both) == 0, "writing the protected bytes");
    require(get(eFeatureSecretBytes, back) == 0, "reading the protected bytes");
    require(back.bytes == m_bytes.bytes, "the protected bytes");
    require(set(eFeatureSecretBytes, wrong) == 0x10000053, "writing with a wrong code");
    require(get(eFeatureSecretBytes, wrong) == 0x10000053, "reading with a wrong code");
    require(get(eFeatureAuthorizationCode, code) == lx::error_number::WriteOnly,
            "reading the authorization code");
    unsigned char format = 2;
    require(set(eFeatureImageDataFormat, format) == 0, "writing the format");
    require(get(eFeatureImageDataFormat, format) == 0, "reading the format");
  }

  template <typename Value>
  static osvlx3_feature record(unsigned int id, Value& value) {
    return {id, 0, sizeof(value), 1, &value};
  }

  template <typename Value>
  unsigned long get(unsigned int id, Value& value) {
    osvlx3_feature feature = record(id, value);
    return m_plugin.get_feature()(kChannel, &feature);
  }

  template <typename Value>
  unsigned long set(unsigned int id, Value& value) {
    const osvlx3_feature feature = record(id, value);
    return m_plugin.set_feature()(kChannel, &feature);
  }

  void take_images() {
    m_bench.set_timeline(simulator::Timeline::settled_finger());
    for (int images = 0; images < 2; ++images) {
      unsigned char* image = nullptr;
      require(m_grabber.GetImage(kChannel, &image) == 0 && image != nullptr, "GetImage");
      m_grabber.FreeImage(image);
    }
  }

  void start(eCaptureModeIDs mode) {
    m_recorder.clear();
    require(
        m_grabber.StartCapture(kHandle, kChannel, mode, &Recorder::on_live, &Recorder::on_finger,
                               &Recorder::on_error, &Recorder::on_warning, &m_recorder) == 0,
        "StartCapture");
  }

  void stop() { require(m_grabber.StopCapture(kChannel) == 0, "StopCapture"); }

  void await(eEvent kind, std::size_t count, const char* what) {
    require(m_recorder.wait_for(kind, count), what);
  }

  void capture_live() {
    start(eCaptureLive);
    await(eEvent::Live, 3, "live images");
    const long polls = m_sleeps.nanosleeps(0, kFreezePoll);
    require(m_grabber.Freeze(kChannel, true) == 0, "Freeze");
    require(m_sleeps.await_nanosleeps(0, kFreezePoll, polls + 1), "frozen");
    require(m_grabber.Freeze(kChannel, false) == 0, "Freeze");
    require(m_recorder.wait_for_more(eEvent::Live, 3), "live images after freezing");
    stop();
  }

  void capture_plain() {
    start(eCapturePlain);
    await(eEvent::Finger, 1, "a finger image");
    stop();
  }

  void detect_fake_fingers() {
    m_bench.set_finger_kind(simulator::eFingerKind::Printed);
    for (const unsigned int level : {1U, 2U}) {
      require(m_grabber.SetFGProperty(ePropLiveliness, level) == 0, "fake finger detection");
    }
    require(read(ePropFakeDetection) > 0, "the threshold");
    start(eCapturePlain);
    await(eEvent::Finger, 1, "the image of a fake finger");
    stop();
    require(m_nEvents > 0, "an event");
    unsigned char information[12];
    require(m_plugin.frame_info()(0, 0, 1, information) == 0, "FGCurrentFrameInfo");
    require(m_grabber.SetFGProperty(ePropLiveliness, 0) == 0, "fake finger detection");
    m_bench.set_finger_kind(simulator::eFingerKind::Live);
  }

  static void on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*grabber*/,
                       unsigned int /*type*/, void* user) {
    ++static_cast<Session*>(user)->m_nEvents;
  }

  /// Captures until the fault plan has ended capture.
  void capture_with(const std::string& faults, const char* what) {
    m_bench.set_faults(faults);
    start(eCaptureLive);
    await(eEvent::Error, 1, what);
    await(eEvent::Stop, 1, what);
    stop();
    m_bench.clear_faults();
  }

  void meet_failures_of_frames() {
    const std::string frame = "ftrScanGetImageByVariableDose call ";
    capture_with(frame + "2 fails with 4306;" + frame + "3 fails with 0x20000001;" + frame +
                     "4 fails with 121;" + frame + "6 fails with 1460",
                 "the error of the scanner");
    capture_with(frame + "1 fails with 1460", "the error of the preparation");
  }

  void meet_failure_of_engine() {
    capture_with("Calibrate call 4 fails with -5", "the error of the engine");
  }

  void meet_unplugging() {
    start(eCaptureLive);
    await(eEvent::Live, 1, "a live image before the unplugging");
    m_bench.unplug(0);
    await(eEvent::Stop, 1, "the end of capture");
    stop();
    require(m_grabber.SetFGProperty(ePropRedLED, 1) != 0, "an LED without a scanner");
    m_bench.plug_in_again(0);
  }

  void meet_corrupt_calibration() {
    const std::vector<unsigned char> memory = m_bench.memory(0);
    std::vector<unsigned char> corrupt = memory;
    std::fill_n(corrupt.begin() + 21 + corrupt[20], 4, 0);  // the length of the payload
    m_bench.set_memory(0, corrupt);
    require(m_grabber.SetFGProperty(ePropRedLED, 1) == 0x10000025, "corrupt calibration data");
    m_bench.set_memory(0, memory);
    require(m_grabber.SetFGProperty(ePropRedLED, 1) == 0, "the opening after it");
  }

  const client::Plugin& m_plugin;
  simulator::Bench& m_bench;
  const test::Sleeps& m_sleeps;
  const ProtectedBytes& m_bytes;
  lx::ClFramegrabber& m_grabber;
  std::atomic<int> m_nEvents = 0;
  Recorder m_recorder;
};

}  // namespace

void run_whole_session(const client::Plugin& plugin, simulator::Bench& bench,
                       const test::Sleeps& sleeps, const ProtectedBytes& bytes) {
  Session(plugin, bench, sleeps, bytes).run();
}

}  // namespace Osv::privacy
