#include "view/live_feed.h"

#include <memory>
#include <utility>

#include "hvk3/scanner.h"

namespace hvk3::view {
namespace {

constexpr int kHandle = 1;
constexpr unsigned int kChannel = 1;

LiveFeed& feed_of(void* user) { return *static_cast<LiveFeed*>(user); }

}  // namespace

LiveFeed::LiveFeed(Plugin& plugin, Board& board, EventLog& events, const Wakeup& wakeup,
                   unsigned int settle)
    : m_cGrabber(plugin.grabber()),
      m_pfnFrameInfo(
          plugin.function<Osv::lx::CurrentFrameInfoFunction>(Osv::lx::symbol::CurrentFrameInfo)),
      m_cBoard(board),
      m_cEvents(events),
      m_cWakeup(wakeup),
      m_nSettle(settle),
      m_cSettling(settle),
      m_nTouch(board.status().touch) {}

LiveFeed::~LiveFeed() {
  m_cGrabber.StopCapture(kChannel);
  m_cGrabber.EnableEvents(0, kHandle, nullptr, nullptr);
}

void LiveFeed::start() {
  check(m_cGrabber, m_cGrabber.EnableEvents(0, kHandle, &on_event, this));
  check(m_cGrabber, m_cGrabber.StartCapture(kHandle, kChannel, eCapturePlain, &on_frame, &on_finger,
                                            &on_error, &on_warning, this));
}

void LiveFeed::announce(const std::string& event) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_cEvents.tell(event);
  for (const std::string& early : m_vEarly) {
    m_cEvents.tell(early);
  }
  m_bAnnounced = true;
}

void LiveFeed::tell(const std::string& event) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_bAnnounced) {
    m_cEvents.tell(event);
  } else {
    m_vEarly.push_back(event);
  }
}

void LiveFeed::judge(std::optional<unsigned int> threshold) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_nThreshold = threshold;
  m_bOldFrame = true;
  m_bFakeInRow = false;
}

std::vector<std::string> LiveFeed::take_warnings() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return std::exchange(m_vWarnings, {});
}

std::optional<std::string> LiveFeed::error() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_sError;
}

void LiveFeed::take_frame(const unsigned char* image) {
  const std::optional<Judgement> judgement = judge_frame();
  if (!std::exchange(m_bFinger, false) && m_bTouching) {  // the frame before showed none
    end_touch();
  }
  m_cBoard.live.put(std::make_unique<Image>(image));
  m_cBoard.update([&](Status& status) {
    ++status.frames;
    status.rate.add(FrameRate::Clock::now());
    if (judgement) {
      status.scores.push_back(*judgement);
    }
    if (status.scores.size() > kScores) {
      status.scores.pop_front();
    }
  });
  if (!std::exchange(m_bLive, true)) {
    tell("live");
  }
}

/// The verdict on the frame under way, also for a finger image that follows.
std::optional<Judgement> LiveFeed::judge_frame() {
  const bool fake = std::exchange(m_bFake, false);
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (!m_nThreshold || std::exchange(m_bOldFrame, false)) {
    return std::nullopt;
  }
  m_bFakeInRow = m_bFakeInRow || fake;
  return hvk3::judge_frame(m_pfnFrameInfo, fake, *m_nThreshold);
}

/// @return whether one of its images showed a fake
bool LiveFeed::end_row() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return std::exchange(m_bFakeInRow, false);
}

void LiveFeed::take_finger(const unsigned char* image) {
  m_bFinger = true;
  if (!m_bTouching) {
    begin_touch();
  }
  std::optional<Image> settled = m_cSettling.add(Image(image));
  m_cBoard.update([&](Status& status) {
    status.settle = m_cSettling.count();
    status.settled = status.settled || settled;
  });
  if (settled) {
    const bool fake = end_row();
    m_cBoard.kept.put(std::make_unique<Kept>(Kept{std::move(*settled), false, m_nTouch, fake}));
    tell(fake ? "settled fake" : "settled");
  }
}

void LiveFeed::begin_touch() {
  m_bTouching = true;
  ++m_nTouch;
  m_cSettling = Settling(m_nSettle);  // a row never has images of two fingers
  m_cBoard.update([&](Status& status) {
    status.finger = true;
    status.settled = false;
    status.touch = m_nTouch;
  });
  tell("finger");
}

void LiveFeed::end_touch() {
  m_bTouching = false;
  end_row();
  m_cBoard.update([](Status& status) { status.finger = false; });
  tell("lifted");
}

void LiveFeed::on_frame(int /*handle*/, unsigned int /*channel*/, unsigned char* image,
                        void* user) {
  feed_of(user).take_frame(image);
}

void LiveFeed::on_finger(int /*handle*/, unsigned int /*channel*/, int /*type*/,
                         unsigned char* image, void* user) {
  feed_of(user).take_finger(image);
}

void LiveFeed::on_error(int /*handle*/, unsigned int /*channel*/, const char* text, void* user) {
  LiveFeed& feed = feed_of(user);
  {
    const std::lock_guard<std::mutex> lock(feed.m_cLock);
    feed.m_sError = text;
  }
  feed.m_cWakeup.notify();
}

void LiveFeed::on_warning(int /*handle*/, unsigned int /*channel*/, const char* text, void* user) {
  LiveFeed& feed = feed_of(user);
  feed.m_cBoard.update([&](Status& status) { status.notice = warning_of(text); });
  feed.tell("warning");
  {
    const std::lock_guard<std::mutex> lock(feed.m_cLock);
    feed.m_vWarnings.emplace_back(text);
  }
  feed.m_cWakeup.notify();
}

/// Comes in front of the live image, but for an image that the owner takes: on its own thread.
void LiveFeed::on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*grabber*/,
                        unsigned int type, void* user) {
  if (type != eFG_HVK3_FakeFinger) {
    return;
  }
  LiveFeed& feed = feed_of(user);
  (std::this_thread::get_id() == feed.m_cOwner ? feed.m_bTookFake : feed.m_bFake) = true;
}

}  // namespace hvk3::view
