#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/bitmap_reference.h"
#include "foundation/exceptions.h"
#include "foundation/temporary_file.h"

namespace Osv::utilities {
namespace {

using testing_support::pixels;
using testing_support::TemporaryFile;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kHeadersSize = 54;

ClSimpleBitmap created(unsigned long width, unsigned long height, unsigned long bits,
                       unsigned long compression = 0) {
  std::mt19937 random(static_cast<unsigned int>(width * 31 + height));
  ClSimpleBitmap bitmap;
  bitmap.Create(width, height, bits, compression);
  testing_support::fill_randomly(bitmap, random);
  return bitmap;
}

Bytes block(const ClSimpleBitmap& bitmap) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {bytes, bytes + bitmap.FullSize()};
}

std::string content(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string saved(const ClSimpleBitmap& bitmap) {
  const TemporaryFile file("");
  bitmap.Save(file.path().c_str());
  return content(file.path());
}

/// The bytes of a bitmap file, a small one of 8 bits at first, for a test to spoil.
class FileBytes {
 public:
  explicit FileBytes(const ClSimpleBitmap& bitmap = created(5, 3, 8)) : m_bytes(saved(bitmap)) {}

  template <typename T>
  FileBytes& put(std::size_t position, T value) {
    std::memcpy(m_bytes.data() + position, &value, sizeof(value));
    return *this;
  }
  FileBytes& offset(std::uint32_t value) { return put(10, value); }
  FileBytes& width(std::int32_t value) { return put(kFileHeaderSize + 4, value); }
  FileBytes& height(std::int32_t value) { return put(kFileHeaderSize + 8, value); }
  FileBytes& bits(std::uint16_t value) { return put(kFileHeaderSize + 14, value); }
  FileBytes& compression(std::uint32_t value) { return put(kFileHeaderSize + 16, value); }
  FileBytes& colours(std::uint32_t value) { return put(kFileHeaderSize + 32, value); }

  FileBytes& cut(std::size_t size) {
    m_bytes.resize(size);
    return *this;
  }
  FileBytes& insert(std::size_t position, const std::string& bytes) {
    m_bytes.insert(position, bytes);
    return *this;
  }

  const std::string& bytes() const { return m_bytes; }

 private:
  std::string m_bytes;
};

ClSimpleBitmap loaded(const std::string& bytes) {
  const TemporaryFile file(bytes);
  ClSimpleBitmap bitmap;
  bitmap.Load(file.path().c_str());
  return bitmap;
}

/// Expects `Load` to throw a `Failure`, to leave the bitmap as it was, and gives the failure.
template <typename Failure>
void expect_load_fails(const std::string& path, int number, const std::string& text) {
  ClSimpleBitmap bitmap = created(3, 2, 8);
  const Bytes before = block(bitmap);
  try {
    bitmap.Load(path.c_str());
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), number);
    EXPECT_EQ(failure.what(), text);
  }
  EXPECT_EQ(block(bitmap), before);
}

void expect_refused(const std::string& bytes, const std::string& text) {
  const TemporaryFile file(bytes);
  expect_load_fails<CXOtherException>(file.path(), -4000, text);
}

/// A file that ends too early is a failure of the system without a number of the system.
void expect_ends_early(const std::string& bytes) {
  const TemporaryFile file(bytes);
  errno = EPERM;
  expect_load_fails<CXSystemException>(file.path(), 0, std::strerror(0));
}

void expect_no_memory(const std::string& bytes) {
  const TemporaryFile file(bytes);
  ClSimpleBitmap bitmap = created(3, 2, 8);
  const Bytes before = block(bitmap);
  EXPECT_THROW(bitmap.Load(file.path().c_str()), CXMemoryAllocException);
  EXPECT_EQ(block(bitmap), before);
}

/// A pipe with a name, which can't be positioned. It holds `bytes` and stays open for more.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& bytes)
      : m_path(::testing::TempDir() + "hvk3_pipe_" + std::to_string(getpid())) {
    EXPECT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    m_descriptor = open(m_path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(write(m_descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  ~NamedPipe() {
    close(m_descriptor);
    std::remove(m_path.c_str());
  }
  NamedPipe(const NamedPipe&) = delete;
  NamedPipe& operator=(const NamedPipe&) = delete;

  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
  int m_descriptor = -1;
};

/// No file grows beyond a size while it lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    (void)std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*m_handler)(int);
  rlimit m_before{};
};

void expect_save_fails(const std::string& path, int number) {
  try {
    created(3, 2, 8).Save(path.c_str());
    FAIL();
  } catch (const CXSystemException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), number);
  }
}

