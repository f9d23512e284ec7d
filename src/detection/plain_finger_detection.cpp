#include "detection/plain_finger_detection.h"

#include <algorithm>
#include <span>

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
  return std::all_of(row.begin(), row.end(), [](unsigned char pixel) { return pixel == 0; });
}

bool ClPlainFingerDetection::LineDetect(const unsigned char* line, unsigned long width,
                                        unsigned long& sum) const {
  sum = 0;
  for (unsigned long i = 0; i < width; i += 2) {
    sum += line[i];
    sum += line[i + 1];
  }
  return sum < width * (m_nThreshold & kThresholdMask);
}

}  // namespace Osv::lx
