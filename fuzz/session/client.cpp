#include "session/client.h"

#include <pthread.h>

#include <array>
#include <memory>

#include "capture/capture_channel.h"
#include "closed_libraries/scene.h"
#include "foundation/wait.h"
#include "ostrevanhvk3/errors.h"
#include "session/room.h"
#include "support/require.h"

namespace Osv::fuzz {
namespace {

namespace error_number = lx::error_number;

constexpr int kHandle = 4711;
constexpr int kEventHandle = 4712;
constexpr unsigned int kChannel = 1;
constexpr unsigned int kDeepest = 3;
constexpr unsigned int kMostPasses = 6;
constexpr std::array<unsigned char, 7> kCode = {'t', 'h', 'e', 'c', 'o', 'd', 'e'};
constexpr std::size_t kSecretSize = 7;

Client* g_client = nullptr;

/// Waits take no time; the worker's end of a pass and its rest are the places where a client may
/// interfere.
void wait(eWait kind, int milliseconds) {
  if (kind == eWait::Nanosleep) {
    wait_for_client(milliseconds);
  }
}

/// Calls something that copies a text out: for its size, with as much as it wants, and with
/// less than that.
template <typename Get>
std::string copied_text(Get get, bool short_of) {
  unsigned long size = 0;
  get(nullptr, size);
  constexpr unsigned long kLongest = 1UL << 16;
  require(size < kLongest, "a text has a length");
  Room room(short_of && size > 0 ? size - 1 : size);
  size = room.size();
  const unsigned long result = get(room.as<char>(), size);
  const Bytes text = room.taken(result, room.size());
  return {text.begin(), text.end()};
}

}  // namespace

void wait_for_client(int milliseconds) {
  if (!lx::ClFrameGrabberChannel::IsWorkerThread()) {
    return;
  }
  if (milliseconds == 0) {
    g_client->pass();
  } else {
    g_client->m_rendezvous.rest();
  }
}

void note_worker() {
  if (g_client != nullptr) {
    g_client->m_rendezvous.let_run();
  }
}

const Client::Entry Client::kEntries[] = {
    {&Client::get_info, Place::EventCallback},
    {&Client::get_version, Place::EventCallback},
    {&Client::get_last_error, Place::EventCallback},
    {&Client::set_camera, Place::EventCallback},
    {&Client::get_image, Place::EventCallback},
    {&Client::start, Place::Callback},
    {&Client::stop, Place::Callback},
    {&Client::set_filter, Place::EventCallback},
    {&Client::set_property, Place::EventCallback},
    {&Client::get_property, Place::EventCallback},
    {&Client::set_property_ex, Place::EventCallback},
    {&Client::get_property_ex, Place::EventCallback},
    {&Client::freeze, Place::EventCallback},
    {&Client::go_on, Place::Outside},
    {&Client::lists, Place::EventCallback},
    {&Client::enable_events, Place::EventCallback},
    {&Client::unsupported, Place::EventCallback},
    {&Client::list_devices, Place::EventCallback},
    {&Client::choose_device, Place::Callback},
    {&Client::get_active_device, Place::EventCallback},
    {&Client::set_callbacks, Place::Callback},
    {&Client::measure_contamination, Place::EventCallback},
    {&Client::frame_info, Place::EventCallback},
    {&Client::get_feature, Place::EventCallback},
    {&Client::set_feature, Place::EventCallback},
    {&Client::start_anew, Place::Outside},
};

Client::Client(Bytes operations) : m_operations(operations) {
  g_client = this;
  ExchangeWaitFunction(&wait);
}

Client::~Client() {
  ExchangeWaitFunction(nullptr);
  g_client = nullptr;
}

Transcript Client::run() {
  connect();
  while (m_operations.left() > 0) {
    do_next(Place::Outside);
  }
  destroy();
  return m_transcript;
}

/// Inside a callback of the worker there is nobody to join.
template <typename Operation>
unsigned long Client::joining(Operation operation) {
  if (m_depth > 0) {
    return operation();
  }
  m_rendezvous.begin_joining();
  const unsigned long result = operation();
  m_rendezvous.end_joining();
  return result;
}

void Client::connect() {
  grabber().SetCallbacks(kChannel, &Client::on_start, &Client::on_stop);
  grabber().EnableEvents(0, kEventHandle, &Client::on_event, this);
}

void Client::destroy() {
  stop({});
  DestroyFrameGrabber();
}

void Client::do_next(Place place) {
  if (m_operations.left() == 0 || m_depth > kDeepest) {
    return;
  }
  const Entry& entry = kEntries[m_operations.below(std::size(kEntries))];
  const Choice choice = {m_operations.byte(), m_operations.byte()};
  if (place <= entry.innermost) {
    (this->*entry.operation)(choice);
  }
}

void Client::called_back(const char* word, Place place) {
  m_transcript.text(word);
  ++m_depth;
  do_next(place);
  --m_depth;
}

/// The worker freezes itself when it has made its passes, so that the client finds it at rest.
void Client::pass() {
  if (m_passes > 0) {
    --m_passes;
  }
  if (m_passes == 0) {
    grabber().Freeze(kChannel, true);
  }
}

/// The client of a callback, which has to bring what the client gave when it began the capture.
Client& Client::called(int handle, unsigned int channel, void* user) {
  require(handle == kHandle && channel == kChannel && user == g_client,
          "a callback has the client's handle, its channel and its pointer");
  return *g_client;
}

void Client::on_start(int handle, unsigned int channel, void* user) {
  called(handle, channel, user).called_back("start\n");
}

void Client::on_stop(int handle, unsigned int channel, void* user) {
  Client& client = called(handle, channel, user);
  client.called_back("stop\n");
  client.m_rendezvous.end();
}

void Client::on_live(int handle, unsigned int channel, unsigned char* image, void* user) {
  Client& client = called(handle, channel, user);
  client.m_transcript.image(image);
  client.called_back("live\n");
}

void Client::on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                       void* user) {
  Client& client = called(handle, channel, user);
  require(type == eCapturePlain, "a finger is told with the mode of its capture");
  client.m_transcript.image(image);
  client.called_back("finger\n");
}

