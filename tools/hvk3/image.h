#pragma once

#include <cstdint>
#include <vector>

#include "ostrevanhvk3/image_block.h"

/// @file
/// A kept image.

namespace hvk3 {

/// A copy of an image that the plug-in delivered.
class Image {
 public:
  /// `block` is lent by a callback or belongs to the caller; it is copied.
  explicit Image(const unsigned char* block)
      : m_vBlock(block, block + Osv::lx::ImageView(block).block_size()) {}

  Osv::lx::ImageView view() const { return Osv::lx::ImageView(m_vBlock.data()); }

  /// The block as it was delivered.
  const std::vector<unsigned char>& block() const { return m_vBlock; }

  /// Mean gray level of all pixels: 0 black, 255 white.
  double mean() const;

  /// Dots per inch, rounded.
  long dots_per_inch() const;

 private:
  std::vector<unsigned char> m_vBlock;
};

}  // namespace hvk3
