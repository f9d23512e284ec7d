#include "foundation/feature_value.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>

#include "support/module_failure.h"

namespace Osv::lx {
namespace {

using testing_support::module_number;

constexpr unsigned char kValue = 0xA7;

/// A client's record with room for four bytes.
struct FeatureValue : testing::Test {
  osvlx3_feature record(std::uint64_t count, std::uint64_t size) {
    return {55, 0, count, size, space.data()};
  }

  alignas(4) std::array<unsigned char, 4> space = {0x11, 0x22, 0x33, 0x44};
};

TEST_F(FeatureValue, WithoutRoomIsAllocatedForTheClient) {
  osvlx3_feature feature{55, 0, 0, 99, nullptr};
  smart_alloc_feature(kValue, feature);
  EXPECT_EQ(feature.count, 1U);
  EXPECT_EQ(feature.size, 1U);
  ASSERT_NE(feature.data, nullptr);
  EXPECT_EQ(*static_cast<unsigned char*>(feature.data), kValue);
  std::free(feature.data);
}

TEST_F(FeatureValue, WithACountOf0IsAllocatedAlsoOverRoomThatIsThereAndThatRoomIsNotFreed) {
  osvlx3_feature feature = record(0, 1);  // room that is not from the heap: to free it is fatal
  smart_alloc_feature(kValue, feature);
  ASSERT_NE(feature.data, space.data());
  EXPECT_EQ(*static_cast<unsigned char*>(feature.data), kValue);
  EXPECT_EQ(feature.count, 1U);
  EXPECT_EQ(space[0], 0x11);
  std::free(feature.data);
}

TEST_F(FeatureValue, InRoomForFourElementsIsOneByteAndACountOf1) {
  osvlx3_feature feature = record(4, 1);
  smart_alloc_feature(kValue, feature);
  EXPECT_EQ(feature.count, 1U);
  EXPECT_EQ(feature.size, 1U);
  EXPECT_EQ(feature.data, space.data());
  EXPECT_EQ(space, (std::array<unsigned char, 4>{kValue, 0x22, 0x33, 0x44}));
}

TEST_F(FeatureValue, InElementsOfAnotherSizeIsRefusedWith53AndTheRecordStays) {
  osvlx3_feature feature = record(1, 2);
  EXPECT_EQ(module_number([&] { smart_alloc_feature(kValue, feature); }), 53U);
  EXPECT_EQ(feature.size, 2U);
  EXPECT_EQ(space[0], 0x11);
}

TEST_F(FeatureValue, WithACountAndNoDataIsRefusedWith60AndTheRecordStays) {
  osvlx3_feature feature{55, 0, 3, 1, nullptr};
  EXPECT_EQ(module_number([&] { smart_alloc_feature(kValue, feature); }), 60U);
  EXPECT_EQ(feature.count, 3U);
}

TEST_F(FeatureValue, AWrongElementSizeIsFoundBeforeMissingData) {
  osvlx3_feature feature{55, 0, 3, 2, nullptr};
  EXPECT_EQ(module_number([&] { smart_alloc_feature(kValue, feature); }), 53U);
}

TEST_F(FeatureValue, OfOneTwoOrFourBytesIsReadWithoutASign) {
  space = {0xFE, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(GetFeatureNumericValue(record(1, 1)), 0xFEU);
  EXPECT_EQ(GetFeatureNumericValue(record(1, 2)), 0xFFFEU);
  EXPECT_EQ(GetFeatureNumericValue(record(1, 4)), 0xFFFFFFFEU);
}

TEST_F(FeatureValue, IsTheFirstElementWhateverTheCount) {
  EXPECT_EQ(GetFeatureNumericValue(record(0, 1)), 0x11U);
  EXPECT_EQ(GetFeatureNumericValue(record(4, 1)), 0x11U);
}

TEST_F(FeatureValue, OfAnotherSizeIsRefusedWith53) {
  for (const std::uint64_t size : {0UL, 3UL, 5UL, 8UL}) {
    EXPECT_EQ(module_number([&] { (void)GetFeatureNumericValue(record(1, size)); }), 53U) << size;
  }
}

TEST_F(FeatureValue, WithoutDataIsRefusedWith60) {
  for (const std::uint64_t size : {1UL, 2UL, 4UL}) {
    const osvlx3_feature feature{55, 0, 1, size, nullptr};
    EXPECT_EQ(module_number([&] { (void)GetFeatureNumericValue(feature); }), 60U) << size;
  }
}

}  // namespace
}  // namespace Osv::lx