void Client::on_error(int handle, unsigned int channel, const char* text, void* user) {
  Client& client = called(handle, channel, user);
  client.m_transcript.error(text);
  client.called_back("error\n");
}

void Client::on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                      void* user) {
  require(handle == kEventHandle && channel == kChannel && user == g_client,
          "an event has the client's handle, its channel and its pointer");
  require(grabber == eFG_HVK3 && type == eFG_HVK3_FakeFinger, "an event is one of this scanner's");
  g_client->called_back("event\n", Place::EventCallback);
}

void Client::get_info(const Choice& choice) {
  const auto get = [&](char* text, unsigned long& size) {
    return m_transcript.scanner_result("info", grabber().GetInfo(text, size),
                                       {error_number::BufferTooSmall, error_number::NullPointer});
  };
  m_transcript.text(copied_text(get, choice.first % 4 == 0));
}

void Client::get_version(const Choice& choice) {
  const auto get = [&](char* text, unsigned long& size) {
    return m_transcript.result("version", grabber().GetVersion(text, size),
                               {error_number::VersionTooSmall, error_number::VersionNullPointer});
  };
  m_transcript.text(copied_text(get, choice.first % 4 == 0));
}

void Client::get_last_error(const Choice& choice) {
  const auto get = [&](char* text, unsigned long& size) {
    return m_transcript.result("last error", grabber().GetLastError(text, size),
                               {error_number::BufferTooSmall, error_number::NullPointer});
  };
  m_transcript.text(copied_text(get, choice.first % 4 == 0));
}

