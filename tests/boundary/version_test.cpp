#include "boundary/version.h"

#include <gtest/gtest.h>

#include <array>
#include <locale>
#include <string>

namespace Osv::lx {
namespace {

const ClVersion kVersion(2, 0, 1425, 2);

TEST(Version, ASizeOfTheLengthIsTooSmallAndTheNeededSizeComesBack) {
  std::array<char, 16> buffer{};
  unsigned long size = 10;
  EXPECT_EQ(kVersion.Version(buffer.data(), size), 0x20000011U);
  EXPECT_EQ(size, 11U);
}

TEST(Version, ANullBufferLeavesTheSizeAlone) {
  unsigned long size = 200;
  EXPECT_EQ(kVersion.Version(nullptr, size), 0x2000003CU);
  EXPECT_EQ(size, 200U);
}

TEST(Version, TheFourNumbersComeOutJoinedByPoints) {
  std::array<char, 16> buffer{};
  unsigned long size = buffer.size();
  EXPECT_EQ(kVersion.Version(buffer.data(), size), 0U);
  EXPECT_STREQ(buffer.data(), "2.0.1425.2");
  EXPECT_EQ(size, 11U);
}

TEST(Version, TheDefaultVersionHasAnEmptyText) {
  char buffer = 'x';
  unsigned long size = 1;
  EXPECT_EQ(ClVersion().Version(&buffer, size), 0U);
  EXPECT_EQ(buffer, '\0');
  EXPECT_EQ(size, 1U);
}

TEST(Version, ACopyHasTheSameText) {
  ClVersion copy;
  copy = kVersion;
  std::array<char, 16> buffer{};
  unsigned long size = buffer.size();
  EXPECT_EQ(ClVersion(copy).Version(buffer.data(), size), 0U);
  EXPECT_STREQ(buffer.data(), "2.0.1425.2");
}

TEST(Version, NegativeNumbersKeepTheirSign) {
  std::array<char, 16> buffer{};
  unsigned long size = buffer.size();
  EXPECT_EQ(ClVersion(-1, 2, 3, 4).Version(buffer.data(), size), 0U);
  EXPECT_STREQ(buffer.data(), "-1.2.3.4");
}

/// Digits in groups of three, as many people write them.
struct Grouping : std::numpunct<char> {
  std::string do_grouping() const override { return "\3"; }
};

TEST(Version, TheClientsLocaleDoesNotChangeTheText) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
  const ClVersion version(2, 0, 1425, 2);
  std::locale::global(before);
  std::array<char, 16> buffer{};
  unsigned long size = buffer.size();
  EXPECT_EQ(version.Version(buffer.data(), size), 0U);
  EXPECT_STREQ(buffer.data(), "2.0.1425.2");
}

}  // namespace
}  // namespace Osv::lx
