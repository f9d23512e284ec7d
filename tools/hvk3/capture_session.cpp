#include "hvk3/capture_session.h"

#include <utility>

#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr int kHandle = 1;
constexpr unsigned int kChannel = 1;
constexpr std::size_t kImagesThatWait = 4;

CaptureSession& session_of(void* user) { return *static_cast<CaptureSession*>(user); }

}  // namespace

CaptureSession::CaptureSession(Osv::lx::ClFramegrabber& grabber, eCaptureModeIDs mode,
                               const Wakeup& wakeup,
                               std::function<void(const unsigned char*)> observe)
    : m_cGrabber(grabber), m_eMode(mode), m_cWakeup(wakeup), m_cObserve(std::move(observe)) {}

CaptureSession::~CaptureSession() { end_capture(); }

void CaptureSession::start() {
  check(m_cGrabber, m_cGrabber.SetCallbacks(kChannel, &on_start, &on_stop));
  check(m_cGrabber, m_cGrabber.StartCapture(kHandle, kChannel, m_eMode, &on_frame, &on_finger,
                                            &on_error, &on_warning, this));
  m_bStarted = true;
}

void CaptureSession::stop() { check(m_cGrabber, end_capture()); }

unsigned long CaptureSession::end_capture() {
  if (!m_bStarted) {
    return 0;
  }
  m_bStarted = false;
  update([this] { m_bStopping = true; });
  m_cRoom.notify_all();  // StopCapture waits for callbacks, so none may wait for room
  return m_cGrabber.StopCapture(kChannel);
}

std::optional<Image> CaptureSession::take() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_cImages.empty()) {
    return std::nullopt;
  }
  std::optional<Image> image(std::move(m_cImages.front()));
  m_cImages.pop_front();
  m_cRoom.notify_all();
  return image;
}

Progress CaptureSession::progress() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_cProgress;
}

template <class Change>
void CaptureSession::update(Change change) {
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    change();
  }
  m_cWakeup.notify();
}

void CaptureSession::keep(const unsigned char* image) {
  {
    std::unique_lock<std::mutex> lock(m_cLock);
    m_cRoom.wait(lock, [this] { return m_cImages.size() < kImagesThatWait || m_bStopping; });
    m_cImages.emplace_back(image);
  }
  m_cWakeup.notify();
}

void CaptureSession::on_start(int /*handle*/, unsigned int /*channel*/, void* user) {
  CaptureSession& session = session_of(user);
  session.update([&] { session.m_cProgress.running = true; });
}

void CaptureSession::on_stop(int /*handle*/, unsigned int /*channel*/, void* user) {
  CaptureSession& session = session_of(user);
  session.update([&] { session.m_cProgress.running = false; });
}

void CaptureSession::on_frame(int /*handle*/, unsigned int /*channel*/, unsigned char* image,
                              void* user) {
  CaptureSession& session = session_of(user);
  if (session.m_cObserve) {
    session.m_cObserve(image);
  }
  session.update([&] { ++session.m_cProgress.frames; });
  if (session.m_eMode == eCaptureLive) {
    session.keep(image);
  }
}

void CaptureSession::on_finger(int /*handle*/, unsigned int /*channel*/, int /*type*/,
                               unsigned char* image, void* user) {
  CaptureSession& session = session_of(user);
  session.update([&] { ++session.m_cProgress.fingers; });
  session.keep(image);
}

void CaptureSession::on_error(int /*handle*/, unsigned int /*channel*/, const char* text,
                              void* user) {
  CaptureSession& session = session_of(user);
  session.update([&] { session.m_cProgress.error = text; });
}

void CaptureSession::on_warning(int /*handle*/, unsigned int /*channel*/, const char* text,
                                void* user) {
  CaptureSession& session = session_of(user);
  session.update([&] { session.m_cProgress.warnings.emplace_back(text); });
}

}  // namespace hvk3
