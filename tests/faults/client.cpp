#include "faults/client.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <future>
#include <sstream>
#include <utility>

#include "client/joining.h"
#include "faults/threads.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3/module_exception.h"
#include "support/sleeps.h"

namespace Osv::faults {
namespace {

constexpr int kHandle = 4711;
constexpr unsigned int kEventHandle = 23;
constexpr unsigned int kChannel = 1;
constexpr char kCode[] = "code123";
constexpr char kSecret[] = "code123secret7";

bool is_white(const unsigned char* image) {
  const lx::ImageView view(image);
  const unsigned char* const pixels = view.pixels();
  const std::size_t size = view.stride() * view.height();
  return size != 0 && pixels[0] == 255 && std::memcmp(pixels, pixels + 1, size - 1) == 0;
}

}  // namespace

Client::Client() : m_cBench(*ostrevan_simulator_bench()) { connect(); }

Client::~Client() { destroy(); }

void Client::connect() {
  if (m_pPlugin == nullptr) {
    m_pPlugin = std::make_unique<client::Plugin>();
  }
  m_pGrabber = &m_pPlugin->grabber();
  m_pGrabber->SetCallbacks(kChannel, &Client::on_start, &Client::on_stop);
  m_pGrabber->EnableEvents(kHandle, kEventHandle, &Client::on_event, this);
}

void Client::destroy() {
  if (m_pGrabber != nullptr) {
    m_pGrabber->StopCapture(kChannel);
    m_pPlugin->destroy();
    m_pGrabber = nullptr;
  }
}

// ---- callbacks

void Client::on_start(int /*handle*/, unsigned int /*channel*/, void* user) {
  self(user).note("start ");
  self(user).act_inside(kStartCallback);
}

void Client::on_stop(int /*handle*/, unsigned int /*channel*/, void* user) {
  self(user).act_inside(kStopCallback);
  self(user).note("stop ", true);
}

void Client::on_live(int /*handle*/, unsigned int /*channel*/, unsigned char* image, void* user) {
  self(user).note_image(image);
  self(user).act_inside(self(user).m_nImages);
}

void Client::on_finger(int /*handle*/, unsigned int /*channel*/, int /*type*/,
                       unsigned char* /*image*/, void* user) {
  self(user).note("finger ");
  self(user).unplug_inside(kFingerCallback);
  self(user).await_stop();
}

void Client::on_error(int /*handle*/, unsigned int /*channel*/, const char* text, void* user) {
  self(user).note("error(" + std::string(text) + ") ");
  self(user).unplug_inside(kErrorCallback);
}

void Client::on_warning(int /*handle*/, unsigned int /*channel*/, const char* text, void* user) {
  self(user).note("warning(" + std::string(text) + ") ");
}

void Client::on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*grabber*/,
                      unsigned int /*type*/, void* user) {
  self(user).note(" fake ");
  self(user).unplug_inside(kEventCallback);
}

void Client::note(const std::string& word, bool ends) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_nStray += m_bCapturing ? 0 : 1;
  m_sEvents += word;
  m_bEnded = m_bEnded || ends;
  m_cChanged.notify_all();
}

void Client::note_image(const unsigned char* image) {
  const std::size_t size = lx::ImageView(image).block_size();
  const bool same = size == m_vImage.size() && std::memcmp(image, m_vImage.data(), size) == 0;
  m_vImage.assign(image, image + size);
  ++m_nImages;
  note(is_white(image) ? "white " : same ? "same " : "live ");
}

void Client::unplug_inside(unsigned int callback) {
  const std::optional<Unplugging>& unplugs = m_sStep.unplugs;
  if (!unplugs.has_value() || unplugs->callback != callback || std::exchange(m_bUnplugged, true)) {
    return;
  }
  std::istringstream lines(unplugging_in_words(unplugs->comes_back));
  for (std::string line; std::getline(lines, line);) {
    m_cBench.run(line);
  }
}

