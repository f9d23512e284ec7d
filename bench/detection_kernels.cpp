#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>
#include <opencv2/core.hpp>
#include <span>

#include "detection/bitmap_utilities.h"
#include "detection/finger_utilities.h"
#include "detection/literal_rolled_finger.h"
#include "detection/literal_rolled_finger_lx1.h"
#include "detection/plain_finger_detection.h"
#include "detection/rolled_finger.h"
#include "detection/rolled_finger_lx1.h"
#include "foundation/pixel_kernels.h"
#include "kernels.h"
#include "memory_limits.h"

namespace Osv::bench {
namespace {

using utilities::ClSimpleBitmap;

cv::Mat mat_of(const ClSimpleBitmap& frame) {
  return {static_cast<int>(frame.Height()), static_cast<int>(frame.Width()), CV_8UC1,
          const_cast<unsigned char*>(frame.Pixel()), frame.BPRow()};
}

void read_frame(const ClSimpleBitmap& frame) { read_pass(frame.Pixel(), frame.PixelSize()); }

// Sums.

std::uint64_t plain_sum(const ClSimpleBitmap& frame) {
  std::uint64_t sum = 0;
  for (unsigned long y = 0; y < frame.Height(); ++y) {
    const unsigned char* const row = frame.Pixel() + y * frame.BPRow();
    sum = std::accumulate(row, row + frame.Width(), sum);
  }
  return sum;
}

/// Of a frame without padding, as all frames here are.
std::uint64_t sse2_sum(const ClSimpleBitmap& frame) {
  return img::pixel_kernels(InstructionSet::kSse2).sum(frame.Pixel(), frame.PixelSize());
}

std::uint64_t eigen_sum(const ClSimpleBitmap& frame) {
  const Eigen::Map<const Eigen::Array<unsigned char, Eigen::Dynamic, 1>> bytes(
      frame.Pixel(), static_cast<Eigen::Index>(frame.PixelSize()));
  return bytes.cast<std::uint32_t>().sum();
}

std::uint64_t opencv_sum(const ClSimpleBitmap& frame) {
  return static_cast<std::uint64_t>(cv::sum(mat_of(frame))[0]);
}

/// A sum of the frame, checked against the plain one.
Candidate sum_by(const std::string& name, std::uint64_t (*sum)(const ClSimpleBitmap&), Size size) {
  const ClSimpleBitmap frame = noise(size, 7);
  require(sum(frame) == plain_sum(frame), "sum by " + name);
  return {name, [sum](ClSimpleBitmap& in) { benchmark::DoNotOptimize(sum(in)); }};
}

Kernel gray_sum() {
  return {"Gray_Sum", {"ours", "SSE2", "limit", "OpenCV", "Eigen", "std"}, [](Size size) {
            return std::vector<Candidate>{sum_by("ours", lx::ClBitmapUtilities::Gray_Sum, size),
                                          sum_by("SSE2", sse2_sum, size),
                                          {"limit", read_frame},
                                          sum_by("OpenCV", opencv_sum, size),
                                          sum_by("Eigen", eigen_sum, size),
                                          sum_by("std", plain_sum, size)};
          }};
}

// The roll that keeps the darkest columns.

struct RollProbe : lx::ClRolledFingerLX1 {
  using ClRolledFingerLX1::m_Image;
  using ClRolledFingerLX1::m_Minima;
  using ClRolledFingerLX1::Roll;
};

/// Columns next to each other, as a rolling finger darkens them.
struct Band {
  unsigned long from;
  unsigned long count;
};

Band band_of(Size size, unsigned long tenths) {
  const unsigned long count = size.width * tenths / 10;
  return {(size.width - count) / 2, count};
}

/// A roll that takes the band out of every frame, and nothing else.
struct BandRoll {
  explicit BandRoll(Size size, unsigned long tenths) : band(band_of(size, tenths)) {
    const ClSimpleBitmap background = noise(size, 3);
    roll.m_Image = background;
    roll.m_Minima.assign(size.width, 0);
  }

