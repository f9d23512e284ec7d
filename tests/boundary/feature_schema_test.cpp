#include "boundary/feature_schema.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/malloc_pointer.h"

namespace Osv::lx {
namespace {

constexpr std::uint32_t kEarlier = 0x55555555;

/// A schema record that frees its values.
class Schema {
 public:
  ~Schema() { MAllocPointer::free_memory(record.values == this ? nullptr : record.values); }

  /// A record in which something stood before.
  Schema() {
    record.id = kEarlier;
    record.condition = kEarlier;
    record.value_size = kEarlier;
    record.value_count = kEarlier;
    record.values = this;
  }
  Schema(const Schema&) = delete;
  Schema& operator=(const Schema&) = delete;

  std::string name() const { return reinterpret_cast<const char*>(record.name); }
  std::string description() const { return reinterpret_cast<const char*>(record.description); }
  bool has_values() const { return record.values != nullptr; }

  template <typename T>
  std::vector<std::int64_t> values() const {
    const auto* const first = static_cast<const T*>(record.values);
    return {first[0], first[1]};
  }

  std::vector<std::int64_t> values(const std::string& type) const {
    if (type == "byte") {
      return values<std::uint8_t>();
    }
    return type == "unsigned" ? values<std::uint32_t>() : values<std::int32_t>();
  }

  osvlx3_feature_schema record{};
};

/// What a client sees of a feature. `touched`: the builder writes the condition also when none is
/// asked for.
struct Expected {
  unsigned int id;
  const char* name;
  const char* description;
  std::string type;
  std::int64_t min;
  std::int64_t max;
  bool touched;

