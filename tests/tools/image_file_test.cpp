#include "hvk3/image_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include "hvk3/failure.h"
#include "support/temporary_folder.h"
#include "tools/files.h"
#include "tools/image_builder.h"

namespace hvk3::test {
namespace {

class ImageFile : public testing::Test {
 protected:
  /// The gray levels of a PNG file, from the top, rows without padding.
  static std::vector<int> png_levels(const std::string& path) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&png, path.c_str()), 0);
    png.format = PNG_FORMAT_GRAY;
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(png));
    EXPECT_NE(png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr), 0);
    return {bytes.begin(), bytes.end()};
  }

  TemporaryFolder m_cFolder;
  const Image m_cImage = make_image(3, 2, [](int x, int y) { return 10 * y + x; });
};

TEST_F(ImageFile, APngBeginsWithTheTopRow) {
  write_image(m_cImage, m_cFolder.file("a.png"));
  EXPECT_EQ(png_levels(m_cFolder.file("a.png")), (std::vector<int>{0, 1, 2, 10, 11, 12}));
}

TEST_F(ImageFile, ABmpBeginsWithTheLowestRow) {
  write_image(m_cImage, m_cFolder.file("a.bmp"));
  const std::string file = read_file(m_cFolder.file("a.bmp"));
  EXPECT_EQ(file.substr(number_at(file, 10)), std::string("\12\13\14\0\0\1\2\0", 8));
}

TEST_F(ImageFile, AnExistingFileIsReplacedWhole) {
  const std::string path = m_cFolder.file("a.png");
  write_image(make_gray_image(300, 300, 7), path);
  write_image(m_cImage, path);
  EXPECT_EQ(png_levels(path).size(), 6U);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(ImageFile, AFailureLeavesNothingBehind) {
  const std::string path = m_cFolder.file("a.png");
  std::filesystem::create_directories(path + "/full");
  EXPECT_THROW(write_image(m_cImage, path), Failure);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(ImageFile, OnlyPngAndBmpNamesAreImagePaths) {
  EXPECT_TRUE(is_image_path("a.png"));
  EXPECT_TRUE(is_image_path("b.PNG"));
  EXPECT_TRUE(is_image_path("c.d/e.Bmp"));
  EXPECT_FALSE(is_image_path("png"));
  EXPECT_FALSE(is_image_path("a.png/b"));
  EXPECT_FALSE(is_image_path("a.jpg"));
}

}  // namespace
}  // namespace hvk3::test
