#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"
#include "foundation/image_functions.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/image_block.h"
#include "support/memory.h"
#include "support/target.h"

/// @file
/// The records that pass between the plug-in and its client, filled with anything: features of an
/// open scanner, schemas, units and samples.

namespace Osv::fuzz {
namespace {

namespace error_number = lx::error_number;
using Block = std::vector<unsigned char>;

template <typename Record>
Block bytes_of_record(const Record& record) {
  const auto* const first = reinterpret_cast<const unsigned char*>(&record);
  return {first, first + sizeof(record)};
}

/// Requires that a part of a record is as it was, and has it the same in both rounds.
template <typename Part>
void leave_alone(Part& part) {
  require(std::memcmp(&part, unwritten_bytes(sizeof(part)).data(), sizeof(part)) == 0,
          "the rest of a record is left alone");
  std::memset(&part, 0, sizeof(part));
}

/// A frame grabber with a good scanner, which stays open for all runs.
void open_once() {
  static const bool once = [] {
    Input nothing{Bytes()};
    scene().begin(nothing);
    answers().begin({});
    GetFrameGrabber();
    return true;
  }();
  require(once, "the frame grabber is there");
}

// Features of the scanner.

struct FeatureCall {
  osvlx3_feature record = {};
  bool writes = false;
  unsigned int channel = 1;
};

FeatureCall read_call(Input& input) {
  constexpr unsigned int kFirst = 50;
  constexpr unsigned int kSome = 8;
  FeatureCall call;
  const std::uint8_t form = input.byte();
  call.writes = form % 2 != 0;
  call.channel = form % 32 == 30 ? form : 1;
  call.record.id = form < 240 ? kFirst + input.below(kSome) : input.number<std::uint32_t>();
  call.record.count = form % 3 == 0 ? input.number<std::uint64_t>() : input.below(16);
  call.record.size = form % 5 == 0 ? input.number<std::uint64_t>() : input.below(9);
  return call;
}

constexpr std::size_t kCodeSize = 7;
constexpr std::size_t kSecretSize = 7;
constexpr unsigned char kSecretByte = 0x5A;  // all that the scanner protects

/// The format of image data that was set last.
unsigned char g_format = 1;

/// The bytes that a record's feature needs at its data, as documented.
std::size_t room_for(const FeatureCall& call) {
  const std::uint64_t size = call.record.size;
  switch (call.record.id) {
    case eFeatureAuthorizationCode:
      return kCodeSize;
    case eFeatureSecretBytes:
      return kCodeSize + kSecretSize;
    case eFeatureImageDataFormat:
      return call.writes && (size == 1 || size == 2 || size == 4) ? size : 1;
    default:
      return 0;
  }
}

/// How many of these bytes the client gives: to write it gives all, to read no more than a code.
std::size_t given_of(const FeatureCall& call) {
  if (call.writes) {
    return room_for(call);
  }
  return call.record.id == eFeatureSecretBytes ? kCodeSize : 0;
}

/// What becomes of a call: its number, the record, and what it was given to read.
struct Outcome {
  unsigned long result = 0;
  unsigned int thrown = 0;
  std::uint64_t count = 0;
  std::uint64_t size = 0;
  Block data;

