// A calibration engine for frames of any 8-bit size: it cuts them to at most 600 x 400 pixels and
// corrects nothing. It refuses a buffer that is smaller than it is told.

#include <malloc.h>

#include <algorithm>
#include <cstring>

#include "ostrevanhvk3/image_block.h"

#define ENGINE_FUNCTION extern "C" __attribute__((visibility("default")))

namespace {

constexpr long kSmallBuffer = -21;
constexpr long kBufferSmallerThanTold = -99;
constexpr std::size_t kPixelsBegin = sizeof(tagBITMAPINFOHEADER) + 256UL * 4;

char s_engine;

std::size_t stride_of(int width) { return (static_cast<std::size_t>(width) + 3) / 4 * 4; }

}  // namespace

ENGINE_FUNCTION void* CalibrateCreate() { return &s_engine; }

ENGINE_FUNCTION void CalibrateDelete(void** engine) { *engine = nullptr; }

ENGINE_FUNCTION long Calibrate(void* /*engine*/, const tagBITMAPINFOHEADER* input,
                               unsigned long /*input_size*/, tagBITMAPINFOHEADER* output,
                               unsigned long* output_size) {
  const int width = std::min(input->biWidth, 600);
  const int height = std::min(input->biHeight, 400);
  const std::size_t needed = kPixelsBegin + stride_of(width) * static_cast<std::size_t>(height);
  const std::size_t told = *output_size;
  *output_size = needed;
  if (output == nullptr || told < needed) {
    return kSmallBuffer;
  }
  if (malloc_usable_size(output) < told) {
    return kBufferSmallerThanTold;
  }
  const auto* const source = reinterpret_cast<const unsigned char*>(input);
  auto* const target = reinterpret_cast<unsigned char*>(output);
  std::memcpy(target, source, kPixelsBegin);
  output->biWidth = width;
  output->biHeight = height;
  output->biSizeImage = static_cast<std::uint32_t>(needed - kPixelsBegin);
  for (int y = 0; y < height; ++y) {
    const auto row = static_cast<std::size_t>(y);
    std::memcpy(target + kPixelsBegin + row * stride_of(width),
                source + kPixelsBegin + row * stride_of(input->biWidth),
                static_cast<std::size_t>(width));
  }
  return 0;
}

ENGINE_FUNCTION long CalibrateSetData(void* /*engine*/, const unsigned char* /*data*/,
                                      unsigned long /*size*/) {
  return 0;
}

ENGINE_FUNCTION const char* CalibrateGetErrorDescription(long /*code*/) { return "refused"; }

ENGINE_FUNCTION long ContaminationDetection(void* /*engine*/, const tagBITMAPINFOHEADER* /*bitmap*/,
                                            unsigned long /*size*/, double* level) {
  *level = 0;
  return 0;
}

ENGINE_FUNCTION long CalibrateSetOption(void* /*engine*/, const char* /*option*/) { return 0; }

ENGINE_FUNCTION long CalibrateGetOption(void* /*engine*/, const char* /*name*/, char* /*value*/,
                                        unsigned long* /*length*/) {
  return -37;
}