TEST(Save, WritesTheHeaderOfTheFileThenTheBlockByteByByte) {
  ClSimpleBitmap bitmap = created(9, 2, 1);
  bitmap.SetPels(0x4CE5, 0x4CE6);
  const Bytes rows{0xAA, 0x80, 0, 0, 0x55, 0, 0, 0};
  std::copy(rows.begin(), rows.end(), bitmap.Pixel());
  const Bytes expected{'B',  'M',  70, 0, 0,    0,    0,    0,    0,    0, 62, 0, 0, 0,  //
                       40,   0,    0,  0, 9,    0,    0,    0,    2,    0, 0,  0, 1, 0,
                       1,    0,    0,  0, 0,    0,    8,    0,    0,    0,  //
                       0xE5, 0x4C, 0,  0, 0xE6, 0x4C, 0,    0,    0,    0, 0,  0, 0, 0,
                       0,    0,    0,  0, 0,    0,    0xFF, 0xFF, 0xFF, 0,  //
                       0xAA, 0x80, 0,  0, 0x55, 0,    0,    0};
  const std::string file = saved(bitmap);
  EXPECT_EQ(Bytes(file.begin(), file.end()), expected);
}

struct Shape {
  unsigned long bits;
  unsigned long compression;
  unsigned long palette_bytes;
};

class SaveAtDepth : public testing::TestWithParam<Shape> {};

INSTANTIATE_TEST_SUITE_P(Depths, SaveAtDepth,
                         testing::Values(Shape{1, 0, 8}, Shape{2, 0, 16}, Shape{4, 0, 64},
                                         Shape{8, 0, 1024}, Shape{16, 0, 0}, Shape{24, 0, 0},
                                         Shape{32, 0, 0}, Shape{16, 3, 12}, Shape{32, 3, 12}));

TEST_P(SaveAtDepth, WritesSizeOffsetAndTheWholeBlock) {
  const ClSimpleBitmap bitmap = created(13, 5, GetParam().bits, GetParam().compression);
  const std::string file = saved(bitmap);
  std::uint32_t size = 0;
  std::uint32_t offset = 0;
  std::memcpy(&size, file.data() + 2, 4);
  std::memcpy(&offset, file.data() + 10, 4);
  EXPECT_EQ(size, file.size());
  EXPECT_EQ(size, kFileHeaderSize + bitmap.FullSize());
  EXPECT_EQ(offset, kHeadersSize + GetParam().palette_bytes);
  EXPECT_EQ(Bytes(file.begin() + kFileHeaderSize, file.end()), block(bitmap));
}

TEST(Save, OfAnEmptyBitmapWritesNoFile) {
  const std::string path = ::testing::TempDir() + "hvk3_none_" + std::to_string(getpid());
  ClSimpleBitmap().Save(path.c_str());
  EXPECT_NE(access(path.c_str(), F_OK), 0);
}

TEST(Save, OfAnEmptyBitmapLeavesAFileAsItIs) {
  const TemporaryFile file("kept");
  ClSimpleBitmap().Save(file.path().c_str());
  EXPECT_EQ(content(file.path()), "kept");
}

TEST(Save, OfAnEmptyBitmapDoesNotMindAPathThatCannotBeOpened) {
  EXPECT_NO_THROW(ClSimpleBitmap().Save("/nonexistent/x"));
}

TEST(Save, ReplacesALongerFile) {
  const TemporaryFile file(std::string(5000, 'x'));
  created(3, 2, 8).Save(file.path().c_str());
  EXPECT_EQ(content(file.path()), saved(created(3, 2, 8)));
}

TEST(Save, ToAPathThatCannotBeOpenedIsAFailureOfTheSystem) {
  expect_save_fails("/nonexistent/x", ENOENT);
  expect_save_fails(::testing::TempDir(), EISDIR);
}

TEST(Save, ToAFullDiskIsAFailureOfTheSystem) { expect_save_fails("/dev/full", ENOSPC); }

TEST(Save, FailsWhicheverPartDoesNotFit) {
  const TemporaryFile file("");
  for (const rlim_t room : {0U, 13U, 14U, 1000U, 1078U, 1085U}) {
    const FileSizeLimit limit(room);
    expect_save_fails(file.path(), EFBIG);
  }
}

TEST(Save, SucceedsWhenAllPartsJustFit) {
  const TemporaryFile file("");
  const FileSizeLimit limit(1086);
  created(3, 2, 8).Save(file.path().c_str());
  EXPECT_EQ(content(file.path()).size(), 1086U);
}

TEST(SaveThenLoad, GivesTheSameBlockWithItsResolution) {
  for (unsigned long width = 1; width <= 9; ++width) {
    ClSimpleBitmap bitmap = created(width, 10 - width, 8);
    bitmap.SetPels(19685, 39370);
    EXPECT_EQ(block(loaded(saved(bitmap))), block(bitmap)) << width;
  }
}