void Client::act_inside(unsigned int callback) {
  using enum eStep;
  unplug_inside(callback);
  if (m_sStep.what == LiveFrozen && callback == 1) {
    m_pGrabber->Freeze(kChannel, true);
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bFrozen = true;
    m_cChanged.notify_all();
  }
  if (callback != m_sStep.number) {
    return;
  }
  if (m_sStep.what == LiveTwice) {
    const unsigned long result = m_pGrabber->StartCapture(
        kHandle, kChannel, eCaptureLive, &Client::on_live, nullptr, nullptr, nullptr, this);
    note("refused(" + std::to_string(result) + ") ");
  }
  await_stop();
}

/// Has the client stop, and goes on when its stop is under way: this callback is the last of its
/// kind.
void Client::await_stop() {
  if (std::exchange(m_bStopping, true)) {
    return;
  }
  const client::Joining joining;
  note("", true);
  (void)joining.await();
}

std::string Client::events() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return std::exchange(m_sEvents, "");
}

// ---- steps

std::string Client::run(const Step& step) {
  using enum eStep;
  m_sStep = step;
  std::string value;
  unsigned long result = 0;
  switch (step.what) {
    case List:
      result = list(value);
      break;
    case Choose:
      result = m_pGrabber->SetActiveDevice(step.number);
      break;
    case Active: {
      unsigned long index = 0;
      result = m_pGrabber->GetActiveDevice(index);
      value = std::to_string(index);
      break;
    }
    case Info:
      result = info(value);
      break;
    case Camera:
      result = m_pGrabber->SetCamera(kChannel, eCamera8, eColorModeGray);
      break;
    case Snap:
      result = snap(value);
      break;
    case SetProperty:
    case GetProperty:
      result = property(step, value);
      break;
    case SetFeature:
    case GetFeature:
      result = feature(step, value);
      break;
    case Contamination:
      result = contamination(value);
      break;
    case FrameInfo:
      result = frame_info(value);
      break;
    case Unplug:
      m_cBench.unplug(step.number);
      break;
    case PlugInAgain:
      m_cBench.plug_in_again(step.number);
      break;
    case StopAgain:
      result = m_pGrabber->StopCapture(kChannel);
      break;
    case GetAgain:
    case LoadAgain:
      destroy();
      if (step.what == LoadAgain) {
        m_pPlugin.reset();
      }
      connect();
      break;
    default:
      result = capture(step, value);
      break;
  }
  return in_words(step, result, value, client::last_error(*m_pGrabber));
}

std::string Client::run_elsewhere(const Step& step) {
  return std::async(std::launch::async,
                    [&] {
                      m_pGrabber->SetCallbacks(kChannel, &Client::on_start, &Client::on_stop);
                      return run(step);
                    })
      .get();
}

unsigned long Client::list(std::string& value) {
  constexpr std::size_t kRoom = 8;
  std::array<DeviceInfo, kRoom> devices = {};
  unsigned long count = devices.size();
  const unsigned long result = m_pGrabber->AvailableDevices(devices.data(), count);
  for (std::size_t i = 0; result == 0 && i < std::min(count, kRoom); ++i) {
    constexpr std::size_t kSerial = 8;
    const char* const serial = devices[i].szSerialNumber;
    value += listed_in_words(devices[i].nInterface, {serial, strnlen(serial, kSerial)});
  }
  return result;
}

unsigned long Client::info(std::string& value) {
  std::array<char, 256> text = {};
  unsigned long size = text.size();
  const unsigned long result = m_pGrabber->GetInfo(text.data(), size);
  for (const char* line = text.data(); *line != '\0'; line += std::strlen(line) + 1) {
    value += std::string(line) + '|';
  }
  return result;
}

unsigned long Client::snap(std::string& value) {
  unsigned char* block = nullptr;
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bCapturing = true;  // of one frame: its fake finger event may come
  }
  const unsigned long result = m_pGrabber->GetImage(kChannel, &block);
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bCapturing = false;
  }
  value = block == nullptr ? "none" : is_white(block) ? "white" : "image";
  value += events();
  m_pGrabber->FreeImage(block);
  return result;
}

unsigned long Client::property(const Step& step, std::string& value) {
  const auto id = static_cast<ePropertyIDs>(step.number);
  if (step.what == eStep::SetProperty) {
    return m_pGrabber->SetFGProperty(id, step.value);
  }
  unsigned int read = kUnread;
  const unsigned long result = m_pGrabber->GetFGProperty(id, read);
  value = result == 0 ? std::to_string(read) : "";
  return result;
}

