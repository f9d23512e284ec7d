#pragma once

#include <vector>

#include "detection/images.h"

/// @file
/// The roll that keeps the darkest columns, told once more: slow, column after column, pixel by
/// pixel.

namespace Osv::test {

class LiteralRolledFingerLX1 {
 public:
  using Bitmap = utilities::ClSimpleBitmap;

  bool detect(const Bitmap& in, Bitmap& out) {
    initialize(in);
    if (!rolling) {
      rolling = is_finger(in);
      out = in;
      return false;
    }
    const bool finger = is_finger(in);
    if (finger) {
      merge(in);
    } else {
      initialized = rolling = false;
      limit = 255;
    }
    out = image;
    return !finger;
  }

  static unsigned long column_sum(const Bitmap& bitmap, unsigned long column) {
    unsigned long sum = 0;
    for (unsigned long y = 0; y < bitmap.Height(); ++y) {
      sum += bitmap.Pixel()[y * bitmap.BPRow() + column];
    }
    return sum;
  }

  /// What lies behind the target's end is left out.
  static void copy_column(const Bitmap& source, Bitmap& target, unsigned long column) {
    for (unsigned long y = 0; y < source.Height(); ++y) {
      const unsigned long byte = y * source.BPRow() + column;
      if (byte < target.PixelSize()) {
        target.Pixel()[byte] = source.Pixel()[byte];
      }
    }
  }

  bool initialized = false;
  bool rolling = false;
  unsigned long limit = 255;
  unsigned long gray = 255;
  std::vector<unsigned long> minima;
  Bitmap image;

 private:
  static unsigned long mean(const Bitmap& bitmap) {
    unsigned long sum = 0;
    for (unsigned long c = 0; c < bitmap.Width(); ++c) {
      sum += column_sum(bitmap, c);
    }
    return static_cast<unsigned long>(static_cast<double>(sum) /
                                      static_cast<double>(bitmap.Height() * bitmap.Width()));
  }

  void initialize(const Bitmap& frame) {
    if (initialized) {
      return;
    }
    gray = mean(frame);
    if (gray <= 220) {
      return;
    }
    limit = frame.Width() * 255;
    minima.resize(frame.Width());
    for (unsigned long c = 0; c < frame.Width(); ++c) {
      minima[c] = column_sum(frame, c);
      limit = minima[c] < limit ? minima[c] : limit;
    }
    limit -= static_cast<unsigned long>(static_cast<double>(limit) * 0.05);
    image = frame;
    initialized = true;
  }

  bool is_finger(const Bitmap& bitmap) const {
    return static_cast<long>(gray) - static_cast<long>(mean(bitmap)) > 19;
  }

  /// A column without a minimum is left out.
  void merge(const Bitmap& in) {
    for (unsigned long c = 0; c < in.Width() && c < minima.size(); ++c) {
      const unsigned long sum = column_sum(in, c);
      if (sum < minima[c]) {
        copy_column(in, image, c);
        minima[c] = sum;
      }
    }
  }
};

}  // namespace Osv::test
