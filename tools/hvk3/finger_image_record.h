#pragma once

#include <cstdio>
#include <optional>

#include "hvk3/image.h"

/// @file
/// The finger image record of ISO/IEC 19794-4, edition of 2005: one finger, one view.

namespace hvk3 {

enum class eFingerPosition : unsigned char {
  Unknown = 0,
  RightThumb = 1,
  RightIndex = 2,
  RightMiddle = 3,
  RightRing = 4,
  RightLittle = 5,
  LeftThumb = 6,
  LeftIndex = 7,
  LeftMiddle = 8,
  LeftRing = 9,
  LeftLittle = 10
};

enum class eImpression : unsigned char { LivePlain = 0, LiveRolled = 1 };

enum class eRecordCompression : unsigned char { None = 0, Png = 5 };

/// What a record says of an image beyond the image itself.
struct RecordDetails {
  eFingerPosition position = eFingerPosition::Unknown;
  eImpression impression = eImpression::LivePlain;
  eRecordCompression compression = eRecordCompression::None;
  std::optional<unsigned int> quality = {};  ///< 0 worst to 100 best; none: not determined
  unsigned int device_id = 0;                ///< as its maker has registered it, 0 for not reported
};

/// Writes the image as a record. @return false when the stream failed
/// @throws Failure `OutputFailed` when the image is too large for one
[[nodiscard]] bool write_finger_image_record(const Image& image, const RecordDetails& details,
                                             std::FILE* stream);

}  // namespace hvk3
