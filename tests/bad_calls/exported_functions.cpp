#include <algorithm>
#include <cstring>
#include <utility>

#include "bad_calls/bad_call.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The exported functions on records and numbers. They need no frame grabber, answer the same in
/// every situation and store no text.

namespace Osv::bad_calls {
namespace {

using namespace lx;

constexpr unsigned int kAllBits = 0xFFFFFFFF;
constexpr unsigned char kFilled = 0xA5;
constexpr unsigned long kNotAsTold = 99;  ///< what came back is not what is documented

/// A record in which every byte is set.
template <typename Record>
Record filled() {
  Record record;
  std::memset(static_cast<void*>(&record), kFilled, sizeof(record));
  return record;
}

template <typename Record>
bool are_same(const Record& left, const Record& right) {
  return std::memcmp(static_cast<const void*>(&left), static_cast<const void*>(&right),
                     sizeof(left)) == 0;
}

unsigned long as_told(bool is) { return is ? 0 : kNotAsTold; }

/// A row of a function that answers the same with a frame grabber and without.
void add(BadCalls& calls, const char* symbol, std::string what,
         std::function<unsigned long(Hands&)> call, const Answer& answer) {
  calls.push_back({.what = std::move(what),
                   .call = std::move(call),
                   .answer = answer,
                   .without_frame_grabber = answer.result,
                   .symbol = symbol});
}

struct Options {
  const char* symbol;
  unsigned int options;
  bool answer;
};

/// Sets with bits that have no meaning.
void add_options(BadCalls& calls) {
  for (const Options& row :
       {Options{symbol::IsLiveMode, ~0x7FU, false}, Options{symbol::IsLiveMode, kAllBits, true},
        Options{symbol::IsPlainMode, kAllBits, false},
        Options{symbol::IsPreviewMode, ~0x10U, false},
        Options{symbol::IsPreviewMode, kAllBits, true},
        Options{symbol::IsPreviewAutoDetectMode, ~0x10U, false},
        Options{symbol::IsPreviewAutoDetectMode, ~0x20U, false},
        Options{symbol::IsPreviewAutoDetectMode, kAllBits, true},
        Options{symbol::IsRollMode, ~0x8U, false}, Options{symbol::IsRollMode, kAllBits, true},
        Options{symbol::IsSignatureMode, ~0x40U, false},
        Options{symbol::IsSignatureMode, kAllBits, true}}) {
    add(calls, row.symbol, row.symbol + std::string(" of ") + std::to_string(row.options),
        [=](Hands& hands) {
          return static_cast<unsigned long>(
              hands.plugin.function<CaptureOptionFunction>(row.symbol)(row.options));
        },
        {row.answer});
  }
}

void add_capture_modes(BadCalls& calls) {
  const std::pair<unsigned int, eCaptureModeIDs> rows[] = {
      {~0x7FU, eCaptureLive},   {0x20, eCaptureLive},    {0x40, eCaptureLive},
      {kAllBits, eCaptureLive}, {~0x7U, eCaptureRolled}, {~0xFU, eCapturePreviewAutoDetect},
      {~0x2FU, eCapturePreview}};
  for (const auto& [options, mode] : rows) {
    add(calls, symbol::CaptureMode, "the capture mode of options " + std::to_string(options),
        [options = options](Hands& hands) {
          return static_cast<unsigned long>(
              hands.plugin.function<CaptureModeFunction>(symbol::CaptureMode)(options));
        },
        {mode});
  }
}

void add_versions(BadCalls& calls) {
  constexpr unsigned short kUnknown[] = {0, 1, 256, 258, 512, 514, 0xFFFF};
  for (const unsigned short version : kUnknown) {
    add(
        calls, symbol::VersionText, "the text of version " + std::to_string(version),
        [version](Hands& hands) {
          return answered([&] {
            hands.plugin.function<VersionTextFunction>(symbol::VersionText)(version);
            return kNotAsTold;
          });
        },
        throws(error_number::UnknownVersion));
  }
}

/// An unknown number clears the values and nothing else.
unsigned long describe_unknown(Hands& hands, unsigned int id, bool with_condition) {
  auto schema = filled<osvlx3_feature_schema>();
  auto expected = schema;
  expected.value_size = 0;
  expected.value_count = 0;
  expected.values = nullptr;
  hands.plugin.function<GetFeatureSchemaFunction>(symbol::GetFeatureSchema)(id, schema,
                                                                            with_condition);
  return as_told(are_same(schema, expected));
}

/// A condition is asked for of a feature that has none.
unsigned long ask_for_condition(Hands& hands, unsigned int id) {
  auto schema = filled<osvlx3_feature_schema>();
  hands.plugin.function<GetFeatureSchemaFunction>(symbol::GetFeatureSchema)(id, schema, true);
  return as_told(schema.id == id && schema.condition == 0 && schema.value_size == 0 &&
                 schema.value_count == 0 && schema.values == nullptr);
}

void add_schemas(BadCalls& calls) {
  for (const unsigned int id : {0U, 2U, 4U, 9U, 11U, 30U, 49U, 56U, kAllBits}) {
    for (const bool with_condition : {false, true}) {
      add(calls, symbol::GetFeatureSchema, "the schema of feature " + std::to_string(id),
          [=](Hands& hands) { return describe_unknown(hands, id, with_condition); }, {});
    }
  }
  for (const unsigned int id : {52U, 53U, 54U}) {
    add(calls, symbol::GetFeatureSchema, "the condition of feature " + std::to_string(id),
        [=](Hands& hands) { return ask_for_condition(hands, id); }, {});
  }
}

unsigned long copy_none(Hands& hands) {
  osvlx3_feature_schema other;
  osvlx3_feature_schema* copy = &other;
  hands.plugin.function<CopyFeatures1Function>(symbol::CopyFeatures1)(nullptr, 0, &copy);
  const bool is_told = copy != &other;
  hands.plugin.free()(is_told ? copy : nullptr);
  return as_told(is_told);
}

/// More records than there is memory for: the target stays.
unsigned long copy_too_many(Hands& hands) {
  const auto source = filled<osvlx3_feature_schema>();
  osvlx3_feature_schema other;
  osvlx3_feature_schema* copy = &other;
  const unsigned long result = answered([&] {
    hands.plugin.function<CopyFeatures1Function>(symbol::CopyFeatures1)(&source, kAllBits, &copy);
    return kNotAsTold;
  });
  return copy == &other ? result : kNotAsTold;
}

/// Values of one record for which there is no memory: the array is the client's all the same.
unsigned long copy_too_large(Hands& hands) {
  const auto source = filled<osvlx3_feature_schema>();
  osvlx3_feature_schema* copy = nullptr;
  const unsigned long result = answered([&] {
    hands.plugin.function<CopyFeatures1Function>(symbol::CopyFeatures1)(&source, 1, &copy);
    return kNotAsTold;
  });
  const bool is_told = copy != nullptr && are_same(*copy, source);
  hands.plugin.free()(copy);
  return is_told ? result : kNotAsTold;
}

void add_copies(BadCalls& calls) {
  add(calls, symbol::CopyFeatures1, "a copy of no schemas at nothing", &copy_none, {});
  add(calls, symbol::CopyFeatures1, "a copy of more schemas than there is memory", &copy_too_many,
      throws_without_number());
  add(calls, symbol::CopyFeatures1, "a copy with more values than there is memory", &copy_too_large,
      throws_without_number());
}

/// A name that fills its field, without an end.
unsigned long list_endless_name(Hands& hands) {
  constexpr std::size_t kLongest = 99;
  auto device = filled<DeviceInfo>();
  DeviceInfo expected{};
  std::fill_n(expected.szSerialNumber, kLongest, static_cast<char>(kFilled));
  expected.nInterface = 0xA5A5A5A5;
  hands.plugin.function<UnitToDeviceFunction>(symbol::UnitToDevice)(filled<osvlx3_unit_schema>(),
                                                                    device);
  return as_told(are_same(device, expected));
}

/// The same the other way round, with a number of channels that no scanner has.
unsigned long describe_endless_serial(Hands& hands) {
  auto unit = filled<osvlx3_unit_schema>();
  osvlx3_unit_schema expected{};
  expected.id = 0xA5A5A5A5;
  expected.channels = kAllBits;
  std::fill_n(expected.name, sizeof(DeviceInfo::szSerialNumber), kFilled);
  hands.plugin.function<DeviceToUnitFunction>(symbol::DeviceToUnit)(filled<DeviceInfo>(), unit,
                                                                    kAllBits);
  return as_told(are_same(unit, expected));
}

/// Wraps an image that is nothing but its header.
unsigned long wrap(Hands& hands, const tagBITMAPINFOHEADER& header) {
  const auto untouched = filled<osvlx3_biometric_data>();
  auto target = untouched;
  const unsigned long result = answered([&] {
    hands.plugin.function<ImageToBiodataFunction>(symbol::ImageToBiodata)(
        reinterpret_cast<const unsigned char*>(&header), &target);
    return 0UL;
  });
  if (result != 0) {
    return are_same(target, untouched) ? result : kNotAsTold;
  }
  const bool is_told = target.size == sizeof(osvlx3_biometric_image) && target.count == 1;
  hands.plugin.free()(target.data);
  return as_told(is_told);
}

void add_images(BadCalls& calls) {
  constexpr std::int32_t kMost = 0x7FFFFFFF;
  const auto row = [&](const char* what, std::int32_t width, std::int32_t height,
                       std::uint16_t depth, const Answer& answer) {
    const tagBITMAPINFOHEADER header = {
        sizeof(tagBITMAPINFOHEADER), width, height, 1, depth, 0, 0, 0, 0, 0, 0};
    add(
        calls, symbol::ImageToBiodata, what, [=](Hands& hands) { return wrap(hands, header); },
        answer);
  };
  row("an envelope around nothing", 0, 0, 8, {});
  row("an envelope around a width below 0", -1, 1, 8, throws_without_number());
  row("an envelope around a height below 0", 1, -1, 8, throws_without_number());
  row("an envelope around rows of 4 GiB and more", kMost, 1, 32, throws_without_number());
  row("an envelope around more than there is memory", kMost, kMost, 8, throws_without_number());
}

}  // namespace

BadCalls records_and_numbers() {
  BadCalls calls;
  add_options(calls);
  add_capture_modes(calls);
  add_versions(calls);
  add_schemas(calls);
  add_copies(calls);
  add(calls, symbol::UnitToDevice, "a list record of a name without an end", &list_endless_name,
      {});
  add(calls, symbol::DeviceToUnit, "a unit of a serial number without an end",
      &describe_endless_serial, {});
  add_images(calls);
  return calls;
}

BadCalls frame_grabbers() {
  return {{.what = "the frame grabber once more",
           .call =
               [](Hands& hands) {
                 return as_told(&hands.plugin.grabber() == &hands.grabber &&
                                hands.plugin.pointer("m_pDummy") == nullptr);
               },
           .answer = {},
           .symbol = symbol::GetFrameGrabber}};
}

}  // namespace Osv::bad_calls