unsigned long Client::feature(const Step& step, std::string& value) {
  const bool is_code = step.number == eFeatureAuthorizationCode;
  const bool is_format = step.number == eFeatureImageDataFormat;
  std::array<unsigned char, sizeof(kSecret)> bytes = {};
  std::memcpy(bytes.data(), kSecret, sizeof(kSecret));
  if (is_format) {
    bytes[0] = step.what == eStep::SetFeature ? 2 : kUnread;
  }
  const std::size_t count = is_format ? 1 : is_code ? sizeof(kCode) - 1 : sizeof(kSecret) - 1;
  osvlx3_feature record{step.number, 0, count, 1, bytes.data()};
  if (step.what == eStep::SetFeature) {
    return m_pPlugin->set_feature()(kChannel, &record);
  }
  if (step.value == kNoRoom) {
    return allocated_feature(step, value);
  }
  const unsigned long result = m_pPlugin->get_feature()(kChannel, &record);
  value = is_format && result == 0 ? std::to_string(bytes[0]) : "";
  return result;
}

unsigned long Client::allocated_feature(const Step& step, std::string& value) {
  osvlx3_feature record{step.number, 0, 0, 0, nullptr};
  unsigned long result = 0;
  try {
    result = m_pPlugin->get_feature()(kChannel, &record);
  } catch (const lx::CLX3ModuleException& refusal) {
    return refusal.value();
  }
  const auto* const read = static_cast<const unsigned char*>(record.data);
  value = result != 0 ? "" : std::to_string(read == nullptr ? kUnread : *read);
  m_pPlugin->free()(record.data);
  return result;
}

unsigned long Client::contamination(std::string& value) {
  double level = 0;
  const unsigned long result = m_pGrabber->ContaminationDetection(kChannel, &level);
  value = result == 0 ? value_in_words(level) : "";
  return result;
}

double Client::score() {
  double score = 0;
  m_pPlugin->frame_info()(0, 0, 0, &score);
  return score;
}

unsigned long Client::frame_info(std::string& value) {
  std::array<unsigned char, 12> info = {};
  double score = 0;
  std::int32_t state = 0;
  const unsigned long result = m_pPlugin->frame_info()(0, 0, 1, info.data());
  std::memcpy(&score, info.data(), sizeof(score));
  std::memcpy(&state, info.data() + sizeof(score), sizeof(state));
  value = score_in_words(score, state);
  return result;
}

unsigned long Client::capture(const Step& step, std::string& value) {
  m_nImages = 0;
  m_bStopping = false;
  m_bUnplugged = false;
  m_vImage.clear();
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bCapturing = true;
    m_bEnded = false;
    m_bFrozen = false;
  }
  const Threads before = threads();
  const unsigned long result = m_pGrabber->StartCapture(
      kHandle, kChannel, step.what == eStep::Plain ? eCapturePlain : eCaptureLive, &Client::on_live,
      &Client::on_finger, &Client::on_error, &Client::on_warning, this);
  if (result == 0) {
    await_end(has_others(before));
  }
  m_pGrabber->StopCapture(kChannel);
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bCapturing = false;
  }
  m_pGrabber->Freeze(kChannel, false);
  value = events();
  return result;
}

/// @param captures whether there is a worker; one that is gone has told its end
void Client::await_end(bool captures) {
  constexpr long kPoll = 100'000'000;  // nanoseconds
  constexpr long kPolls = 3;
  std::unique_lock<std::mutex> lock(m_cLock);
  if (!captures && !m_bEnded) {
    m_sEvents += "nothing ";
    return;
  }
  m_cChanged.wait(lock, [this] { return m_bEnded || m_bFrozen; });
  if (!m_bEnded && m_bFrozen) {
    lock.unlock();
    if (test::Sleeps().await_nanosleeps(0, kPoll, kPolls)) {
      note("frozen ");
    }
    m_pGrabber->Freeze(kChannel, false);
    lock.lock();
  }
  m_cChanged.wait(lock, [this] { return m_bEnded; });
}

}  // namespace Osv::faults
