#ifndef OSTREVANHVK3_FEATURE_SCHEMA_H
#define OSTREVANHVK3_FEATURE_SCHEMA_H

/// @file
/// Descriptions of features and units, the envelope around a sample, and capture options: records,
/// and the functions on them that `libostrevanhvk3.so` exports for its client's use.
///
/// None of the functions touches a scanner, needs a frame grabber, blocks or has any state: they
/// may be called on any thread, several at a time. Memory that they allocate comes from `malloc`
/// and is the caller's, who gives it back with `LXSP_Free`. They throw `std::bad_alloc` when memory
/// runs out, and then what was allocated before stays the caller's. No pointer may be null.

#include <cstddef>
#include <cstdint>

#include "ostrevanhvk3/device_info.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/visibility.h"

/// What a feature is. 536 bytes, a binary format between client and plug-in.
struct osvlx3_feature_schema {
  std::uint32_t id;                ///< feature number
  unsigned char name[255];         ///< ended by a zero byte
  unsigned char description[255];  ///< ended by a zero byte
  std::uint16_t reserved;          ///< padding
  std::uint32_t condition;         ///< 1: the values give minimum and maximum; 0: no condition
  std::uint32_t value_size;        ///< bytes of one condition value
  std::uint32_t value_count;       ///< number of condition values: 2 with minimum and maximum
  void* values;                    ///< from `malloc`: minimum, then maximum; the record's holder's
};

static_assert(offsetof(osvlx3_feature_schema, id) == 0, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, name) == 4, "the record is a binary contract");
static_assert(sizeof(osvlx3_feature_schema::name) == 255, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, description) == 259,
              "the record is a binary contract");
static_assert(sizeof(osvlx3_feature_schema::description) == 255, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, reserved) == 514, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, condition) == 516, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, value_size) == 520,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, value_count) == 524,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_feature_schema, values) == 528, "the record is a binary contract");
static_assert(sizeof(osvlx3_feature_schema) == 536, "the record is a binary contract");

/// What a unit is: a scanner in a list. 1292 bytes, a binary format between client and plug-in.
struct osvlx3_unit_schema {
  std::uint32_t id;              ///< unit number: the interface number of a `DeviceInfo`
  unsigned char reserved1[264];  ///< zero
  std::uint32_t channels;        ///< number of channels
  unsigned char reserved2[510];  ///< zero
  unsigned char name[255];       ///< the serial number, ended by a zero byte
  unsigned char reserved3[255];  ///< zero
};

static_assert(offsetof(osvlx3_unit_schema, id) == 0, "the record is a binary contract");
static_assert(offsetof(osvlx3_unit_schema, reserved1) == 4, "the record is a binary contract");
static_assert(offsetof(osvlx3_unit_schema, channels) == 268, "the record is a binary contract");
static_assert(offsetof(osvlx3_unit_schema, reserved2) == 272, "the record is a binary contract");
static_assert(offsetof(osvlx3_unit_schema, name) == 782, "the record is a binary contract");
static_assert(sizeof(osvlx3_unit_schema::name) == 255, "the record is a binary contract");
static_assert(offsetof(osvlx3_unit_schema, reserved3) == 1037, "the record is a binary contract");
static_assert(sizeof(osvlx3_unit_schema) == 1292, "the record is a binary contract");

/// An envelope around one sample. 40 bytes, a binary format between client and plug-in.
struct osvlx3_biometric_data {
  std::uint8_t tag1;           ///< 1
  unsigned char reserved1[3];  ///< padding
  std::uint32_t tag2;          ///< 1
  std::uint32_t tag3;          ///< 0
  std::uint32_t reserved2;     ///< padding
  std::uint64_t size;          ///< bytes of the whole block
  std::uint64_t count;         ///< 1
  void* data;                  ///< an `osvlx3_biometric_image` from `malloc`, the receiver's
};

