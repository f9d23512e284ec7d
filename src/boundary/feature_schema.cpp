#include "boundary/feature_schema.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace Osv::lx {
namespace {

/// A feature's minimum and maximum, and the type of both.
struct Limits {
  enum class eType { Byte, Unsigned, Signed };

  eType type;
  std::int64_t min;
  std::int64_t max;
};

struct Row {
  unsigned int id;
  const char* name;
  const char* description;
  std::optional<Limits> limits = {};
};

constexpr Limits bytes(std::int64_t min, std::int64_t max) {
  return {Limits::eType::Byte, min, max};
}

constexpr Limits unsigned_numbers(std::int64_t min, std::int64_t max) {
  return {Limits::eType::Unsigned, min, max};
}

constexpr Limits signed_numbers(std::int64_t min, std::int64_t max) {
  return {Limits::eType::Signed, min, max};
}

constexpr unsigned int kChannelCount = 3;
constexpr unsigned int kLiveliness = 6;
constexpr unsigned int kRedLED = 7;
constexpr unsigned int kGreenLED = 8;
constexpr unsigned int kBeeperData = 20;
constexpr unsigned int kAutoCaptureBeep = 21;
constexpr unsigned int kFastPreviewMask = 22;
constexpr unsigned int kRotateAndCrop = 23;
constexpr unsigned int kCaptureOptions = 51;
constexpr unsigned int kDisplayData = 52;

// Full stops and capitals as clients see them.
constexpr std::array<Row, 23> kRows = {{
    {kChannelCount, "Number of channels",
     "The feature describes a maximal number of input channels or cameras of a scanner",
     bytes(0, 255)},
    {kLiveliness, "Liveliness",
     "The liveliness feature describes a liveliness level supported by a scanner", bytes(0, 2)},
    {kRedLED, "Red LED", "The feature controls a red LED of a scanner", bytes(0, 1)},
    {kGreenLED, "Green LED", "The feature controls a green LED of a scanner", bytes(0, 1)},
    {10, "LEDS", "Scanner Leds", unsigned_numbers(0, 0xFFFFFFFF)},
    {12, "Fake detection", "Fake detection threshold", bytes(0, 100)},
    {13, "Low contrast image", "use mask for low contrast images", bytes(0, 1)},
    {kBeeperData, "Beeper data", "The feature describes beeper data", signed_numbers(0, -1)},
    {kAutoCaptureBeep, "Auto capture beep",
     "The feature controls the auto capture beep of a scanner", bytes(0, 1)},
    {kFastPreviewMask, "Use fast preview mask",
     "The feature controls if a fast preview mask shall be used or not", bytes(0, 1)},
    {kRotateAndCrop, "Rotate and crop rolled image",
     "The feature controls if the final image at the end of a roll sequence shall be auto rotated "
     "and cropped",
     bytes(0, 1)},
    {24, "Signature Filter", "Sigma value for signature filter 10000 == 1.0.",
     signed_numbers(0, 500000)},
    {25, "Signature Detect", "Detect timeout for signature function in ms.",
     signed_numbers(0, 20000)},
    {26, "Signature Sensor Mode", "Full scanner surface (0) or lower half (1).",
     signed_numbers(0, 1)},
    {27, "Reset Image.", "Clears image in incremental image modes.", signed_numbers(0, 1)},
    {28, "Desired Width.", "Defines image output width.", signed_numbers(0, 16383)},
    {29, "Desired Height.", "Defines image output height.", signed_numbers(0, 16383)},
    {50, "Contamination level", "get contamination level", unsigned_numbers(0, 100)},
    {kCaptureOptions, "Capture option", "The feature describes capture options that unit supports",
     signed_numbers(0, -1)},
    {kDisplayData, "Display data", "The feature describes display data"},
    {53, "SetNewAuthorizationCode", "set KR authorization code (7 bytes)"},
    {54, "Secret7Bytes",
     "KR secret 7 bytes (14 bytes total: 7 bytes authorization + secret 7 bytes)"},
    {55, "Image data format", "the format used with image callbacks", bytes(1, 2)},
}};

/// Null for a number that no row has.
const Row* find_row(unsigned int id) {
  const auto* const row =
      std::find_if(kRows.begin(), kRows.end(), [id](const Row& each) { return each.id == id; });
  return row == kRows.end() ? nullptr : row;
}

template <typename T>
void set_limits(const Limits& limits, osvlx3_feature_schema& schema) {
  init_feature_minmax_cond(schema, static_cast<T>(limits.min), static_cast<T>(limits.max));
}

void add_condition(const Row& row, osvlx3_feature_schema& schema) {
  if (!row.limits) {
    return;
  }
  switch (row.limits->type) {
    case Limits::eType::Byte:
      return set_limits<unsigned char>(*row.limits, schema);
    case Limits::eType::Unsigned:
      return set_limits<unsigned int>(*row.limits, schema);
    case Limits::eType::Signed:
      return set_limits<int>(*row.limits, schema);
  }
}

/// A feature whose `condition` stays as it was when none is asked for.
void fill(unsigned int id, osvlx3_feature_schema& schema, bool withCondition) {
  const Row* const row = find_row(id);
  if (row == nullptr) {
    return;
  }
  schema.id = row->id;
  str2lx3str(row->name, schema.name);
  str2lx3str(row->description, schema.description);
  if (withCondition) {
    add_condition(*row, schema);
  }
}

/// A feature whose `condition` is 0 when none is asked for.
void fill_anew(unsigned int id, osvlx3_feature_schema& schema, bool withCondition) {
  schema.condition = 0;
  fill(id, schema, withCondition);
}

void fill_simple(const Row& row, osvlx3_feature_schema& schema, bool withCondition) {
  GetSimpleFeatureSchema(row.id, schema, row.name, row.description);
  if (withCondition) {
    add_condition(row, schema);
  }
}

/// A block of its own for `size` bytes. With 0 bytes `source` may be null.
void* copy_of(const void* source, std::size_t size) {
  MAllocPointer memory(size);
  if (size != 0) {
    std::memcpy(memory.get(), source, size);
  }
  return memory.detach();
}

}  // namespace

