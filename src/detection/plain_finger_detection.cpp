#include "detection/plain_finger_detection.h"

#include <span>

#include "detection/bitmap_utilities.h"
#include "foundation/image_functions.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kThresholdMask = 0xFF;

/// The pixels of the middle row; none without rows.
std::span<const unsigned char> probe_row(const utilities::ClSimpleBitmap& bitmap) {
  if (bitmap.Height() == 0) {
    return {};
  }
  return {bitmap.Pixel() + bitmap.Height() / 2 * bitmap.BPRow(), bitmap.Width()};
}

}  // namespace

bool ClPlainFingerDetection::Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) {
  unsigned long sum = 0;
  const bool finger = !BlackImage(in) && LineDetect(probe_row(in).data(), in.Width(), sum);
  out = in;
  return finger;
}

bool ClPlainFingerDetection::BlackImage(utilities::ClSimpleBitmap& bitmap) const {
  const std::span<const unsigned char> row = probe_row(bitmap);
  return img::all_zero(row.data(), row.size());
}

bool ClPlainFingerDetection::LineDetect(const unsigned char* line, unsigned long width,
                                        unsigned long& sum) const {
  sum = byte_sum({line, width + width % 2});
  return sum < width * (m_nThreshold & kThresholdMask);
}

}  // namespace Osv::lx