  friend std::ostream& operator<<(std::ostream& out, const Expected& row) {
    return out << row.id << " " << row.name;
  }
};

const Expected kFeatures[] = {
    {3, "Number of channels",
     "The feature describes a maximal number of input channels or cameras of a scanner", "byte", 0,
     255, false},
    {6, "Liveliness", "The liveliness feature describes a liveliness level supported by a scanner",
     "byte", 0, 2, false},
    {7, "Red LED", "The feature controls a red LED of a scanner", "byte", 0, 1, false},
    {8, "Green LED", "The feature controls a green LED of a scanner", "byte", 0, 1, false},
    {10, "LEDS", "Scanner Leds", "unsigned", 0, 4294967295, true},
    {12, "Fake detection", "Fake detection threshold", "byte", 0, 100, true},
    {13, "Low contrast image", "use mask for low contrast images", "byte", 0, 1, true},
    {20, "Beeper data", "The feature describes beeper data", "signed", 0, -1, true},
    {21, "Auto capture beep", "The feature controls the auto capture beep of a scanner", "byte", 0,
     1, false},
    {22, "Use fast preview mask",
     "The feature controls if a fast preview mask shall be used or not", "byte", 0, 1, false},
    {23, "Rotate and crop rolled image",
     "The feature controls if the final image at the end of a roll sequence shall be auto rotated "
     "and cropped",
     "byte", 0, 1, false},
    {24, "Signature Filter", "Sigma value for signature filter 10000 == 1.0.", "signed", 0, 500000,
     true},
    {25, "Signature Detect", "Detect timeout for signature function in ms.", "signed", 0, 20000,
     true},
    {26, "Signature Sensor Mode", "Full scanner surface (0) or lower half (1).", "signed", 0, 1,
     true},
    {27, "Reset Image.", "Clears image in incremental image modes.", "signed", 0, 1, true},
    {28, "Desired Width.", "Defines image output width.", "signed", 0, 16383, true},
    {29, "Desired Height.", "Defines image output height.", "signed", 0, 16383, true},
    {50, "Contamination level", "get contamination level", "unsigned", 0, 100, true},
    {51, "Capture option", "The feature describes capture options that unit supports", "signed", 0,
     -1, true},
    {52, "Display data", "The feature describes display data", "none", 0, 0, true},
    {53, "SetNewAuthorizationCode", "set KR authorization code (7 bytes)", "none", 0, 0, true},
    {54, "Secret7Bytes",
     "KR secret 7 bytes (14 bytes total: 7 bytes authorization + secret 7 bytes)", "none", 0, 0,
     true},
    {55, "Image data format", "the format used with image callbacks", "byte", 1, 2, true},
};

struct FeatureSchemas : testing::TestWithParam<Expected> {
  FeatureSchemas() = default;
  Schema schema;
};

TEST_P(FeatureSchemas, HaveNumberNameAndDescription) {
  for (const bool withCondition : {false, true}) {
    Schema each;
    GetFeatureSchema(GetParam().id, each.record, withCondition);
    EXPECT_EQ(each.record.id, GetParam().id);
    EXPECT_EQ(each.name(), GetParam().name);
    EXPECT_EQ(each.description(), GetParam().description);
  }
}

TEST_P(FeatureSchemas, HaveTheirMinimumAndMaximumWhenTheConditionIsAskedFor) {
  GetFeatureSchema(GetParam().id, schema.record, true);
  if (GetParam().type == "none") {
    EXPECT_EQ(schema.record.condition, 0U);
    EXPECT_EQ(schema.record.value_size, 0U);
    EXPECT_EQ(schema.record.value_count, 0U);
    EXPECT_FALSE(schema.has_values());
    return;
  }
  EXPECT_EQ(schema.record.condition, 1U);
  EXPECT_EQ(schema.record.value_count, 2U);
  EXPECT_EQ(schema.record.value_size, GetParam().type == "byte" ? 1U : 4U);
  ASSERT_TRUE(schema.has_values());
  EXPECT_EQ(schema.values(GetParam().type),
            (std::vector<std::int64_t>{GetParam().min, GetParam().max}));
}

TEST_P(FeatureSchemas, HaveNoValuesWhenTheConditionIsNotAskedForAndSomeLeaveItAsItWas) {
  GetFeatureSchema(GetParam().id, schema.record, false);
  EXPECT_EQ(schema.record.condition, GetParam().touched ? 0 : kEarlier);
  EXPECT_EQ(schema.record.value_size, 0U);
  EXPECT_EQ(schema.record.value_count, 0U);
  EXPECT_FALSE(schema.has_values());
}

INSTANTIATE_TEST_SUITE_P(Table, FeatureSchemas, testing::ValuesIn(kFeatures),
                         [](const auto& row) { return "feature" + std::to_string(row.param.id); });

struct UnknownFeatures : testing::TestWithParam<unsigned int> {};

TEST_P(UnknownFeatures, ClearTheValueFieldsAndLeaveTheRest) {
  for (const bool withCondition : {false, true}) {
    Schema schema;
    schema.record.name[0] = 'x';
    schema.record.description[0] = 'y';
    GetFeatureSchema(GetParam(), schema.record, withCondition);
    EXPECT_EQ(schema.record.id, kEarlier);
    EXPECT_EQ(schema.record.condition, kEarlier);
    EXPECT_EQ(schema.name() + schema.description(), "xy");
    EXPECT_EQ(schema.record.value_size + schema.record.value_count, 0U);
    EXPECT_FALSE(schema.has_values());
  }
}

INSTANTIATE_TEST_SUITE_P(InAndBesideTheRange, UnknownFeatures,
                         testing::Values(0U, 2U, 4U, 5U, 9U, 11U, 14U, 19U, 30U, 49U, 56U, 99U,
                                         0xFFFFFFFFU));

TEST(FeatureSchema, OfTheImageDataFormatHasTheTwoBytes1And2) {
  Schema schema;
  GetFeatureSchema(55, schema.record, true);
  EXPECT_EQ(schema.record.value_size, 1U);
  EXPECT_EQ(schema.record.value_count, 2U);
  EXPECT_EQ(std::memcmp(schema.record.values, "\x01\x02", 2), 0);
}

TEST(FeatureSchema, OfTheSignatureFilterHasTwoWordsWith500000AsTheMaximum) {
  Schema schema;
  GetFeatureSchema(24, schema.record, true);
  EXPECT_EQ(schema.record.value_size, 4U);
  EXPECT_EQ(schema.values<std::int32_t>()[1], 500000);
}

TEST(FeatureSchema, OfDisplayDataHasNoConditionEvenWhenItIsAskedFor) {
  Schema schema;
  GetFeatureSchema(52, schema.record, true);
  EXPECT_EQ(schema.record.condition, 0U);
  EXPECT_FALSE(schema.has_values());
}

TEST(SchemaBuilders, FillWhatTheyAreNamedAfter) {
  Schema schema;
  const auto built = [&](auto builder, auto... arguments) {
    builder(arguments..., schema.record, false);
    return schema.record.id;
  };
  EXPECT_EQ(built(GetChannelCountFeatureSchema), 3U);
  EXPECT_EQ(built(GetLivelinessFeatureSchema), 6U);
  EXPECT_EQ(built(GetLEDFeatureSchema, 7U), 7U);
  EXPECT_EQ(built(GetLEDFeatureSchema, 8U), 8U);
  EXPECT_EQ(built(GetBeeperDataFeatureSchema), 20U);
  EXPECT_EQ(built(GetAutoCaptureBeepFeatureSchema, 21U), 21U);
  EXPECT_EQ(built(GetUseFastPreviewMaskFeatureSchema, 22U), 22U);
  EXPECT_EQ(built(GetUseRotateAndCropRolledImageFeatureSchema, 23U), 23U);
  EXPECT_EQ(built(GetCaptureOptionsFeatureSchema), 51U);
  EXPECT_EQ(built(GetDisplayDataFeatureSchema), 52U);
}

TEST(SchemaBuilders, ASimpleOneWritesNumberAndTextsAndClearsTheRest) {
  Schema schema;
  GetSimpleFeatureSchema(77, schema.record, "a name", "a description");
  EXPECT_EQ(schema.record.id, 77U);
  EXPECT_EQ(schema.name(), "a name");
  EXPECT_EQ(schema.description(), "a description");
  EXPECT_EQ(schema.record.condition + schema.record.value_size + schema.record.value_count, 0U);
  EXPECT_FALSE(schema.has_values());
}

TEST(SchemaBuilders, OfANumberThatNoFeatureHasChangeNothing) {
  const auto build = {GetLEDFeatureSchema, GetAutoCaptureBeepFeatureSchema,
                      GetUseFastPreviewMaskFeatureSchema,
                      GetUseRotateAndCropRolledImageFeatureSchema};
  for (const auto builder : build) {
    Schema schema;
    const osvlx3_feature_schema before = schema.record;
    builder(77, schema.record, true);
    EXPECT_EQ(std::memcmp(&schema.record, &before, sizeof(before)), 0);
  }
}

TEST(SchemaText, Of300CharactersIsCutAt254AndEnded) {
  std::array<unsigned char, 256> target{};
  target.fill(0xAA);
  str2lx3str(std::string(300, 'x').c_str(), target.data());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(target.data())), std::string(254, 'x'));
  EXPECT_EQ(target[254], 0);
  EXPECT_EQ(target[255], 0xAA);
}

