#include "libraries/liveness.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "libraries/image.h"

namespace Osv::simulator {
namespace {

constexpr std::array<std::pair<long, const char*>, 10> kTexts = {
    {{kDetectorBadHandle, "Invalid handle"},
     {kDetectorBadArgument, "Invalid argument"},
     {kDetectorNoProperty, "Unknown property"},
     {kDetectorBadValue, "Invalid value of a property"},
     {kDetectorBadImage, "Invalid image"},
     {kDetectorImagesMissing, "The set of images is not complete"},
     {kDetectorNotStarted, "The library is not initialized"},
     {kDetectorNoFinger, "No finger found"},
     {kDetectorSmallBuffer, "The buffer is too small"},
     {kDetectorDoubtful, "The result is doubtful"}}};

constexpr double kBestScore = 100;

/// Sums over the pixels that are finger.
struct Statistics {
  double count = 0;
  double dose_square = 0;  ///< of the ridges: what a pixel differs from the one before it
  double back_square = 0;
  double glow = 0;  ///< what the finger takes from the dark image's level in the backlight
};

double square(double value) { return value * value; }

/// A rate between 0 and 1 that rises with x.
double rising(double x) {
  constexpr double kWidth = 6;
  return 1 / (1 + std::exp(-x / kWidth));
}

}  // namespace

const char* detector_text(long code) {
  const auto* const found = std::find_if(kTexts.begin(), kTexts.end(),
                                         [&](const auto& entry) { return entry.first == code; });
  return found == kTexts.end() ? nullptr : found->second;
}

long LivenessDetector::set_image(std::int32_t kind, const tagBITMAPINFOHEADER* bitmap,
                                 unsigned long size) {
  if (kind < 0 || static_cast<std::size_t>(kind) >= kKinds) {
    return kDetectorBadArgument;
  }
  const auto found = read_bitmap(bitmap, size);
  if (!found.has_value()) {
    return kDetectorBadImage;
  }
  Image& image = m_aImages[static_cast<std::size_t>(kind)];
  image.width = found->width;
  image.height = found->height;
  image.pixels.clear();
  for (int y = 0; y < found->height; ++y) {
    image.pixels.insert(image.pixels.end(), found->row(y), found->row(y) + found->width);
  }
  return kDetectorGood;
}

long LivenessDetector::evaluate(double& score) const {
  constexpr unsigned char kFinger = 200;  // darker pixels of the dose image are finger
  constexpr double kLeastFinger = 0.01;   // of the image
  constexpr double kGoodFinger = 0.05;
  constexpr double kFullGlow = 80;  // levels
  const Image& dose = m_aImages[kDose];
  const Image& back = m_aImages[kBacklight];
  const Image& dark = m_aImages[kDark];
  if (dose.pixels.empty() || back.pixels.size() != dose.pixels.size() ||
      dark.pixels.size() != dose.pixels.size() || back.width != dose.width ||
      dark.width != dose.width) {
    return kDetectorImagesMissing;
  }
  Statistics sums;
  for (std::size_t i = 1; i < dose.pixels.size(); ++i) {
    if (dose.pixels[i] < kFinger) {
      sums.count += 1;
      sums.dose_square += square(dose.pixels[i] - dose.pixels[i - 1]);
      sums.back_square += square(back.pixels[i] - back.pixels[i - 1]);
      sums.glow += dark.pixels[i] - back.pixels[i];
    }
  }
  const double part = sums.count / static_cast<double>(dose.pixels.size());
  if (part < kLeastFinger) {
    return kDetectorNoFinger;
  }
  const double glow = std::clamp(sums.glow / sums.count / kFullGlow, 0.0, 1.0);
  const double likeness = std::sqrt(sums.back_square / std::max(sums.dose_square, 1.0));
  score = kBestScore * glow * std::clamp(1 - 0.5 * likeness, 0.0, 1.0);
  return part < kGoodFinger ? kDetectorDoubtful : kDetectorGood;
}

void LivenessDetector::reset() {
  for (Image& image : m_aImages) {
    image.pixels.clear();
  }
}

double LivenessDetector::crossing() const {
  constexpr double kLevelOne = 48.5;
  constexpr double kLevelTwo = 62.5;
  return m_nSecurityLevel == 1 ? kLevelOne : kLevelTwo;
}

long LivenessDetector::set_property(std::string_view name, const char* value) {
  char* end = nullptr;
  const double number = std::strtod(value, &end);
  const bool is_number = end != value && *end == '\0';
  if (name == "nSecurityLevel") {
    if (!is_number || (number != 1 && number != 2)) {
      return kDetectorBadValue;
    }
    m_nSecurityLevel = static_cast<unsigned int>(number);
    return kDetectorGood;
  }
  if (name != "dQueryScore") {
    return kDetectorNoProperty;
  }
  if (!is_number || !(number >= 0 && number <= kBestScore)) {
    return kDetectorBadValue;
  }
  m_dQueryScore = number;
  return kDetectorGood;
}

long LivenessDetector::property(std::string_view name, std::string& value) const {
  const double distance = m_dQueryScore - crossing();
  if (name == "nSecurityLevel") {
    value = std::to_string(m_nSecurityLevel);
  } else if (name == "dQueryFRR") {
    value = std::to_string(rising(distance));
  } else if (name == "dQueryFAR") {
    value = std::to_string(rising(-distance));
  } else if (name == "dQueryScore") {
    value = std::to_string(m_dQueryScore);
  } else if (name == "Version") {
    value = "1.0.0 simulated";
  } else {
    return kDetectorNoProperty;
  }
  return kDetectorGood;
}

}  // namespace Osv::simulator