void Client::set_camera(const Choice& choice) {
  m_transcript.scanner_result(
      "camera",
      grabber().SetCamera(choice.channel(), eCameraIDs{choice.second},
                          eColorModeIDs{choice.first % 2U}),
      {error_number::UnknownCamera, error_number::ColorMode, error_number::IncorrectChannel});
}

void Client::get_image(const Choice& choice) {
  unsigned char* image = nullptr;
  unsigned char** const place = choice.second % 16 == 0 ? nullptr : &image;
  const unsigned int unnamed = scene().unnamed_failures;
  const unsigned long result =
      m_transcript.scanner_result("image", grabber().GetImage(choice.channel(), place),
                                  {error_number::NullPointer, error_number::IncorrectChannel});
  require(unnamed != scene().unnamed_failures || (result == 0) == (image != nullptr),
          "an image comes with success, and only then");
  if (image != nullptr) {
    m_transcript.image(image);
  }
  grabber().FreeImage(image);
}

/// Outside of callbacks the client waits until the worker rests or has ended, if one has begun: a
/// scanner library that fails without a reason lets the call succeed.
void Client::start(const Choice& choice) {
  const bool may_begin = m_depth == 0 && !m_rendezvous.is_resting();
  if (may_begin) {
    m_passes = 1 + choice.second % kMostPasses;
    grabber().Freeze(kChannel, choice.second == 255);
  }
  const unsigned long result = grabber().StartCapture(
      kHandle, choice.channel(), eCaptureModeIDs{choice.first % 3U}, &Client::on_live,
      choice.second % 8 == 0 ? nullptr : &Client::on_finger, &Client::on_error, nullptr, this);
  if (may_begin) {
    m_rendezvous.wait();
  }
  m_transcript.scanner_result("start", result,
                              {error_number::UnknownDetection, error_number::AlreadyCapturing,
                               error_number::IncorrectChannel});
}

void Client::stop(const Choice& choice) {
  const unsigned long result = joining([&] { return grabber().StopCapture(choice.channel()); });
  m_transcript.result("stop", result, {error_number::InvalidState, error_number::IncorrectChannel});
}

void Client::set_filter(const Choice& choice) {
  m_transcript.result("filter",
                      grabber().SetFilter(choice.channel(), eFilterIDs{choice.second % 2U}),
                      {error_number::UnknownFilter, error_number::IncorrectChannel});
  m_transcript.result("background", grabber().RefreshBackGround(choice.channel()), {});
}

void Client::set_property(const Choice& choice) {
  m_transcript.scanner_result(
      "set property", grabber().SetFGProperty(ePropertyIDs{choice.first % 15U}, choice.second % 4U),
      {error_number::IncorrectProperty, error_number::PropertyReadOnly,
       error_number::DetectionNotLoaded});
}

void Client::get_property(const Choice& choice) {
  Room value(sizeof(unsigned int));
  const unsigned long result = m_transcript.scanner_result(
      "get property",
      grabber().GetFGProperty(ePropertyIDs{choice.first % 15U}, *value.as<unsigned int>()),
      {error_number::IncorrectProperty, error_number::DetectionDisabled});
  m_transcript.output(value.taken(result, value.size()));
}

void Client::set_property_ex(const Choice& choice) {
  m_transcript.scanner_result(
      "set property ex",
      grabber().SetFGPropertyEx(choice.channel(), ePropertyIDs{choice.first % 15U}, choice.second),
      {error_number::IncorrectProperty, error_number::PropertyReadOnly,
       error_number::IncorrectChannel, error_number::DetectionNotLoaded});
}

void Client::get_property_ex(const Choice& choice) {
  constexpr std::size_t kLowBits = sizeof(unsigned int);
  Room value(sizeof(unsigned long));
  const unsigned long result = m_transcript.scanner_result(
      "get property ex",
      grabber().GetFGPropertyEx(choice.channel(), ePropertyIDs{choice.first % 15U},
                                *value.as<unsigned long>()),
      {error_number::IncorrectProperty, error_number::IncorrectChannel,
       error_number::DetectionDisabled});
  m_transcript.output(value.taken(result, kLowBits));
}

