#include "hvk3/settling.h"

#include <utility>

namespace hvk3 {

std::optional<Image> Settling::add(Image image) {
  const double mean = image.mean();
  if (!m_cDarkest || mean < m_dMean) {
    m_cDarkest = std::move(image);
    m_dMean = mean;
  }
  if (++m_nCount < m_nImages) {
    return std::nullopt;
  }
  m_nCount = 0;
  return std::exchange(m_cDarkest, std::nullopt);
}

}  // namespace hvk3
