#include "foundation/file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <sstream>

#include "foundation/exceptions.h"
#include "foundation/temporary_file.h"

namespace Osv::file {
namespace {

std::string every_byte(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<char>(i * 7);
  }
  return bytes;
}

std::string text(const std::vector<unsigned char>& bytes) { return {bytes.begin(), bytes.end()}; }

std::string binary(const std::string& bytes) {
  const testing_support::TemporaryFile file(bytes);
  std::vector<unsigned char> out{1, 2, 3};
  ReadBinary(file.path().c_str(), out);
  return text(out);
}

TEST(ReadStream, GivesAllBytesAroundThePieceSize) {
  for (const std::size_t size : {0U, 1U, 99U, 100U, 101U, 200U, 257U}) {
    std::istringstream in(every_byte(size));
    EXPECT_EQ(text(read(in)), every_byte(size)) << size;
  }
}

TEST(ReadStream, BeginsAtThePresentPosition) {
  std::istringstream in("abcdef");
  in.ignore(2);
  EXPECT_EQ(text(read(in)), "cdef");
}

TEST(ReadStream, EndsAtAStreamThatHasFailed) {
  std::istringstream in("abc");
  in.setstate(std::ios::badbit);
  EXPECT_TRUE(read(in).empty());
}

TEST(ReadBinary, ReplacesTheOldContentWithAllBytesAroundThePieceSize) {
  for (const std::size_t size : {0U, 1U, 999U, 1000U, 1001U, 2500U}) {
    EXPECT_EQ(binary(every_byte(size)), every_byte(size)) << size;
  }
}

TEST(ReadBinary, OfAMissingFileThrowsAndKeepsTheOldContent) {
  std::vector<unsigned char> out{1, 2, 3};
  try {
    ReadBinary("/nonexistent/x", out);
    FAIL();
  } catch (const CXFileNotFound& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), ENOENT);
    EXPECT_EQ(failure.GetDescription(), std::string("/nonexistent/x ") + std::strerror(ENOENT));
  }
  EXPECT_EQ(out.size(), 3U);
}

TEST(ReadBinary, OfADirectoryEndsWithNothing) {
  std::vector<unsigned char> out{1};
  ReadBinary("/", out);
  EXPECT_TRUE(out.empty());
}

}  // namespace
}  // namespace Osv::file
