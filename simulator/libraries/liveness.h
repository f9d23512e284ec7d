#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevanhvk3/image_block.h"

/// @file
/// The detector: it knows its properties and the images that were pushed.

namespace Osv::simulator {

/// Codes of the detector.
enum eDetectorCode : long {
  kDetectorGood = 0,
  kDetectorBadHandle = -2,
  kDetectorBadArgument = -3,
  kDetectorNoProperty = -4,
  kDetectorBadValue = -5,
  kDetectorBadImage = -6,       ///< no plain 8-bit bitmap, or cut off
  kDetectorImagesMissing = -7,  ///< not all three images, or of different sizes
  kDetectorNotStarted = -8,
  kDetectorNoFinger = -15,
  kDetectorSmallBuffer = -21,
  kDetectorDoubtful = -768  ///< there is a score, but of little finger
};

/// The text for a code, null for one that the detector doesn't use.
const char* detector_text(long code);

/// One instance. One thread at a time.
class LivenessDetector {
 public:
  /// Kinds of images.
  enum eKind : std::int32_t { kDose = 0, kBacklight = 1, kDark = 2 };

  [[nodiscard]] long set_image(std::int32_t kind, const tagBITMAPINFOHEADER* bitmap,
                               unsigned long size);

  /// Scores the images from 0 to 100, above the crossing of the error curves for live skin. Skin
  /// lets the backlight through, so that a finger stands dark before it and its ridges fade; what
  /// is printed or moulded shows the same picture in every light.
  [[nodiscard]] long evaluate(double& score) const;

  /// Forgets the images.
  void reset();

  [[nodiscard]] long set_property(std::string_view name, const char* value);

  /// The value of a property, or `kDetectorNoProperty`.
  [[nodiscard]] long property(std::string_view name, std::string& value) const;

 private:
  static constexpr std::size_t kKinds = 3;

  struct Image {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
  };

  double crossing() const;

  std::array<Image, kKinds> m_aImages;
  unsigned int m_nSecurityLevel = 1;
  double m_dQueryScore = 0;
};

}  // namespace Osv::simulator
