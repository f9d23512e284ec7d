#include "hvk3/preview.h"

#include <utility>

namespace hvk3 {

void Preview::offer(const unsigned char* image) {
  Image copy(image);
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_cNewest = std::move(copy);
}

void Preview::set_status(const std::string& line) {
  m_bStale = m_bStale || line != m_sStatus;
  m_sStatus = line;
}

void Preview::draw_on(LiveScreen& screen) {
  // Drawing costs time that the images of a fast capture need.
  constexpr std::chrono::milliseconds kPeriod(33);
  const bool anew = screen.keep_up();
  m_bStale = m_bStale || anew;
  screen.go_on();
  if (!screen.is_idle() || (!anew && Clock::now() < m_cNext)) {
    return;
  }
  take_newest();
  if (std::exchange(m_bStale, false)) {
    screen.show((anew ? "\x1b[2J" : "") + picture());
    m_cNext = Clock::now() + kPeriod;
  }
}

Wakeup::Deadline Preview::next(const LiveScreen& screen) const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return screen.is_idle() && (m_bStale || m_cNewest) ? Wakeup::Deadline(m_cNext) : std::nullopt;
}

void Preview::take_newest() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_cNewest) {
    m_cShown = std::exchange(m_cNewest, std::nullopt);
    m_bStale = true;
  }
}

/// From the upper left corner on, over the picture before.
std::string Preview::picture() const {
  const Canvas canvas = terminal_canvas(m_eShades);
  const std::string image = m_cShown ? draw(m_cShown->view(), canvas) : "";
  return "\x1b[H" + image + m_sStatus.substr(0, canvas.columns - 1) + "\x1b[K";
}

}  // namespace hvk3