TEST(SaveThenLoad, GivesTheSameFrame) {
  const ClSimpleBitmap bitmap = created(321, 241, 8);
  EXPECT_EQ(block(loaded(saved(bitmap))), block(bitmap));
}

TEST(SaveThenLoad, KeepsAShortenedPalette) {
  ClSimpleBitmap bitmap = created(5, 3, 8);
  bitmap.BI()->biClrUsed = 2;
  EXPECT_EQ(saved(bitmap).size(), kHeadersSize + 8 + 24);
  EXPECT_EQ(block(loaded(saved(bitmap))), block(bitmap));
}

TEST(Load, ReplacesTheOldPicture) {
  const TemporaryFile file(saved(created(5, 3, 8)));
  ClSimpleBitmap bitmap = created(300, 200, 24);
  bitmap.Load(file.path().c_str());
  EXPECT_EQ(block(bitmap), block(created(5, 3, 8)));
}

TEST(Load, OfAPathThatCannotBeOpenedIsAFailureOfTheSystem) {
  expect_load_fails<CXSystemException>("/nonexistent/x", ENOENT, std::strerror(ENOENT));
}

TEST(Load, OfAnEmptyFileIsRefused) { expect_refused("", "The file is empty"); }

TEST(Load, OfADirectoryWhichGivesNoByteIsRefusedAsEmpty) {
  expect_load_fails<CXOtherException>(::testing::TempDir(), -4000, "The file is empty");
}

TEST(Load, OfAFileShorterThanItsOwnHeaderIsRefused) {
  for (const std::size_t size : {1U, 3U, 13U}) {
    expect_refused(FileBytes().cut(size).bytes(), "The file is not bitmap");
  }
}

TEST(Load, OfAFileWithAnotherSignatureIsRefused) {
  expect_refused(FileBytes().put(0, 'b').bytes(), "The file is not bitmap");
  expect_refused(FileBytes().put(1, 'N').bytes(), "The file is not bitmap");
  expect_refused(std::string(14, 'B'), "The file is not bitmap");
}

TEST(Load, OfAFileThatEndsWithinTheHeaderIsAFailureOfTheSystem) {
  expect_ends_early(FileBytes().cut(14).bytes());
  expect_ends_early(FileBytes().cut(53).bytes());
}

TEST(Load, OfAnotherDepthIsRefused) {
  for (const std::uint16_t bits : std::vector<std::uint16_t>{0, 1, 4, 7, 16, 24, 32, 65535}) {
    expect_refused(FileBytes().bits(bits).bytes(), "Only gray scale bitmap can be loaded.");
  }
}

TEST(Load, OfASaved24BitBitmapIsRefused) {
  expect_refused(saved(created(5, 3, 24)), "Only gray scale bitmap can be loaded.");
}

TEST(Load, OfACompressedFileIsRefused) {
  for (const std::uint32_t compression : {1U, 2U, 3U, 4294967295U}) {
    expect_refused(FileBytes().compression(compression).bytes(),
                   "Only RGB compression bitmap can be loaded");
  }
}

TEST(Load, LooksAtTheDepthBeforeTheCompressionAndAtBothBeforeThePalette) {
  expect_refused(FileBytes().bits(24).compression(3).bytes(),
                 "Only gray scale bitmap can be loaded.");
  expect_refused(FileBytes().compression(3).cut(kHeadersSize).bytes(),
                 "Only RGB compression bitmap can be loaded");
}

TEST(Load, OfAFileThatEndsWithinThePaletteIsAFailureOfTheSystem) {
  for (const std::size_t size : {0U, 1U, 1000U, 1023U}) {
    expect_ends_early(FileBytes().cut(kHeadersSize + size).bytes());
  }
}

TEST(Load, TakesNoMemoryForAPaletteThatTheFileOnlyPromises) {
  expect_ends_early(FileBytes().colours(4294967295U).bytes());
}

TEST(Load, TakesAPaletteOfMoreEntriesThanItsDepthNeeds) {
  const std::string more(1200, 'p');
  const ClSimpleBitmap bitmap =
      loaded(FileBytes().colours(556).insert(kHeadersSize + 1024, more).bytes());
  EXPECT_EQ(bitmap.PalSize(), 556U);
  EXPECT_EQ(bitmap.Palette()[555], 0x70707070U);
  EXPECT_EQ(pixels(bitmap), pixels(created(5, 3, 8)));
}