  void take(const ClSimpleBitmap& frame) {
    std::fill_n(roll.m_Minima.begin() + static_cast<std::ptrdiff_t>(band.from), band.count,
                std::numeric_limits<unsigned long>::max());
    benchmark::DoNotOptimize(roll.Roll(frame));
  }

  Band band;
  RollProbe roll;
};

void copy_band(const ClSimpleBitmap& in, ClSimpleBitmap& out, Band band) {
  for (unsigned long y = 0; y < in.Height(); ++y) {
    const unsigned long offset = y * in.BPRow() + band.from;
    std::memcpy(out.Pixel() + offset, in.Pixel() + offset, band.count);
  }
}

void check_roll(Size size, unsigned long tenths) {
  const ClSimpleBitmap frame = noise(size, 7);
  BandRoll ours(size, tenths);
  ours.take(frame);
  ClSimpleBitmap expected = noise(size, 3);
  for (unsigned long i = 0; i < ours.band.count; ++i) {
    const unsigned long column = ours.band.from + i;
    test::LiteralRolledFingerLX1::copy_column(frame, expected, column);
    require(ours.roll.m_Minima[column] == test::LiteralRolledFingerLX1::column_sum(frame, column),
            "minima of a roll");
  }
  require(test::same_block(ours.roll.m_Image, expected), "image of a roll");
}

/// With the mask made beforehand, as a kindness.
Candidate opencv_roll(Size size, Band band) {
  const auto image = std::make_shared<ClSimpleBitmap>(noise(size, 3));
  const auto mask = std::make_shared<cv::Mat>(cv::Mat::zeros(mat_of(*image).size(), CV_8UC1));
  mask->colRange(static_cast<int>(band.from), static_cast<int>(band.from + band.count)).setTo(255);
  return {"OpenCV", [image, mask, band](ClSimpleBitmap& in) {
            cv::Mat sums;
            cv::reduce(mat_of(in), sums, 0, cv::REDUCE_SUM, CV_32S);
            benchmark::DoNotOptimize(sums.data);
            if (band.count > 0) {
              cv::Mat target = mat_of(*image);
              mat_of(in).copyTo(target, *mask);
            }
          }};
}

Kernel roll(const std::string& name, unsigned long tenths) {
  return {name, {"ours", "limit", "OpenCV"}, [tenths](Size size) {
            check_roll(size, tenths);
            const auto ours = std::make_shared<BandRoll>(size, tenths);
            const auto image = std::make_shared<ClSimpleBitmap>(noise(size, 3));
            const Band band = ours->band;
            return std::vector<Candidate>{{"ours", [ours](ClSimpleBitmap& in) { ours->take(in); }},
                                          {"limit",
                                           [image, band](ClSimpleBitmap& in) {
                                             read_frame(in);
                                             copy_band(in, *image, band);
                                           }},
                                          opencv_roll(size, band)};
          }};
}

// The roll that follows an edge.

using Profile = std::vector<unsigned char>;

/// The edge from column 0 on with the means of a running sum, divided one by one.
unsigned long scanned_edge(const ClSimpleBitmap& in, std::vector<std::uint64_t>& sums) {
  const unsigned char* const line = in.Pixel();
  std::inclusive_scan(line, line + in.Width(), sums.begin(), std::plus<>(), std::uint64_t{0});
  unsigned long lowest = *line;
  unsigned long edge = 0;
  for (unsigned long i = 1; i < in.Width(); ++i) {
    const unsigned long mean = sums[i - 1] / i;
    edge = mean <= lowest ? i : edge;
    lowest = std::min(lowest, mean);
  }
  return edge;
}

/// As many additions that wait for each other as the edge may cost cycles: three a column, one a
/// row.
void chained_additions(unsigned long count) {
  unsigned long value = 0;
  for (unsigned long i = 0; i < count; i += 8) {
    asm volatile(
        "add $1, %0\n add $1, %0\n add $1, %0\n add $1, %0\n"
        "add $1, %0\n add $1, %0\n add $1, %0\n add $1, %0\n"
        : "+r"(value));
  }
}

Kernel edge() {
  return {
      "ClRolledFinger edge", {"ours", "limit", "std"}, [](Size size) {
        const ClSimpleBitmap frame = noise(size, 7);
        const auto previous = std::make_shared<Profile>(size.height, 0);
        const auto next = std::make_shared<Profile>(size.height);
        const auto rolled = std::make_shared<lx::ClRolledFinger>();
        rolled->CalculateLineRand(frame, *previous, *next);
        Profile expected(size.height);
        test::LiteralRolledFinger::calculate(frame, *previous, expected);
        require(*next == expected, "edge");
        const auto sums = std::make_shared<std::vector<std::uint64_t>>(size.width);
        require(static_cast<unsigned char>(scanned_edge(frame, *sums)) == expected[0], "scan");
        return std::vector<Candidate>{
            {"ours", [=](ClSimpleBitmap& in) { rolled->CalculateLineRand(in, *previous, *next); }},
            {"limit", [](ClSimpleBitmap& in) { chained_additions(3 * in.Width()); }},
            {"std", [=](ClSimpleBitmap& in) {
               std::fill(next->begin(), next->end(),
                         static_cast<unsigned char>(scanned_edge(in, *sums)));
             }}};
      }};
}

// Rows.

unsigned char* middle_row(ClSimpleBitmap& in) { return in.Pixel() + in.Height() / 2 * in.BPRow(); }

Kernel contrast_test() {
  return {"contrast test", {"ours", "limit"}, [](Size) {
            return std::vector<Candidate>{
                {"ours",
                 [](ClSimpleBitmap& in) {
                   in.SetPels(19685, 19685);
                   benchmark::DoNotOptimize(
                       lx::ClFingerUtilities::IsFinger(in, lx::ClFingerUtilities::eAreaWhole));
                 }},
                {"limit", [](ClSimpleBitmap& in) {
                   for (unsigned long quarter = 1; quarter <= 3; ++quarter) {
                     read_pass(in.Pixel() + quarter * (in.Height() / 4) * in.BPRow(), in.Width());
                   }
                 }}};
          }};
}

Kernel probe_row() {
  return {"probe row", {"ours", "limit"}, [](Size) {
            const auto plain = std::make_shared<lx::ClPlainFingerDetection>(240);
            return std::vector<Candidate>{
                {"ours",
                 [plain](ClSimpleBitmap& in) {
                   unsigned long sum = 0;
                   benchmark::DoNotOptimize(plain->LineDetect(middle_row(in), in.Width(), sum));
                   benchmark::DoNotOptimize(sum);
                 }},
                {"limit", [](ClSimpleBitmap& in) { read_pass(middle_row(in), in.Width()); }}};
          }};
}

/// A black row is the one that is read to its end. Its making is measured too, on both sides.
Kernel black_row() {
  return {"middle row check", {"ours", "limit"}, [](Size) {
            const auto plain = std::make_shared<lx::ClPlainFingerDetection>(240);
            return std::vector<Candidate>{{"ours",
                                           [plain](ClSimpleBitmap& in) {
                                             std::memset(middle_row(in), 0, in.Width());
                                             benchmark::DoNotOptimize(plain->BlackImage(in));
                                           }},
                                          {"limit", [](ClSimpleBitmap& in) {
                                             std::memset(middle_row(in), 0, in.Width());
                                             read_pass(middle_row(in), in.Width());
                                           }}};
          }};
}

}  // namespace

std::vector<Kernel> detection_kernels() {
  return {gray_sum(),
          roll("ClRolledFingerLX1, none", 0),
          roll("ClRolledFingerLX1, a tenth", 1),
          roll("ClRolledFingerLX1, all", 10),
          edge(),
          contrast_test(),
          probe_row(),
          black_row()};
}

}  // namespace Osv::bench