void str2lx3str(const char* source, unsigned char* target) {
  constexpr std::size_t kLongest = sizeof(osvlx3_feature_schema::name) - 1;
  std::strncpy(reinterpret_cast<char*>(target), source, kLongest);
  target[kLongest] = 0;
}

void GetChannelCountFeatureSchema(osvlx3_feature_schema& schema, bool withCondition) {
  fill(kChannelCount, schema, withCondition);
}

void GetLivelinessFeatureSchema(osvlx3_feature_schema& schema, bool withCondition) {
  fill(kLiveliness, schema, withCondition);
}

void GetLEDFeatureSchema(unsigned int id, osvlx3_feature_schema& schema, bool withCondition) {
  fill(id, schema, withCondition);
}

void GetAutoCaptureBeepFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                     bool withCondition) {
  fill(id, schema, withCondition);
}

void GetUseFastPreviewMaskFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                        bool withCondition) {
  fill(id, schema, withCondition);
}

void GetUseRotateAndCropRolledImageFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                                 bool withCondition) {
  fill(id, schema, withCondition);
}

void GetBeeperDataFeatureSchema(osvlx3_feature_schema& schema, bool withCondition) {
  fill_anew(kBeeperData, schema, withCondition);
}

void GetCaptureOptionsFeatureSchema(osvlx3_feature_schema& schema, bool withCondition) {
  fill_anew(kCaptureOptions, schema, withCondition);
}

void GetDisplayDataFeatureSchema(osvlx3_feature_schema& schema, bool withCondition) {
  fill_anew(kDisplayData, schema, withCondition);
}

void GetSimpleFeatureSchema(unsigned int id, osvlx3_feature_schema& schema, const char* name,
                            const char* description) {
  schema.id = id;
  str2lx3str(name, schema.name);
  str2lx3str(description, schema.description);
  schema.condition = 0;
  schema.value_size = 0;
  schema.value_count = 0;
  schema.values = nullptr;
}

void GetFeatureSchema(unsigned int id, osvlx3_feature_schema& schema, bool withCondition) {
  schema.value_size = 0;
  schema.value_count = 0;
  schema.values = nullptr;
  const Row* const row = find_row(id);
  if (row == nullptr) {
    return;
  }
  switch (id) {
    case kChannelCount:
      return GetChannelCountFeatureSchema(schema, withCondition);
    case kLiveliness:
      return GetLivelinessFeatureSchema(schema, withCondition);
    case kRedLED:
    case kGreenLED:
      return GetLEDFeatureSchema(id, schema, withCondition);
    case kBeeperData:
      return GetBeeperDataFeatureSchema(schema, withCondition);
    case kAutoCaptureBeep:
      return GetAutoCaptureBeepFeatureSchema(id, schema, withCondition);
    case kFastPreviewMask:
      return GetUseFastPreviewMaskFeatureSchema(id, schema, withCondition);
    case kRotateAndCrop:
      return GetUseRotateAndCropRolledImageFeatureSchema(id, schema, withCondition);
    case kCaptureOptions:
      return GetCaptureOptionsFeatureSchema(schema, withCondition);
    case kDisplayData:
      return GetDisplayDataFeatureSchema(schema, withCondition);
    default:
      return fill_simple(*row, schema, withCondition);
  }
}

void CopyFeatures1(const osvlx3_feature_schema* source, unsigned int count,
                   osvlx3_feature_schema** target) {
  const std::size_t size = std::size_t{count} * sizeof(osvlx3_feature_schema);
  // The array is the caller's from here on, also when a copy of values fails.
  *target = static_cast<osvlx3_feature_schema*>(copy_of(source, size));
  for (osvlx3_feature_schema* copy = *target; copy != *target + count; ++copy) {
    if (copy->condition != 0) {
      copy->values = copy_of(copy->values, std::size_t{copy->value_count} * copy->value_size);
    }
  }
}

}  // namespace Osv::lx
