#include <libyuv/scale.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "foundation/bitmap_rescale.h"
#include "foundation/rescale_reference.h"
#include "kernels.h"
#include "memory_limits.h"

namespace Osv::bench {
namespace {

using utilities::ClSimpleBitmap;

cv::Mat mat_of(ClSimpleBitmap& frame) {
  return {static_cast<int>(frame.Height()), static_cast<int>(frame.Width()), CV_8UC1, frame.Pixel(),
          frame.BPRow()};
}

void require_equal(const ClSimpleBitmap& out, const ClSimpleBitmap& expected,
                   const std::string& what) {
  require(out.FullSize() == expected.FullSize() &&
              std::memcmp(out.BI(), expected.BI(), out.FullSize()) == 0,
          what);
}

/// A new block of so many pixels, written once.
Candidate write_of(Size size) {
  return {"limit", [size](ClSimpleBitmap&) {
            ClSimpleBitmap target;
            target.Create(size.width, size.height, 8, 0);
            write_pass(target.Pixel(), target.PixelSize());
          }};
}

/// By five to four or four to five. OpenCV reckons in fixed point, so its pixels are others.
Kernel bilinear(const std::string& name, unsigned long numerator, unsigned long denominator) {
  return {name, {"ours", "SSE2", "limit", "OpenCV"}, [=](Size size) {
            const Size target{size.width * numerator / denominator,
                              size.height * numerator / denominator};
            const ClSimpleBitmap frame = noise(size, 7);
            require_equal(utilities::interpolated(frame, target.width, target.height),
                          testing_support::reference_bilinear(frame, target.width, target.height),
                          name);
            const auto interpolate = [target](const img::PixelKernels& kernels) {
              return [target, &kernels](ClSimpleBitmap& in) {
                utilities::interpolated(in, target.width, target.height, kernels);
              };
            };
            const auto scaled = std::make_shared<cv::Mat>();
            return std::vector<Candidate>{
                {"ours", interpolate(img::pixel_kernels())},
                {"SSE2", interpolate(img::pixel_kernels(InstructionSet::kSse2))},
                write_of(target),
                {"OpenCV", [target, scaled](ClSimpleBitmap& in) {
                   cv::resize(mat_of(in), *scaled,
                              {static_cast<int>(target.width), static_cast<int>(target.height)}, 0,
                              0, cv::INTER_LINEAR);
                 }}};
          }};
}

void scale_plane(ClSimpleBitmap& in, ClSimpleBitmap& out) {
  libyuv::ScalePlane(in.Pixel(), static_cast<int>(in.BPRow()), static_cast<int>(in.Width()),
                     static_cast<int>(in.Height()), out.Pixel(), static_cast<int>(out.BPRow()),
                     static_cast<int>(out.Width()), static_cast<int>(out.Height()),
                     libyuv::kFilterNone);
}

Kernel doubling() {
  return {"Rescale doubling", {"ours", "SSE2", "limit", "libyuv"}, [](Size size) {
            const Size target{2 * size.width, 2 * size.height};
            ClSimpleBitmap frame = noise(size, 7);
            const ClSimpleBitmap expected = testing_support::reference_double(frame);
            require_equal(utilities::doubled(frame), expected, "Rescale doubling");
            const auto out = std::make_shared<ClSimpleBitmap>(expected);
            out->SetBlack();
            scale_plane(frame, *out);
            require_equal(*out, expected, "ScalePlane");
            return std::vector<Candidate>{
                {"ours", [](ClSimpleBitmap& in) { utilities::doubled(in); }},
                {"SSE2",
                 [](ClSimpleBitmap& in) {
                   utilities::doubled(in, img::pixel_kernels(InstructionSet::kSse2));
                 }},
                write_of(target),
                {"libyuv", [out](ClSimpleBitmap& in) { scale_plane(in, *out); }}};
          }};
}

}  // namespace

std::vector<Kernel> rescale_kernels() {
  return {bilinear("Rescale bilinear, up", 5, 4), bilinear("Rescale bilinear, down", 4, 5),
          doubling()};
}

}  // namespace Osv::bench
