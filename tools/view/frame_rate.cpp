#include "view/frame_rate.h"

namespace hvk3::view {
namespace {

constexpr std::chrono::seconds kWindow(2);
constexpr std::size_t kMost = 200;

}  // namespace

void FrameRate::add(Clock::time_point moment) {
  m_cMoments.push_back(moment);
  while (m_cMoments.size() > kMost || moment - m_cMoments.front() > kWindow) {
    m_cMoments.pop_front();
  }
}

double FrameRate::at(Clock::time_point now) const {
  if (m_cMoments.size() < 2 || now - m_cMoments.back() > kWindow) {
    return 0.0;
  }
  const std::chrono::duration<double> span = m_cMoments.back() - m_cMoments.front();
  return span.count() > 0.0 ? static_cast<double>(m_cMoments.size() - 1) / span.count() : 0.0;
}

}  // namespace hvk3::view
