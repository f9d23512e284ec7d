#include <png.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

class FingerPicture : public SimulatorFixture {
 protected:
  FingerPicture()
      : m_sPath(testing::TempDir() + "finger_" +
                testing::UnitTest::GetInstance()->current_test_info()->name()) {
    for (unsigned int i = 0; i < 7 * 5; ++i) {
      m_sPicture.pixels.push_back(static_cast<unsigned char>(i * 7));
    }
  }
  ~FingerPicture() override { std::remove(m_sPath.c_str()); }

  void write(const Bytes& bytes) {
    std::ofstream file(m_sPath, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }

  void write_png(std::uint32_t format) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = 7;
    image.height = 5;
    image.format = format;
    const Bytes pixels(7 * 5 * 4);
    const void* const data = format == PNG_FORMAT_GRAY ? m_sPicture.pixels.data() : pixels.data();
    ASSERT_NE(png_image_write_to_file(&image, m_sPath.c_str(), 0, data, 0, nullptr), 0);
  }

  /// A BMP file of the picture; from the lowest row, or from the top with a negative height.
  Bytes bmp(bool from_top) const {
    Block block(7, 5);
    for (int y = 0; y < 5; ++y) {
      std::copy_n(m_sPicture.pixels.begin() + 7 * y, 7, block.row(from_top ? 4 - y : y));
    }
    for (unsigned int i = 0; i < 256; ++i) {
      std::fill_n(block.bytes().begin() + 40 + 4 * i, 3, static_cast<unsigned char>(i));
    }
    if (from_top) {
      block.header()->biHeight = -5;
    }
    Bytes file(14 + block.size());
    file[0] = 'B';
    file[1] = 'M';
    file[10] = 1078 & 0xFF;
    file[11] = 1078 >> 8;
    std::copy(block.bytes().begin(), block.bytes().end(), file.begin() + 14);
    return file;
  }

  void expect_refusal() { EXPECT_THROW(bench.load_finger(m_sPath), std::runtime_error); }

  std::string m_sPath;
  GrayImage m_sPicture{7, 5, {}};
};

TEST_F(FingerPicture, ComesFromAGrayPng) {
  write_png(PNG_FORMAT_GRAY);
  bench.load_finger(m_sPath);
  EXPECT_EQ(bench.finger().width, 7);
  EXPECT_EQ(bench.finger().height, 5);
  EXPECT_EQ(bench.finger().pixels, m_sPicture.pixels);
}

TEST_F(FingerPicture, ComesFromAGrayBmpInEitherOrderOfRows) {
  for (const bool from_top : {false, true}) {
    bench.set_built_in_finger();
    write(bmp(from_top));
    bench.load_finger(m_sPath);
    EXPECT_EQ(bench.finger().pixels, m_sPicture.pixels);
  }
}

TEST_F(FingerPicture, ComesFromABmpByItsPalette) {
  Bytes file = bmp(false);
  for (std::size_t i = 0; i < 256; ++i) {
    std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(54 + 4 * i), 3,
                static_cast<unsigned char>(255 - i));
  }
  write(file);
  bench.load_finger(m_sPath);
  EXPECT_EQ(bench.finger().pixels.at(3), 255 - m_sPicture.pixels.at(3));
}

TEST_F(FingerPicture, ColoursAreRefused) {
  write_png(PNG_FORMAT_RGB);
  expect_refusal();
  Bytes file = bmp(false);
  file[54] = 9;
  write(file);
  expect_refusal();
}

TEST_F(FingerPicture, OtherDepthsAreRefused) {
  Bytes file = bmp(false);
  file[28] = 24;
  write(file);
  expect_refusal();
}

TEST_F(FingerPicture, CutOffFilesAreRefused) {
  const Bytes file = bmp(false);
  for (const std::size_t size :
       {std::size_t{2}, std::size_t{53}, std::size_t{1000}, file.size() - 8}) {
    write(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
    expect_refusal();
  }
}

TEST_F(FingerPicture, ACutOffPngIsRefused) {
  write({0x89, 'P', 'N', 'G', 0x0D});
  expect_refusal();
}

TEST_F(FingerPicture, AbsurdSizesAreRefused) {
  Bytes file = bmp(false);
  file[21] = 0x7F;
  write(file);
  expect_refusal();
}

TEST_F(FingerPicture, AnythingElseIsRefusedWithItsPath) {
  write({'G', 'I', 'F', '8'});
  try {
    bench.load_finger(m_sPath);
    FAIL() << "no refusal";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find(m_sPath), std::string::npos);
  }
}

TEST_F(FingerPicture, AMissingFileIsRefused) { expect_refusal(); }

TEST_F(FingerPicture, ARefusalLeavesTheFingerThatWasThere) {
  const Bytes before = bench.finger().pixels;
  expect_refusal();
  EXPECT_EQ(bench.finger().pixels, before);
}

TEST_F(FingerPicture, PixelsThatDoNotFitTheSizeAreRefused) {
  EXPECT_THROW(bench.set_finger({3, 3, Bytes(8)}), std::invalid_argument);
  EXPECT_THROW(bench.set_finger({0, 0, {}}), std::invalid_argument);
}

TEST_F(FingerPicture, LiesInTheMiddleOfTheFinalImage) {
  const Place place = bench.place(388, 374);
  EXPECT_EQ(place.x, 55);
  EXPECT_EQ(place.y, 32);
  EXPECT_EQ(bench.place(kFinalWidth, kFinalHeight).x, 0);
}

}  // namespace
}  // namespace Osv::simulator
