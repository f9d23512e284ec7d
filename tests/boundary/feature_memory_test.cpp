#include <gtest/gtest.h>

#include <new>

#include "boundary/feature_schema.h"
#include "foundation/bitmap.h"
#include "foundation/feature_value.h"
#include "foundation/malloc_pointer.h"
#include "support/failing_malloc.h"
#include "support/module_failure.h"

/// @file
/// The feature interface when memory runs out.

namespace Osv::lx {
namespace {

using testing_support::FailingMalloc;
using testing_support::module_number;

TEST(OutOfMemory, ABlockThatCannotBeHadIsABadAlloc) {
  const FailingMalloc failing;
  EXPECT_EQ(MAllocPointer::alloc_memory(1), nullptr);
  EXPECT_THROW(MAllocPointer(1), std::bad_alloc);
}

TEST(OutOfMemory, ASchemaWithoutRoomForItsValuesIsABadAllocAndHasNone) {
  osvlx3_feature_schema schema{};
  const FailingMalloc failing;
  EXPECT_THROW(GetFeatureSchema(24, schema, true), std::bad_alloc);
  EXPECT_EQ(schema.values, nullptr);
}

TEST(OutOfMemory, ASchemaWithoutAConditionNeedsNone) {
  osvlx3_feature_schema schema{};
  const FailingMalloc failing;
  GetFeatureSchema(24, schema, false);
  GetFeatureSchema(53, schema, true);
  EXPECT_EQ(schema.id, 53U);
}

TEST(OutOfMemory, AFeatureValueWithoutRoomIsNumber51AndTheRecordStays) {
  osvlx3_feature feature{55, 0, 0, 9, nullptr};
  const FailingMalloc failing;
  EXPECT_EQ(module_number([&] { smart_alloc_feature<unsigned char>(1, feature); }), 51U);
  EXPECT_EQ(feature.count, 0U);
  EXPECT_EQ(feature.size, 9U);
  EXPECT_EQ(feature.data, nullptr);
}

TEST(OutOfMemory, AnEnvelopeWithoutRoomForItsBlockIsABadAllocAndStays) {
  utilities::ClSimpleBitmap bitmap;
  bitmap.Create(4, 4, 8, 0);
  osvlx3_biometric_data data{};
  const FailingMalloc failing;
  EXPECT_THROW(image2biodata(reinterpret_cast<const unsigned char*>(bitmap.BI()), &data),
               std::bad_alloc);
  EXPECT_EQ(data.data, nullptr);
  EXPECT_EQ(data.tag1, 0U);
}

/// Two schemas with values.
class CopiesWithoutMemory : public testing::Test {
 protected:
  CopiesWithoutMemory() {
    GetFeatureSchema(24, source[0], true);
    GetFeatureSchema(25, source[1], true);
  }
  ~CopiesWithoutMemory() override {
    for (osvlx3_feature_schema& schema : source) {
      MAllocPointer::free_memory(schema.values);
    }
  }

  osvlx3_feature_schema source[2] = {};
  osvlx3_feature_schema* copies = nullptr;
};

TEST_F(CopiesWithoutMemory, AreABadAllocWhenTheArrayCannotBeHad) {
  const FailingMalloc failing;
  EXPECT_THROW(CopyFeatures1(source, 2, &copies), std::bad_alloc);
  EXPECT_EQ(copies, nullptr);
}

TEST_F(CopiesWithoutMemory, LeaveWhatWasCopiedToTheCallerWhenValuesCannotBeHad) {
  {
    const FailingMalloc failing(3);  // the array and the first values are there
    EXPECT_THROW(CopyFeatures1(source, 2, &copies), std::bad_alloc);
  }
  ASSERT_NE(copies, nullptr);
  EXPECT_EQ(copies[1].id, 25U);
  EXPECT_NE(copies[0].values, source[0].values);
  EXPECT_EQ(copies[1].values, source[1].values);
  MAllocPointer::free_memory(copies[0].values);
  MAllocPointer::free_memory(copies);
}

}  // namespace
}  // namespace Osv::lx