TEST(SchemaText, Of254CharactersComesWholeAndAnEmptyOneIsEmpty) {
  std::array<unsigned char, 255> target{};
  str2lx3str(std::string(254, 'x').c_str(), target.data());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(target.data())).size(), 254U);
  str2lx3str("", target.data());
  EXPECT_EQ(target[0], 0);
}

/// Copies of a list, freed at the end as a client frees them.
struct Copies {
  Copies(const std::vector<osvlx3_feature_schema>& source) : count(source.size()) {
    CopyFeatures1(source.data(), static_cast<unsigned int>(count), &records);
  }
  ~Copies() {
    for (std::size_t i = 0; i < count; ++i) {
      MAllocPointer::free_memory(records[i].values);
    }
    MAllocPointer::free_memory(records);
  }
  Copies(const Copies&) = delete;
  Copies& operator=(const Copies&) = delete;

  std::size_t count;
  osvlx3_feature_schema* records = nullptr;
};

TEST(SchemaCopies, HaveTheSameFieldsAndValuesOfTheirOwn) {
  Schema with;
  Schema without;
  GetFeatureSchema(24, with.record, true);
  GetFeatureSchema(53, without.record, true);
  const Copies copies({with.record, without.record});
  EXPECT_EQ(copies.records[0].id, 24U);
  EXPECT_NE(copies.records[0].values, with.record.values);
  EXPECT_EQ(std::memcmp(copies.records[0].values, with.record.values, 8), 0);
  EXPECT_EQ(std::memcmp(&copies.records[1], &without.record, sizeof(without.record)), 0);
}

TEST(SchemaCopies, HaveAsManyValueBytesAsCountTimesSizeUnderAnyCondition) {
  unsigned char values[] = {1, 2, 3, 4, 5, 6};
  osvlx3_feature_schema source{};
  source.condition = 7;
  source.value_count = 3;
  source.value_size = 2;
  source.values = values;
  const Copies copies({source});
  EXPECT_EQ(copies.records[0].condition, 7U);
  EXPECT_NE(copies.records[0].values, source.values);
  EXPECT_EQ(std::memcmp(copies.records[0].values, values, sizeof(values)), 0);
}

TEST(SchemaCopies, WithoutAConditionShareTheValuesOfTheSource) {
  unsigned char values[] = {1, 2};
  osvlx3_feature_schema source{};
  source.value_count = 2;
  source.value_size = 1;
  source.values = values;
  osvlx3_feature_schema* copy = nullptr;
  CopyFeatures1(&source, 1, &copy);
  EXPECT_EQ(std::memcmp(copy, &source, sizeof(source)), 0);
  MAllocPointer::free_memory(copy);
}

TEST(SchemaCopies, OfAConditionWithoutValuesReadNone) {
  osvlx3_feature_schema source{};
  source.condition = 1;
  const Copies copies({source});
  EXPECT_EQ(copies.records[0].condition, 1U);
  EXPECT_EQ(copies.records[0].value_count, 0U);
}

TEST(SchemaCopies, OfAnEmptyListAreAnArrayToFree) {
  const osvlx3_feature_schema none{};
  osvlx3_feature_schema* records = nullptr;
  CopyFeatures1(&none, 0, &records);
  EXPECT_NE(records, nullptr);
  MAllocPointer::free_memory(records);
}

}  // namespace
}  // namespace Osv::lx
