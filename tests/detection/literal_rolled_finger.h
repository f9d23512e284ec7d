#pragma once

#include <vector>

#include "detection/images.h"

/// @file
/// The roll that follows an edge, told once more: slow, pixel by pixel, each mean from its start.

namespace Osv::test {

class LiteralRolledFinger {
 public:
  using Bitmap = utilities::ClSimpleBitmap;
  using Profile = std::vector<unsigned char>;

  bool detect(const Bitmap& in, Bitmap& out) {
    initialize(in);
    bool finished = false;
    if (!rolling) {
      rolling = is_finger(in, 0);
    } else if (is_finger(in, 2)) {
      Profile next(in.Height());
      calculate(in, profile, next);
      copy(in, image, profile, next);
      profile = next;
    } else {
      initialized = rolling = false;
      finished = true;
    }
    for (unsigned long i = 0; i < out.PixelSize() && i < image.PixelSize(); ++i) {
      out.Pixel()[i] = image.Pixel()[i];
    }
    return finished;
  }

  /// Columns that a narrow row doesn't have are left out.
  static unsigned long mean(const Bitmap& bitmap, unsigned int area) {
    unsigned long sum = 0;
    for (unsigned long y = 0; y < bitmap.Height(); ++y) {
      for (unsigned long x = 0; x < bitmap.Width(); ++x) {
        const bool first = area == 0 && x < 50;
        const bool last = area == 1 && x + 50 >= bitmap.Width();
        sum += first || last || area == 2 ? bitmap.Pixel()[y * bitmap.BPRow() + x] : 0U;
      }
    }
    return static_cast<unsigned long>(static_cast<double>(sum) /
                                      static_cast<double>(bitmap.Height() * 50));
  }

  static unsigned long line_mean(const unsigned char* line, unsigned long count) {
    unsigned long sum = 0;
    for (unsigned long i = 0; i < count; ++i) {
      sum += line[i];
    }
    return count == 0
               ? line[0]
               : static_cast<unsigned long>(static_cast<double>(sum) / static_cast<double>(count));
  }

  static unsigned long edge(const unsigned char* line, unsigned long from, unsigned long to) {
    unsigned long best = 255;
    unsigned long result = 0;
    for (unsigned long i = from; i < to; ++i) {
      const unsigned long value = line_mean(line, i);
      if (value <= best) {
        best = value;
        result = i;
      }
    }
    return result;
  }

  /// A row that the profile before doesn't have begins at 0. Each distinct start is reckoned once,
  /// or the tests would take hours.
  static void calculate(const Bitmap& bitmap, const Profile& previous, Profile& next) {
    std::vector<int> known(256, -1);
    for (unsigned long r = 0; r < bitmap.Height() && r < next.size(); ++r) {
      const unsigned char start = r < previous.size() ? previous[r] : 0;
      if (known[start] < 0) {
        known[start] = static_cast<unsigned char>(edge(bitmap.Pixel(), start, bitmap.Width()));
      }
      next[r] = static_cast<unsigned char>(known[start]);
    }
  }

  /// What lies behind the end of either image is left out.
  static void copy(const Bitmap& source, Bitmap& target, const Profile& previous,
                   const Profile& next) {
    for (unsigned long r = 0; r < previous.size() && r < next.size(); ++r) {
      for (unsigned long x = previous[r]; x < next[r]; ++x) {
        const unsigned long byte = r * source.BPRow() + x;
        if (byte < source.PixelSize() && byte < target.PixelSize()) {
          target.Pixel()[byte] = source.Pixel()[byte];
        }
      }
    }
  }

  bool initialized = false;
  bool rolling = false;
  unsigned long strip = 0;
  unsigned long whole = 0;
  Profile profile;
  Bitmap image;

 private:
  void initialize(const Bitmap& frame) {
    if (!initialized) {
      strip = mean(frame, 0);
      whole = mean(frame, 2);
      profile = Profile(frame.Height(), 0);
      image = frame;
      initialized = true;
    }
  }
  bool is_finger(const Bitmap& bitmap, unsigned int area) const {
    const auto background = static_cast<long>(area == 2 ? whole : strip);
    return background - static_cast<long>(mean(bitmap, area)) > 10;
  }
};

}  // namespace Osv::test