static_assert(offsetof(osvlx3_biometric_data, tag1) == 0, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, reserved1) == 1, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, tag2) == 4, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, tag3) == 8, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, reserved2) == 12, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, size) == 16, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, count) == 24, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_data, data) == 32, "the record is a binary contract");
static_assert(sizeof(osvlx3_biometric_data) == 40, "the record is a binary contract");

/// The sample: this header of 48 bytes, and the pixels behind it in the same block.
struct osvlx3_biometric_image {
  std::int32_t width;             ///< pixels
  std::int32_t height;            ///< pixels
  std::uint32_t bytes_per_row;    ///< padding included
  std::uint8_t bits_per_pixel;    ///< as in the image's own header
  unsigned char reserved[3];      ///< padding
  std::int32_t x_pels_per_meter;  ///< horizontal resolution, pixels per metre
  std::int32_t y_pels_per_meter;  ///< vertical resolution, pixels per metre
  std::uint64_t pixel_size;       ///< bytes of the pixels
  std::uint64_t count;            ///< 1
  unsigned char* pixels;          ///< into this block, behind this header
};

static_assert(offsetof(osvlx3_biometric_image, width) == 0, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, height) == 4, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, bytes_per_row) == 8,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, bits_per_pixel) == 12,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, reserved) == 13, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, x_pels_per_meter) == 16,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, y_pels_per_meter) == 20,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, pixel_size) == 24,
              "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, count) == 32, "the record is a binary contract");
static_assert(offsetof(osvlx3_biometric_image, pixels) == 40, "the record is a binary contract");
static_assert(sizeof(osvlx3_biometric_image) == 48, "the record is a binary contract");