void Client::freeze(const Choice& choice) {
  m_transcript.result("freeze", grabber().Freeze(choice.channel(), true),
                      {error_number::IncorrectChannel});
}

/// Lets a worker that rests make some more passes.
void Client::go_on(const Choice& choice) {
  if (!m_rendezvous.is_resting()) {
    return;
  }
  m_passes = 1 + choice.second % kMostPasses;
  m_transcript.result("go on", grabber().Freeze(kChannel, false), {});
  m_rendezvous.let_run();
  m_rendezvous.wait();
}

template <typename Id>
void Client::copy_list(const Choice& choice,
                       unsigned long (lx::ClFramegrabber::*operation)(Id* list,
                                                                      unsigned long& count)) {
  constexpr std::size_t kMost = 8;
  Room list(kMost * sizeof(Id));
  unsigned long count = choice.second % kMost;
  const unsigned long result = m_transcript.result(
      "list", (grabber().*operation)(choice.first % 4 == 0 ? nullptr : list.as<Id>(), count),
      {error_number::BufferTooSmall, error_number::NullPointer});
  require(count <= kMost, "a list has a length");
  m_transcript.output(&count, sizeof(count));
  m_transcript.output(list.taken(result, count * sizeof(Id)));
}

void Client::lists(const Choice& choice) {
  copy_list(choice, &lx::ClFramegrabber::AvailableCameras);
  copy_list(choice, &lx::ClFramegrabber::AvailableColorModes);
  copy_list(choice, &lx::ClFramegrabber::AvailableDetections);
  copy_list(choice, &lx::ClFramegrabber::AvailableFilters);
  copy_list(choice, &lx::ClFramegrabber::AvailablePropertiesEx);
}

void Client::enable_events(const Choice& choice) {
  m_transcript.result(
      "events",
      grabber().EnableEvents(0, kEventHandle, choice.first % 4 == 0 ? nullptr : &Client::on_event,
                             this),
      {});
}

void Client::unsupported(const Choice& choice) {
  constexpr unsigned long kNoOperation = error_number::NotSupported;
  constexpr unsigned long kNoDialogs = error_number::HardwareVersion;
  unsigned long size = choice.second;
  m_transcript.refusal("resolution",
                       grabber().SetResolution(choice.channel(), lx::ClImageResolution()),
                       kNoOperation | error_number::ReportedBit);
  m_transcript.refusal("write", grabber().WriteEEPROM(nullptr, size), kNoOperation);
  m_transcript.refusal("read", grabber().ReadEEPROM(nullptr, size), kNoOperation);
  m_transcript.refusal("aspect", grabber().SetAspectRatio(choice.channel(), 1.0, 1.0),
                       kNoOperation);
  m_transcript.refusal("dialog", grabber().ShowDialog(eDlgIDs{choice.first}, 0), kNoDialogs);
  m_transcript.refusal("setting", grabber().SaveSetting(choice.channel(), size), kNoDialogs);
  m_transcript.refusal("dialogs", grabber().AvailableDialogs(choice.channel(), nullptr, size),
                       kNoDialogs);
}

void Client::list_devices(const Choice& choice) {
  unsigned long count = choice.first % 6;
  const std::unique_ptr<DeviceInfo[]> list(new DeviceInfo[count]);  // of whatever was there
  DeviceInfo* const place = choice.second % 8 == 0 ? nullptr : list.get();
  const unsigned long result = grabber().AvailableDevices(place, count);
  m_transcript.result("devices", result, {error_number::BufferTooSmall, error_number::NullPointer});
  m_transcript.output(&count, sizeof(count));
  if (result == 0 && place != nullptr) {
    m_transcript.output(place, count * sizeof(DeviceInfo));
  }
}

