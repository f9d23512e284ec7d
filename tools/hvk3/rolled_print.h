#pragma once

#include <optional>

#include "detection/rolled_finger_lx1.h"
#include "hvk3/image.h"

/// @file
/// A print that is put together out of live frames.

namespace hvk3 {

/// The plug-in's rolled strategy on images that it delivered.
class RolledPrint {
 public:
  /// @return the print, when `frame` shows that the finger was lifted
  std::optional<Image> add(const Image& frame);

 private:
  Osv::lx::ClRolledFingerLX1 m_cStrategy;
};

}  // namespace hvk3