TEST(Load, OfAFileWithAGapThatCannotBePositionedIsRefused) {
  const NamedPipe pipe(FileBytes().offset(kHeadersSize + 1024 + 1).bytes());
  expect_load_fails<CXOtherException>(pipe.path(), -4000, "The pixel were not found.");
}

TEST(Load, GoesOnAtTheFilePositionThatIsTheWidthOfTheGap) {
  constexpr std::uint32_t kGap = 30;
  const std::string file = FileBytes()
                               .offset(kHeadersSize + 1024 + kGap)
                               .insert(kHeadersSize + 1024, std::string(kGap, 'g'))
                               .bytes();
  EXPECT_EQ(pixels(loaded(file)), Bytes(file.begin() + kGap, file.begin() + kGap + 24));
}

TEST(Load, DoesNotSeekForAnOffsetAtOrBelowTheEndOfThePalette) {
  for (const std::uint32_t offset : {0U, 1U, 53U, 54U, 1077U, 1078U}) {
    EXPECT_EQ(block(loaded(FileBytes().offset(offset).bytes())), block(created(5, 3, 8))) << offset;
  }
}

TEST(Load, FindsNoPixelsBehindAGapThatLeadsBeyondTheFile) {
  for (const std::uint32_t offset : {5000U, 2147483648U, 4294967295U}) {
    EXPECT_EQ(pixels(loaded(FileBytes().offset(offset).bytes())), Bytes(24, 0)) << offset;
  }
}

TEST(Load, OfAFileWithFewerPixelsThanPromisedGivesZeroForTheOthers) {
  Bytes expected = pixels(created(5, 3, 8));
  std::fill(expected.begin() + 10, expected.end(), static_cast<unsigned char>(0));
  EXPECT_EQ(pixels(loaded(FileBytes().cut(kHeadersSize + 1024 + 10).bytes())), expected);
}

TEST(Load, OfAFileThatPromisesFarMorePixelsGivesThePromisedSize) {
  const ClSimpleBitmap bitmap = loaded(FileBytes().width(3000).height(2000).bytes());
  EXPECT_EQ(bitmap.PixelSize(), 6000000U);
  EXPECT_EQ(bitmap.Pixel()[5999999], 0);
}

TEST(Load, IgnoresWhatFollowsThePixels) {
  const std::string file = FileBytes().bytes() + std::string(3000, 'x');
  EXPECT_EQ(block(loaded(file)), block(created(5, 3, 8)));
}

TEST(Load, ComparesNoSizeFieldWithAnything) {
  const FileBytes file = FileBytes().put(2, 7U).put(kFileHeaderSize, 124U).put(34, 99U);
  const ClSimpleBitmap bitmap = loaded(file.bytes());
  EXPECT_EQ(bitmap.BI()->biSize, 124U);
  EXPECT_EQ(bitmap.BI()->biSizeImage, 99U);
  EXPECT_EQ(pixels(bitmap), pixels(created(5, 3, 8)));
}

TEST(Load, OfASizeThatNoBlockHasFailsForLackOfMemory) {
  constexpr std::int32_t kLargest = 2147483647;
  expect_no_memory(FileBytes().width(-1).bytes());
  expect_no_memory(FileBytes().height(-3).bytes());
  expect_no_memory(FileBytes().width(-2147483647 - 1).height(2).bytes());
  expect_no_memory(FileBytes().width(kLargest).height(kLargest).bytes());
}

TEST(Load, LooksAtThePaletteBeforeTheSize) {
  expect_ends_early(FileBytes().height(-3).cut(kHeadersSize + 9).bytes());
}

TEST(Load, OfAPictureWithoutPixelsGivesABlockWithoutPixels) {
  const ClSimpleBitmap bitmap = loaded(FileBytes().width(0).height(0).bytes());
  EXPECT_FALSE(bitmap.Empty());
  EXPECT_EQ(bitmap.PixelSize(), 0U);
}

/// Loads, or fails and keeps the old content.
void expect_survives(const std::string& bytes) {
  const TemporaryFile file(bytes);
  ClSimpleBitmap bitmap = created(3, 2, 8);
  try {
    bitmap.Load(file.path().c_str());
  } catch (const CXException&) {
    EXPECT_EQ(block(bitmap), block(created(3, 2, 8)));
  }
  EXPECT_EQ(block(bitmap).size(), bitmap.FullSize());
}

TEST(Load, SurvivesEveryByteOfItsHeadersBeingSpoilt) {
  const FileBytes good;
  for (std::size_t position = 0; position < kHeadersSize; ++position) {
    for (const char byte : {'\0', '\x01', '\x7F', '\xFF'}) {
      FileBytes spoilt = good;
      expect_survives(spoilt.put(position, byte).bytes());
    }
  }
}

}  // namespace
}  // namespace Osv::utilities