void Client::choose_device(const Choice& choice) {
  const unsigned long index = choice.first % 8 == 7 ? 1UL << choice.second % 64 : choice.second % 5;
  const unsigned long result = joining([&] { return grabber().SetActiveDevice(index); });
  m_transcript.scanner_result("choose", result,
                              {error_number::InvalidState, error_number::DeviceIndex});
}

void Client::get_active_device(const Choice& /*choice*/) {
  Room index(sizeof(unsigned long));
  const unsigned long result =
      m_transcript.result("active", grabber().GetActiveDevice(*index.as<unsigned long>()), {});
  m_transcript.output(index.taken(result, index.size()));
}

void Client::set_callbacks(const Choice& choice) {
  m_transcript.result(
      "callbacks",
      grabber().SetCallbacks(choice.channel(), choice.second % 2 == 0 ? nullptr : &Client::on_start,
                             &Client::on_stop),
      {error_number::IncorrectChannel});
}

void Client::measure_contamination(const Choice& choice) {
  Room level(sizeof(double));
  const unsigned long result = m_transcript.scanner_result(
      "contamination",
      grabber().ContaminationDetection(choice.channel(),
                                       choice.second % 8 == 0 ? nullptr : level.as<double>()),
      {error_number::IncorrectChannel, error_number::NullPointer});
  if (result == 0 || level.is_untouched()) {
    m_transcript.output(level.taken(result, level.size()));
  } else {
    require(*level.as<double>() == 0.0, "a measurement that failed is 0");
  }
}

void Client::frame_info(const Choice& choice) {
  constexpr std::array<std::size_t, 3> kSizes = {sizeof(double), sizeof(double) + sizeof(int), 0};
  const unsigned int type = choice.first % kSizes.size();
  Room info(sizeof(double) + sizeof(int));
  const unsigned long result = m_transcript.result(
      "frame info",
      FGCurrentFrameInfo(0, 0, type, choice.second % 8 == 0 ? nullptr : info.as<void>()),
      {error_number::NullPointer, error_number::FrameInfoType});
  m_transcript.output(info.taken(result, kSizes[type]));
}

void Client::get_feature(const Choice& choice) {
  Room value(kCode.size() + kSecretSize);
  value.give(kCode);
  osvlx3_feature feature = {52U + choice.first % 5U, 0, value.size(), 1, value.as<void>()};
  if (feature.id == eFeatureImageDataFormat) {
    feature.count = choice.second % 2;
  }
  const unsigned long result =
      m_transcript.feature_result("get feature", LXSP_GetFeature(choice.channel(), &feature),
                                  {error_number::IncorrectProperty, error_number::WriteOnly});
  if (feature.data != value.as<void>()) {
    m_transcript.output(feature.data, feature.size);
    LXSP_Free(feature.data);
  } else if (result == 0 || feature.id != eFeatureSecretBytes) {  // the scanner may write and fail
    m_transcript.output(value.taken(result, feature.count));
  }
}

void Client::set_feature(const Choice& choice) {
  std::array<unsigned char, 14> bytes = {static_cast<unsigned char>(1 + choice.second % 2)};
  osvlx3_feature feature = {52U + choice.first % 5U, 0, bytes.size(), 1, bytes.data()};
  if (feature.id == eFeatureAuthorizationCode) {
    feature.count = 7;
  }
  m_transcript.feature_result("set feature", LXSP_SetFeature(choice.channel(), &feature),
                              {error_number::IncorrectProperty});
}

void Client::start_anew(const Choice& /*choice*/) {
  destroy();
  connect();
}

}  // namespace Osv::fuzz

// The program is linked with `--wrap` for it: only the plug-in creates threads during a session.
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument) {
  Osv::fuzz::note_worker();
  return __real_pthread_create(thread, attributes, function, argument);
}
// NOLINTEND(bugprone-reserved-identifier)
}
