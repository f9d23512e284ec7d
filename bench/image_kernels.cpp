#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <span>

#include "foundation/pixel_kernels.h"
#include "kernels.h"
#include "memory_limits.h"

/// @file
/// Work on whole frames that keeps their size: turning, complementing, copying.

namespace Osv::bench {
namespace {

using utilities::ClSimpleBitmap;

cv::Mat mat_of(ClSimpleBitmap& frame) {
  return {static_cast<int>(frame.Height()), static_cast<int>(frame.Width()), CV_8UC1, frame.Pixel(),
          frame.BPRow()};
}

void limit_in_place(ClSimpleBitmap& frame) { modify_pass(frame.Pixel(), frame.PixelSize()); }

/// Row after row, byte after byte.
ClSimpleBitmap plainly(const ClSimpleBitmap& frame, bool turn, bool complement) {
  ClSimpleBitmap out = frame;
  const unsigned long stride = frame.BPRow();
  for (unsigned long i = 0; i < frame.PixelSize(); ++i) {
    const unsigned long row = i / stride;
    const unsigned long from = turn ? frame.Height() - 1 - row : row;
    const unsigned char byte = frame.Pixel()[from * stride + i % stride];
    out.Pixel()[i] = static_cast<unsigned char>(complement ? ~byte : byte);
  }
  return out;
}

bool same_pixels(const ClSimpleBitmap& a, const ClSimpleBitmap& b) {
  return a.PixelSize() == b.PixelSize() && std::memcmp(a.Pixel(), b.Pixel(), a.PixelSize()) == 0;
}

using InPlace = std::function<void(ClSimpleBitmap&)>;

/// A kernel that works in place, with all its candidates but the limit checked.
Kernel in_place(const std::string& name, bool turn, bool complement, const InPlace& ours,
                const InPlace& sse2, const InPlace& opencv) {
  return {name, {"ours", "SSE2", "OpenCV", "limit"}, [=](Size size) {
            std::vector<Candidate> candidates{
                {"ours", ours}, {"SSE2", sse2}, {"OpenCV", opencv}, {"limit", limit_in_place}};
            const ClSimpleBitmap frame = noise(size, 7);
            const ClSimpleBitmap expected = plainly(frame, turn, complement);
            for (const Candidate& candidate : std::span(candidates).first(3)) {
              ClSimpleBitmap out = frame;
              candidate.work(out);
              require(same_pixels(out, expected), name + " by " + candidate.name);
            }
            return candidates;
          }};
}

const img::PixelKernels& sse2() { return img::pixel_kernels(InstructionSet::kSse2); }

Kernel prepare_image() {
  const auto prepare = [](const img::PixelKernels& kernels) {
    return [&kernels](ClSimpleBitmap& frame) {
      kernels.flip_and_invert(frame.Pixel(), frame.BPRow(), frame.Height());
    };
  };
  return in_place("PrepareImage", true, true, prepare(img::pixel_kernels()), prepare(sse2()),
                  [](ClSimpleBitmap& frame) {
                    cv::Mat mat = mat_of(frame);
                    cv::flip(mat, mat, 0);
                    cv::bitwise_not(mat, mat);
                  });
}

Kernel flip() {
  return in_place(
      "FlipY", true, false, [](ClSimpleBitmap& frame) { frame.FlipY(); },
      [](ClSimpleBitmap& frame) { sse2().flip(frame.Pixel(), frame.BPRow(), frame.Height()); },
      [](ClSimpleBitmap& frame) {
        cv::Mat mat = mat_of(frame);
        cv::flip(mat, mat, 0);
      });
}

Kernel invert() {
  return in_place(
      "Invert", false, true, [](ClSimpleBitmap& frame) { frame.Invert(); },
      [](ClSimpleBitmap& frame) { sse2().invert(frame.Pixel(), frame.PixelSize()); },
      [](ClSimpleBitmap& frame) {
        cv::Mat mat = mat_of(frame);
        cv::bitwise_not(mat, mat);
      });
}

Kernel copy() {
  return {"block copy", {"ours", "limit", "OpenCV"}, [](Size size) {
            ClSimpleBitmap check;
            const ClSimpleBitmap frame = noise(size, 7);
            check = frame;
            require(same_pixels(check, frame), "block copy");
            const auto ours = std::make_shared<ClSimpleBitmap>();
            const auto block = std::make_shared<std::unique_ptr<unsigned char[]>>();
            const auto clone = std::make_shared<cv::Mat>();
            return std::vector<Candidate>{
                {"ours", [ours](ClSimpleBitmap& in) { *ours = in; }},
                {"limit",
                 [block](ClSimpleBitmap& in) {
                   block->reset();
                   block->reset(new unsigned char[in.FullSize()]);
                   std::memcpy(block->get(), in.BI(), in.FullSize());
                 }},
                {"OpenCV", [clone](ClSimpleBitmap& in) { *clone = mat_of(in).clone(); }}};
          }};
}

}  // namespace

std::vector<Kernel> image_kernels() { return {prepare_image(), flip(), invert(), copy()}; }

}  // namespace Osv::bench