namespace Osv {
namespace lx {

/// @name Schemas
/// @{

/// Describes a feature.
///
/// Zero the record first: an unknown number clears only `value_size`, `value_count` and `values`,
/// and some features leave `condition` alone when no condition is asked for. What `values` points
/// to on entry is not freed.
/// @param id 3 to 55; features that are known to the interface are described, also those that this
///   family of scanners does not have
/// @param schema the caller's record, which is filled
/// @param withCondition true to have `condition` 1 and the values allocated, for features that have
///   a minimum and a maximum
OSTREVANHVK3_EXPORT void GetFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                          bool withCondition);

/// Copies descriptions, the values of those with a condition included.
///
/// When there is no memory for the array, `*target` is untouched. When there is none for the values
/// of a copy, those before the one that failed have values of their own; that one and those behind
/// it still point to the values of the source.
/// @param source `count` records
/// @param count number of records
/// @param target receives an array of `count` records; first give back the `values` of each, then
///   the array
OSTREVANHVK3_EXPORT void CopyFeatures1(const osvlx3_feature_schema* source, unsigned int count,
                                       osvlx3_feature_schema** target);
/// @}

/// @name Units
/// @{

/// The list record of a unit. Cuts the name at 99 characters.
OSTREVANHVK3_EXPORT void unit_schema2dev_info(const osvlx3_unit_schema& unit, DeviceInfo& device);

/// The unit of a list record.
/// @param device a record of `AvailableDevices`
/// @param unit the caller's record, which is filled
/// @param channels goes into the record as it is
OSTREVANHVK3_EXPORT void dev_info2unit_schema(const DeviceInfo& device, osvlx3_unit_schema& unit,
                                              unsigned int channels);
/// @}

/// @name Samples
/// @{

/// Wraps a copy of an image.
/// @param bitmap an image block as a callback or `GetImage` delivers it (see image_block.h)
/// @param target receives the envelope; give `data` back with `LXSP_Free`. Padding stays as it was
/// @throws std::bad_alloc also for a width or height below 0 and for rows of 4 GiB and more
OSTREVANHVK3_EXPORT void image2biodata(const unsigned char* bitmap, osvlx3_biometric_data* target);

/// The text for a version of the interface: "1.0" for 257, "2.0" for 513.
/// @return a constant of the plug-in, valid while it is loaded
/// @throws CLX3ModuleException 74 for any other version
OSTREVANHVK3_EXPORT const char* infver2str(unsigned short version);
/// @}

/// @name Capture options
/// A bit set. Options without a meaning are ignored.
/// @{

/// True for 0 and for each set that has one of the bits 0x1, 0x2, 0x4.
OSTREVANHVK3_EXPORT bool isLiveMode(unsigned int options);

/// Always false.
OSTREVANHVK3_EXPORT bool isPlainMode(unsigned int options);

/// True with bit 0x10.
OSTREVANHVK3_EXPORT bool isPreviewMode(unsigned int options);

/// True with both bits 0x10 and 0x20.
OSTREVANHVK3_EXPORT bool isPreviewAutoDetectMode(unsigned int options);

/// True with bit 0x8.
OSTREVANHVK3_EXPORT bool isRollMode(unsigned int options);

/// True with bit 0x40.
OSTREVANHVK3_EXPORT bool isSignatureMode(unsigned int options);

/// The capture mode that a set of options asks for: live before rolled before preview with
/// automatic detection before preview; live for what asks for none of them.
OSTREVANHVK3_EXPORT eCaptureModeIDs CapOption2CapMode(unsigned int options);
/// @}

/// A pointer to an exported function, as `dlsym` gives it.
/// @{
typedef void (*GetFeatureSchemaFunction)(unsigned int, osvlx3_feature_schema&, bool);
typedef void (*CopyFeatures1Function)(const osvlx3_feature_schema*, unsigned int,
                                      osvlx3_feature_schema**);
typedef void (*UnitToDeviceFunction)(const osvlx3_unit_schema&, DeviceInfo&);
typedef void (*DeviceToUnitFunction)(const DeviceInfo&, osvlx3_unit_schema&, unsigned int);
typedef void (*ImageToBiodataFunction)(const unsigned char*, osvlx3_biometric_data*);
typedef const char* (*VersionTextFunction)(unsigned short);
typedef bool (*CaptureOptionFunction)(unsigned int);
typedef eCaptureModeIDs (*CaptureModeFunction)(unsigned int);
/// @}

/// The names to look up, which carry the parameter types.
namespace symbol {
/// The symbol of an exported function.
/// @{
constexpr char GetFeatureSchema[] = "_ZN3Osv2lx16GetFeatureSchemaEjR21osvlx3_feature_schemab";
constexpr char CopyFeatures1[] = "_ZN3Osv2lx13CopyFeatures1EPK21osvlx3_feature_schemajPPS1_";
constexpr char UnitToDevice[] =
    "_ZN3Osv2lx20unit_schema2dev_infoERK18osvlx3_unit_schemaR10DeviceInfo";
constexpr char DeviceToUnit[] =
    "_ZN3Osv2lx20dev_info2unit_schemaERK10DeviceInfoR18osvlx3_unit_schemaj";
constexpr char ImageToBiodata[] = "_ZN3Osv2lx13image2biodataEPKhP21osvlx3_biometric_data";
constexpr char VersionText[] = "_ZN3Osv2lx10infver2strEt";
constexpr char IsLiveMode[] = "_ZN3Osv2lx10isLiveModeEj";
constexpr char IsPlainMode[] = "_ZN3Osv2lx11isPlainModeEj";
constexpr char IsPreviewMode[] = "_ZN3Osv2lx13isPreviewModeEj";
constexpr char IsPreviewAutoDetectMode[] = "_ZN3Osv2lx23isPreviewAutoDetectModeEj";
constexpr char IsRollMode[] = "_ZN3Osv2lx10isRollModeEj";
constexpr char IsSignatureMode[] = "_ZN3Osv2lx15isSignatureModeEj";
constexpr char CaptureMode[] = "_ZN3Osv2lx17CapOption2CapModeEj";
/// @}
}  // namespace symbol

}  // namespace lx
}  // namespace Osv

#endif
