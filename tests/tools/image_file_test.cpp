#include "hvk3/image_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <set>
#include <string>

#include "hvk3/atomic_file.h"
#include "hvk3/failure.h"
#include "support/temporary_folder.h"
#include "tools/files.h"
#include "tools/image_builder.h"
#include "tools/image_readers.h"

namespace hvk3::test {
namespace {

class ImageFile : public testing::Test {
 protected:
  static Levels levels_of(const std::string& path) { return png_levels(read_file(path)); }

  TemporaryFolder m_cFolder;
  const Image m_cImage = make_image(3, 2, [](int x, int y) { return 10 * y + x; });
};

TEST_F(ImageFile, APngBeginsWithTheTopRow) {
  write_image(m_cImage, m_cFolder.file("a.png"));
  EXPECT_EQ(levels_of(m_cFolder.file("a.png")), (Levels{0, 1, 2, 10, 11, 12}));
}

TEST_F(ImageFile, ABmpBeginsWithTheLowestRow) {
  write_image(m_cImage, m_cFolder.file("a.bmp"));
  const std::string file = read_file(m_cFolder.file("a.bmp"));
  EXPECT_EQ(file.substr(number_at(file, 10)), std::string("\12\13\14\0\0\1\2\0", 8));
}

TEST_F(ImageFile, APgmHasItsResolutionInAComment) {
  write_image(m_cImage, m_cFolder.file("a.pgm"));
  const Pgm pgm(read_file(m_cFolder.file("a.pgm")));
  EXPECT_EQ(pgm.magic, "P5");
  EXPECT_EQ(pgm.comment, "# 500 DPI: 19685 x 19685 pixels per metre");
  EXPECT_EQ(pgm.white, 255U);
}

TEST_F(ImageFile, APgmBeginsWithTheTopRow) {
  write_image(m_cImage, m_cFolder.file("a.pgm"));
  const Pgm pgm(read_file(m_cFolder.file("a.pgm")));
  EXPECT_EQ(pgm.width, 3U);
  EXPECT_EQ(pgm.height, 2U);
  EXPECT_EQ(pgm.levels, (Levels{0, 1, 2, 10, 11, 12}));
}

TEST_F(ImageFile, AnExistingFileIsReplacedWhole) {
  const std::string path = m_cFolder.file("a.png");
  write_image(make_gray_image(300, 300, 7), path);
  write_image(m_cImage, path);
  EXPECT_EQ(levels_of(path).size(), 6U);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(ImageFile, AFailureLeavesNothingBehind) {
  const std::string path = m_cFolder.file("a.png");
  std::filesystem::create_directories(path + "/full");
  EXPECT_THROW(write_image(m_cImage, path), Failure);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(ImageFile, TakesAFreeNumberThatNobodyElseTakesAtTheSameTime) {
  const auto write = [this] {
    std::set<std::string> paths;
    for (int i = 0; i < 20; ++i) {
      paths.insert(write_numbered_image(m_cImage, m_cFolder.file("a.pgm")));
    }
    return paths;
  };
  auto others = std::async(std::launch::async, write);
  std::set<std::string> paths = write();
  paths.merge(others.get());
  EXPECT_EQ(paths.size(), 40U);
}

TEST_F(ImageFile, ANewOneReplacesNoneThatHasComeWhileItWasWritten) {
  const std::string path = m_cFolder.file("a.pgm");
  AtomicFile file(path);
  std::ofstream(path) << "of another";
  EXPECT_FALSE(file.commit_new());
  EXPECT_EQ(read_file(path), "of another");
}

TEST_F(ImageFile, OnlyTheNamesOfItsFormsAreImagePaths) {
  EXPECT_TRUE(is_image_path("a.png"));
  EXPECT_TRUE(is_image_path("a.pgm"));
  EXPECT_TRUE(is_image_path("a.fir"));
  EXPECT_TRUE(is_image_path("b.PNG"));
  EXPECT_TRUE(is_image_path("c.d/e.Bmp"));
  EXPECT_FALSE(is_image_path("png"));
  EXPECT_FALSE(is_image_path("a.png/b"));
  EXPECT_FALSE(is_image_path("a.jpg"));
}

}  // namespace
}  // namespace hvk3::test
