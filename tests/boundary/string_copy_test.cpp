#include "boundary/string_copy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kText = "twenty characters ok";

TEST(StringCopy, ASizeThatLeavesNoRoomForTheTerminatorIsRefusedAndTheNeededSizeComesBack) {
  std::vector<char> buffer(20, 'x');
  unsigned long size = 20;
  EXPECT_EQ(StringCpy(kText.c_str(), buffer.data(), size), 17U);
  EXPECT_EQ(size, 21U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), std::string(20, 'x'));
}

TEST(StringCopy, ANullBufferOfSufficientSizeIsRefusedAndTheNeededSizeComesBack) {
  unsigned long size = 100;
  EXPECT_EQ(StringCpy(kText.c_str(), nullptr, size), 60U);
  EXPECT_EQ(size, 21U);
}

TEST(StringCopy, ABufferOfExactlyTheNeededSizeReceivesTextAndTerminator) {
  std::vector<char> buffer(22, 'x');
  unsigned long size = 21;
  EXPECT_EQ(StringCpy(kText.c_str(), buffer.data(), size), 0U);
  EXPECT_EQ(size, 21U);
  EXPECT_STREQ(buffer.data(), kText.c_str());
  EXPECT_EQ(buffer[21], 'x');
}

TEST(StringCopy, AnEmptyTextNeedsOneByte) {
  char buffer = 'x';
  unsigned long size = 1;
  EXPECT_EQ(StringCpy("", &buffer, size), 0U);
  EXPECT_EQ(buffer, '\0');
}

}  // namespace
