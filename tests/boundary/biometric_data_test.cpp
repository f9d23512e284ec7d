#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/malloc_pointer.h"
#include "ostrevanhvk3/feature_schema.h"
#include "support/module_failure.h"

namespace Osv::lx {
namespace {

using testing_support::module_number;

/// A bitmap of 5 x 3 pixels with resolutions of its own, and its envelope.
class BiometricData : public testing::Test {
 protected:
  BiometricData() {
    bitmap.Create(5, 3, 8, 0);
    bitmap.SetPels(19685, 11811);
    for (unsigned long i = 0; i < bitmap.PixelSize(); ++i) {
      bitmap.Pixel()[i] = static_cast<unsigned char>(i + 1);
    }
    std::memset(static_cast<void*>(&data), 0xAA, sizeof(data));
  }
  ~BiometricData() override { MAllocPointer::free_memory(data.data); }

  void wrap() {
    image2biodata(reinterpret_cast<const unsigned char*>(bitmap.BI()), &data);
    std::memcpy(&image, data.data, sizeof(image));
  }

  utilities::ClSimpleBitmap bitmap;
  osvlx3_biometric_data data{};
  osvlx3_biometric_image image{};
};

TEST_F(BiometricData, TheEnvelopeHasItsTagsTheSizeOfTheBlockAndACountOf1) {
  wrap();
  EXPECT_EQ(data.tag1, 1U);
  EXPECT_EQ(data.tag2, 1U);
  EXPECT_EQ(data.tag3, 0U);
  EXPECT_EQ(data.size, 48U + 24U);
  EXPECT_EQ(data.count, 1U);
}

TEST_F(BiometricData, PaddingOfTheEnvelopeStaysAsItWas) {
  wrap();
  EXPECT_EQ(data.reserved1[0], 0xAA);
  EXPECT_EQ(data.reserved2, 0xAAAAAAAAU);
}

TEST_F(BiometricData, TheBlockDescribesTheImage) {
  wrap();
  EXPECT_EQ(image.width, 5);
  EXPECT_EQ(image.height, 3);
  EXPECT_EQ(image.bytes_per_row, 8U);
  EXPECT_EQ(image.bits_per_pixel, 8U);
  EXPECT_EQ(image.x_pels_per_meter, 19685);
  EXPECT_EQ(image.y_pels_per_meter, 11811);
  EXPECT_EQ(image.pixel_size, 24U);
  EXPECT_EQ(image.count, 1U);
}

TEST_F(BiometricData, ThePixelsStandBehindTheHeaderOfTheSameBlock) {
  wrap();
  EXPECT_EQ(image.pixels, static_cast<unsigned char*>(data.data) + 48);
  EXPECT_EQ(std::memcmp(image.pixels, bitmap.Pixel(), 24), 0);
}

TEST_F(BiometricData, AnImageOfAnotherDepthHasItsOwnRowsAndNoPalette) {
  bitmap.Create(5, 3, 24, 0);
  bitmap.SetWhite();
  wrap();
  EXPECT_EQ(image.bits_per_pixel, 24U);
  EXPECT_EQ(image.bytes_per_row, 16U);
  EXPECT_EQ(image.pixel_size, 48U);
  EXPECT_EQ(std::memcmp(image.pixels, bitmap.Pixel(), 48), 0);
}

TEST_F(BiometricData, TheSizeInTheHeaderOfTheBitmapPlaysNoPart) {
  bitmap.BI()->biSizeImage = 0;
  wrap();
  EXPECT_EQ(data.size, 48U + 24U);
  EXPECT_EQ(image.pixel_size, 24U);
  EXPECT_EQ(std::memcmp(image.pixels, bitmap.Pixel(), 24), 0);
}

/// A header whose pixels no block can hold, though 64 bits make it a small size.
struct AbsurdHeader {
  std::int32_t width;
  std::int32_t height;
  std::uint16_t bits;
};

struct AbsurdHeaders : testing::TestWithParam<AbsurdHeader> {};

TEST_P(AbsurdHeaders, AreABadAllocAndTheEnvelopeStays) {
  tagBITMAPINFOHEADER header{};
  header.biSize = sizeof(header);
  header.biWidth = GetParam().width;
  header.biHeight = GetParam().height;
  header.biBitCount = GetParam().bits;
  osvlx3_biometric_data data{};
  EXPECT_THROW(image2biodata(reinterpret_cast<const unsigned char*>(&header), &data),
               std::bad_alloc);
  EXPECT_EQ(data.data, nullptr);
  EXPECT_EQ(data.tag1, 0U);
}

// Without a check they come out as -8 bytes, 0 bytes and 0 bytes.
INSTANTIATE_TEST_SUITE_P(Table, AbsurdHeaders,
                         testing::Values(AbsurdHeader{5, -1, 8}, AbsurdHeader{-1, 8, 8},
                                         AbsurdHeader{1 << 30, 1 << 22, 32768}));

TEST(InterfaceVersion, Has257As10And513As20) {
  EXPECT_STREQ(infver2str(0x0101), "1.0");
  EXPECT_STREQ(infver2str(0x0201), "2.0");
}

TEST(InterfaceVersion, OfAnyOtherNumberIsRefusedWith74) {
  for (const int version : {0, 1, 256, 258, 512, 514, 65535}) {
    EXPECT_EQ(module_number([&] { infver2str(static_cast<unsigned short>(version)); }), 74U)
        << version;
  }
}

}  // namespace
}  // namespace Osv::lx
