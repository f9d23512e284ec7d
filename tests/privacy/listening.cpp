// Stands in front of the stand-ins for scanner library and calibration engine, which it is linked
// with: the plug-in finds there what is not here. It is the logging facility, too.

#include "privacy/listening.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace {

using Osv::privacy::kFinalPixels;
using Osv::privacy::kRawPixels;
using Line = std::pair<int, std::string>;

std::atomic<unsigned char> g_bits = 0;
std::mutex g_lock;  // guards the lines
std::vector<Line> g_lines;

template <typename Function>
Function stand_in(const char* library, const char* name) {
  const std::string path = std::string(HVK3_SIMULATOR_DIR "/") + library;
  return reinterpret_cast<Function>(dlsym(dlopen(path.c_str(), RTLD_NOW), name));
}

/// The low bits of a pixel, which no two settings have in common with any pixel.
unsigned char with_low_bits(unsigned char pixel) {
  return static_cast<unsigned char>((pixel & 0xF0) | (8 ^ g_bits));
}

template <std::size_t size>
void mark(unsigned char* pixels, std::size_t count, const std::array<unsigned char, size>& marks) {
  const auto changed = [](unsigned char pixel) {
    return static_cast<unsigned char>(pixel ^ g_bits);
  };
  std::transform(pixels, pixels + count, pixels, &with_low_bits);
  std::transform(marks.begin(), marks.end(), pixels, changed);
  std::transform(marks.begin(), marks.end(), pixels + count - size, changed);
}

int marked_frame(int status, void* buffer) {
  constexpr std::size_t kPixels =
      std::size_t{Osv::simulator::kRawWidth} * Osv::simulator::kRawHeight;
  if (status != 0) {
    mark(static_cast<unsigned char*>(buffer), kPixels, kRawPixels);
  }
  return status;
}

std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, again)) + 1, '\0');
  va_end(again);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
  return text;
}

}  // namespace

void privacy_change_pixels(unsigned char bits) { g_bits = bits; }

void privacy_take_lines(Osv::privacy::LineVisitor visit, void* user) {
  const std::lock_guard<std::mutex> lock(g_lock);
  for (const auto& [level, text] : g_lines) {
    visit(level, text.c_str(), user);
  }
  g_lines.clear();
}

HVK3_LISTENING int ftrScanGetImageByVariableDose(void* handle, int dose, void* buffer) {
  using Function = int (*)(void*, int, void*);
  static const auto next = stand_in<Function>("libKR9ScanAPI.so", "ftrScanGetImageByVariableDose");
  return marked_frame(next(handle, dose, buffer), buffer);
}

HVK3_LISTENING int ftrScanGetBacklightImage(void* handle, void* buffer) {
  using Function = int (*)(void*, void*);
  static const auto next = stand_in<Function>("libKR9ScanAPI.so", "ftrScanGetBacklightImage");
  return marked_frame(next(handle, buffer), buffer);
}

HVK3_LISTENING int ftrScanGetDarkImage(void* handle, void* buffer) {
  using Function = int (*)(void*, void*);
  static const auto next = stand_in<Function>("libKR9ScanAPI.so", "ftrScanGetDarkImage");
  return marked_frame(next(handle, buffer), buffer);
}

HVK3_LISTENING long Calibrate(void* handle, tagBITMAPINFOHEADER* input, unsigned long input_size,
                              tagBITMAPINFOHEADER* output, unsigned long* output_size) {
  using Function =
      long (*)(void*, tagBITMAPINFOHEADER*, unsigned long, tagBITMAPINFOHEADER*, unsigned long*);
  static const auto next = stand_in<Function>("libostrevancalibratesdk.so", "Calibrate");
  const long code = next(handle, input, input_size, output, output_size);
  if (code == 0 && output != nullptr) {
    const Osv::lx::ImageView image(reinterpret_cast<const unsigned char*>(output));
    mark(const_cast<unsigned char*>(image.pixels()), image.stride() * image.height(), kFinalPixels);
  }
  return code;
}

HVK3_LISTENING void OsvLFLog(int level, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = formatted(format, arguments);
  va_end(arguments);
  const std::lock_guard<std::mutex> lock(g_lock);
  g_lines.emplace_back(level, std::move(text));
}

HVK3_LISTENING void OsvLFFlush() {}