  bool operator==(const Outcome&) const = default;
};

/// The room at the data of a call: what the client gives, and behind it what nobody wrote yet.
Block room_of(const FeatureCall& call, const Block& content) {
  Block room = unwritten_bytes(content.size());
  std::copy_n(content.begin(), std::min(given_of(call), content.size()), room.begin());
  return room;
}

/// What a call that succeeds leaves at its data, or allocated for it.
Block take_value(const FeatureCall& call, const unsigned char* room, std::size_t size) {
  auto* const data = static_cast<unsigned char*>(call.record.data);
  if (data == room) {
    return {room, room + size};
  }
  Block value(data, data + call.record.size);
  LXSP_Free(data);
  return value;
}

Outcome carry_out(FeatureCall call, const Block& content) {
  const Block before = room_of(call, content);
  const std::unique_ptr<unsigned char[]> data(new unsigned char[before.size()]);
  std::copy(before.begin(), before.end(), data.get());
  call.record.data = before.empty() ? nullptr : data.get();
  const void* const given = call.record.data;
  Outcome outcome;
  try {
    outcome.result = call.writes ? LXSP_SetFeature(call.channel, &call.record)
                                 : LXSP_GetFeature(call.channel, &call.record);
  } catch (const lx::CLX3ModuleException& refusal) {
    outcome.thrown = refusal.value();
  }
  outcome.count = call.record.count;
  outcome.size = call.record.size;
  const bool filled = !call.writes && outcome.result == 0 && outcome.thrown == 0;
  require(
      (filled && call.record.data == given) || std::equal(before.begin(), before.end(), data.get()),
      "what is not filled is left alone");
  if (filled) {
    outcome.data = take_value(call, data.get(), before.size());
  }
  return outcome;
}

/// The number that a call has to end with on a good scanner, from the record's documentation.
unsigned long refusal_of_bytes(const FeatureCall& call, std::uint64_t count, bool has_data) {
  const osvlx3_feature& record = call.record;
  if (call.writes && record.size != 1) {
    return error_number::ElementSize;
  }
  if (record.count != count) {
    return record.count < count ? error_number::BufferTooSmall : error_number::OutOfRange;
  }
  if (has_data) {
    return 0;
  }
  const unsigned long null = error_number::NullPointer;
  return call.writes ? null : null | error_number::ReportedBit;
}

unsigned long expected_result(const FeatureCall& call, bool has_data) {
  if (call.channel != 1) {
    return error_number::NotConnected;
  }
  switch (call.record.id) {
    case eFeatureAuthorizationCode:
      return call.writes ? refusal_of_bytes(call, 7, has_data)
                         : static_cast<unsigned long>(error_number::WriteOnly);
    case eFeatureSecretBytes:
      return refusal_of_bytes(call, 14, has_data);
    case eFeatureImageDataFormat:
      return 0;
    default:
      return error_number::IncorrectProperty;
  }
}

unsigned int expected_exception(const FeatureCall& call, const Block& data) {
  const std::uint64_t size = call.record.size;
  if (call.channel != 1 || call.record.id != eFeatureImageDataFormat) {
    return 0;
  }
  const bool is_number = size == 1 || (call.writes && (size == 2 || size == 4));
  if (!call.writes && call.record.count == 0) {
    return 0;
  }
  if (!is_number) {
    return error_number::ElementSize;
  }
  if (data.empty()) {
    return error_number::NullPointer;
  }
  const bool known = !call.writes || data[0] == 1 || data[0] == 2;
  return known ? 0 : error_number::OutOfRange;
}

/// What a call that succeeds reads.
Block expected_value(const FeatureCall& call, const Block& content) {
  if (call.record.id == eFeatureImageDataFormat) {
    return {g_format};
  }
  Block value(content.begin(), content.begin() + kCodeSize);
  value.insert(value.end(), kSecretSize, kSecretByte);
  return value;
}

void call_feature(Input& input) {
  open_once();
  const FeatureCall call = read_call(input);
  const bool has_data = input.below(8) != 0;
  const Bytes bytes = input.bytes(has_data ? room_for(call) : 0);
  Block content(bytes.begin(), bytes.end());
  content.resize(has_data ? room_for(call) : 0);
  const Outcome outcome = written_whole([&] { return carry_out(call, content); });
  require(outcome.result == expected_result(call, !content.empty()), "a call has its number");
  require(outcome.thrown == expected_exception(call, content), "a refusal has its number");
  if (outcome.result != 0 || outcome.thrown != 0) {
    return;
  }
  if (!call.writes) {
    require(outcome.data == expected_value(call, content), "what is read is what the scanner has");
  } else if (call.record.id == eFeatureImageDataFormat) {
    g_format = content[0];
  }
}

// Schemas.

Block bytes_of(osvlx3_feature_schema schema) {
  const auto* const values = static_cast<const unsigned char*>(schema.values);
  schema.values = nullptr;
  Block bytes = bytes_of_record(schema);
  if (values != nullptr) {
    bytes.insert(bytes.end(), values, values + std::size_t{schema.value_size} * schema.value_count);
  }
  return bytes;
}

bool is_known(unsigned int id) {
  constexpr std::array<unsigned int, 7> kFirst = {3, 6, 7, 8, 10, 12, 13};
  return std::find(kFirst.begin(), kFirst.end(), id) != kFirst.end() || (id >= 20 && id < 30) ||
         (id >= 50 && id < 56);
}

/// Whether `condition` stays as it was when none is asked for.
bool leaves_condition(unsigned int id) {
  constexpr std::array<unsigned int, 7> kThese = {3, 6, 7, 8, 21, 22, 23};
  return std::find(kThese.begin(), kThese.end(), id) != kThese.end();
}

Block described(unsigned int id, bool with_condition) {
  auto schema = unwritten<osvlx3_feature_schema>();
  lx::GetFeatureSchema(id, schema, with_condition);
  leave_alone(schema.reserved);
  if (!is_known(id)) {
    leave_alone(schema.id);
    leave_alone(schema.name);
    leave_alone(schema.description);
  }
  if (!is_known(id) || (!with_condition && leaves_condition(id))) {
    leave_alone(schema.condition);
  }
  Block bytes = bytes_of(schema);
  LXSP_Free(schema.values);
  return bytes;
}

void describe_feature(Input& input) {
  const unsigned int id = input.below(60);
  const bool with_condition = input.below(2) != 0;
  written_whole([&] { return described(id, with_condition); });
}

/// Copies records of which some have values, up to one for which there is no memory.
Block copied(const std::vector<osvlx3_feature_schema>& schemas) {
  osvlx3_feature_schema* copies = nullptr;
  Block bytes;
  try {
    lx::CopyFeatures1(schemas.data(), static_cast<unsigned int>(schemas.size()), &copies);
    for (std::size_t i = 0; i < schemas.size(); ++i) {
      const Block copy = bytes_of(copies[i]);
      require(copy == bytes_of(schemas[i]), "a copy is a copy");
      bytes.insert(bytes.end(), copy.begin(), copy.end());
    }
  } catch (const std::bad_alloc&) {
  }
  for (std::size_t i = 0; copies != nullptr && i < schemas.size(); ++i) {
    if (copies[i].values != schemas[i].values) {
      LXSP_Free(copies[i].values);
    }
  }
  LXSP_Free(copies);
  return bytes;
}

void copy_features(Input& input) {
  constexpr unsigned int kMost = 8;
  Block values(256);
  input.fill(values.data(), 16);
  std::vector<osvlx3_feature_schema> schemas(input.below(kMost));
  for (osvlx3_feature_schema& schema : schemas) {
    schema.id = input.byte();
    schema.condition = input.below(3);
    schema.value_size = input.below(16);
    schema.value_count = input.below(16);
    schema.values = schema.condition == 0 ? nullptr : values.data();
  }
  written_whole([&] { return copied(schemas); });
}

// Units.

void convert_unit(Input& input) {
  osvlx3_unit_schema unit = {};
  input.fill(&unit, sizeof(unit));
  const Block written = written_whole([&] {
    auto device = unwritten<DeviceInfo>();
    lx::unit_schema2dev_info(unit, device);
    return bytes_of_record(device);
  });
  require(written[sizeof(DeviceInfo::szSerialNumber) - 1] == 0, "the serial number is ended");
  DeviceInfo info;
  std::memcpy(&info, written.data(), sizeof(info));
  require(info.nInterface == unit.id, "the number is that of the unit");
  // As many bytes of a name as a record can have, with no zero byte among them.
  input.fill(info.szSerialNumber, sizeof(info.szSerialNumber));
  const unsigned int channels = input.byte();
  const Block bytes = written_whole([&] {
    auto again = unwritten<osvlx3_unit_schema>();
    lx::dev_info2unit_schema(info, again, channels);
    return bytes_of_record(again);
  });
  osvlx3_unit_schema again;
  std::memcpy(&again, bytes.data(), sizeof(again));
  require(again.channels == channels && again.id == info.nInterface, "the numbers are those given");
  require(std::string(reinterpret_cast<const char*>(again.name)) ==
              std::string(info.szSerialNumber,
                          strnlen(info.szSerialNumber, sizeof(info.szSerialNumber))),
          "the name is the serial number");
}

// Samples.

tagBITMAPINFOHEADER read_header(Input& input) {
  constexpr std::array<std::uint16_t, 8> kDepths = {0, 1, 4, 8, 8, 16, 24, 32};
  const std::uint8_t form = input.byte();
  const bool wild = form >= 192;
  tagBITMAPINFOHEADER bi = {};
  bi.biSize = sizeof(bi);
  bi.biWidth = wild ? input.number<std::int32_t>() : static_cast<std::int32_t>(input.below(70));
  bi.biHeight =
      form >= 224 ? input.number<std::int32_t>() : static_cast<std::int32_t>(input.below(30));
  bi.biBitCount = form % 8 == 7 ? input.number<std::uint16_t>() : kDepths[form % kDepths.size()];
  bi.biCompression = input.below(4);
  bi.biClrUsed = form % 3 == 0 ? input.byte() : 0;
  bi.biXPelsPerMeter = input.number<std::int16_t>();
  bi.biYPelsPerMeter = input.number<std::int16_t>();
  return bi;
}

/// The block behind a header; nothing for one of which no block can be made here.
std::optional<Block> read_block(const tagBITMAPINFOHEADER& bi, Input& input) {
  constexpr unsigned long kLargest = 1UL << 20;
  if (bi.biWidth < 0 || bi.biHeight < 0) {
    return Block(sizeof(bi));
  }
  const unsigned long stride = img::bmp_bpr(&bi);
  if (stride > kLargest && bi.biHeight > 0) {
    return std::nullopt;
  }
  const unsigned long size = img::bmp_size(&bi);
  if (size > kLargest) {
    return std::nullopt;
  }
  Block block(size, input.byte());
  const Bytes pixels = input.bytes(std::min<std::size_t>(size - sizeof(bi), 64));
  std::copy(pixels.begin(), pixels.end(), block.end() - static_cast<std::ptrdiff_t>(pixels.size()));
  return block;
}

/// The envelope and the sample that are made of an image, without the addresses in them and the
/// padding of the envelope, which stays as it was.
Block sampled(const Block& image) {
  auto envelope = unwritten<osvlx3_biometric_data>();
  const Block before = bytes_of_record(envelope);
  try {
    lx::image2biodata(image.data(), &envelope);
  } catch (const std::bad_alloc&) {
    require(bytes_of_record(envelope) == before, "nothing is given without memory");
    return {};
  }
  const auto* const sample = static_cast<const osvlx3_biometric_image*>(envelope.data);
  const auto* const first = static_cast<const unsigned char*>(envelope.data);
  require(sample->pixels == first + sizeof(*sample), "the pixels stand behind the header");
  require(envelope.size == sample->pixel_size + sizeof(*sample), "the size is that of the block");
  Block bytes(first, first + envelope.size);
  std::memset(bytes.data() + offsetof(osvlx3_biometric_image, pixels), 0, sizeof(void*));
  LXSP_Free(envelope.data);
  envelope.data = nullptr;
  leave_alone(envelope.reserved1);
  leave_alone(envelope.reserved2);
  const Block around = bytes_of_record(envelope);
  bytes.insert(bytes.end(), around.begin(), around.end());
  return bytes;
}

void make_sample(Input& input) {
  const tagBITMAPINFOHEADER bi = read_header(input);
  std::optional<Block> block = read_block(bi, input);
  if (block) {
    std::memcpy(block->data(), &bi, sizeof(bi));
    written_whole([&] { return sampled(*block); });
  }
}

// Numbers.

void translate(Input& input) {
  const auto version = input.number<std::uint16_t>();
  try {
    const std::string text = lx::infver2str(version);
    require(text == (version == 257 ? "1.0" : "2.0"), "a version has its text");
  } catch (const lx::CLX3ModuleException& refusal) {
    require(refusal.value() == error_number::UnknownVersion, "a refusal has its number");
    require(version != 257 && version != 513, "a known version is not refused");
  }
  const auto options = input.number<std::uint32_t>();
  const eCaptureModeIDs mode = lx::CapOption2CapMode(options);
  require(lx::isLiveMode(options) ? mode == eCaptureLive : mode <= eCapturePreviewAutoDetect,
          "live beats everything");
  require(lx::isRollMode(options) == ((options & 8) != 0) && !lx::isPlainMode(options) &&
              lx::isSignatureMode(options) == ((options & 64) != 0),
          "a bit is a mode");
}

}  // namespace

/// The first byte chooses the subject.
void run(Input input) {
  constexpr std::array kSubjects = {&call_feature, &describe_feature, &copy_features,
                                    &convert_unit, &make_sample,      &translate};
  kSubjects[input.below(kSubjects.size())](input);
}

}  // namespace Osv::fuzz
