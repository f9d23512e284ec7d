#pragma once

#include <optional>

#include "hvk3/image.h"

/// @file
/// The choice of the settled image.

namespace hvk3 {

/// Plain mode delivers each frame that shows a finger, the first ones of a finger that is only
/// touching down. Of so many in a row the darkest is the one on which the finger lies best.
class Settling {
 public:
  /// @param images how many to choose from, at least 1
  explicit Settling(unsigned int images) : m_nImages(images) {}

  /// @return the darkest, the earliest of several alike, when `image` completes a row
  std::optional<Image> add(Image image);

  /// Images of the present row so far.
  unsigned int count() const { return m_nCount; }

 private:
  unsigned int m_nImages;
  unsigned int m_nCount = 0;
  double m_dMean = 0.0;
  std::optional<Image> m_cDarkest;
};

}  // namespace hvk3
