#include "foundation/system_failures.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "foundation/image_functions.h"
#include "foundation/multi_string.h"
#include "foundation/mutex.h"
#include "foundation/temporary_file.h"

namespace Osv {
namespace {

using testing_support::eFailing;
using testing_support::FailingSystem;

utilities::ClSimpleBitmap small_bitmap() {
  utilities::ClSimpleBitmap bitmap;
  bitmap.Create(3, 3, 8, 0);
  return bitmap;
}

TEST(BitmapWithoutMemory, CannotBeCreatedAndIsEmpty) {
  utilities::ClSimpleBitmap bitmap = small_bitmap();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(bitmap.Create(5, 5, 8, 0), CXMemoryAllocException);
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapWithoutMemory, CannotBeCopiedToAndIsEmpty) {
  const utilities::ClSimpleBitmap source = small_bitmap();
  utilities::ClSimpleBitmap bitmap = small_bitmap();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(bitmap.Copy(source.BI()), CXMemoryAllocException);
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapWithoutMemory, CannotBeAssignedToAndIsEmpty) {
  const utilities::ClSimpleBitmap source = small_bitmap();
  utilities::ClSimpleBitmap bitmap = small_bitmap();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(bitmap = source, CXMemoryAllocException);
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapWithoutMemory, CannotBeRescaledAndStaysAsItWas) {
  utilities::ClSimpleBitmap bitmap = small_bitmap();
  const tagBITMAPINFOHEADER* const block = bitmap.BI();
  const FailingSystem failing(eFailing::ArrayNew);
  for (const auto mode :
       {utilities::ClSimpleBitmap::eRescaleBilinear, utilities::ClSimpleBitmap::eRescaleDouble}) {
    EXPECT_THROW(bitmap.Rescale(5, 5, mode), CXMemoryAllocException);
    EXPECT_EQ(bitmap.BI(), block);
  }
}

TEST(BitmapWithoutMemory, CannotBeClipped) {
  const utilities::ClSimpleBitmap bitmap = small_bitmap();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW((void)bitmap.clip(0, 0, 2, 2), CXMemoryAllocException);
}

TEST(BitmapWithoutMemory, CannotBeLoadedAndStaysAsItWas) {
  utilities::ClSimpleBitmap bitmap = small_bitmap();
  const testing_support::TemporaryFile file("");
  bitmap.Save(file.path().c_str());
  const tagBITMAPINFOHEADER* const block = bitmap.BI();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(bitmap.Load(file.path().c_str()), CXMemoryAllocException);
  EXPECT_EQ(bitmap.BI(), block);
}

class BitmapFileThatCannotBeClosed : public testing::Test {
 protected:
  static void expect_failure(const std::string& path, int number) {
    utilities::ClSimpleBitmap bitmap;
    bitmap.Create(1, 1, 1, 0);  // as small as a file can be: no buffer overflows early
    const FailingSystem failing(eFailing::FileClose, EIO);
    try {
      bitmap.Save(path.c_str());
      FAIL();
    } catch (const CXSystemException& failure) {
      EXPECT_EQ(failure.GetErrorNumber(), number);
    }
  }
};

TEST_F(BitmapFileThatCannotBeClosed, IsAFailureOfTheSystem) {
  const testing_support::TemporaryFile file("");
  expect_failure(file.path(), EIO);
}

TEST_F(BitmapFileThatCannotBeClosed, TellsTheWriteThatFailedBefore) {
  expect_failure("/dev/full", ENOSPC);
}

TEST(BlockWithoutMemory, IsRefused) {
  const utilities::ClSimpleBitmap source = small_bitmap();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW((void)img::create_bmp_copy(source.BI(), false), CXMemoryAllocException);
  EXPECT_THROW((void)img::create_bmp(1, 1, 8, 0, 0, nullptr, false), CXMemoryAllocException);
}

TEST(MultiStringWithoutMemory, KeepsItsStrings) {
  ClMultiString list;
  list.Add("ab");
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(list.Add("c"), CXMemoryAllocException);
  EXPECT_THROW(ClMultiString{list}, CXMemoryAllocException);
  EXPECT_STREQ(list.Next(), "ab");
  EXPECT_EQ(list.Next(), nullptr);
}

TEST(MultiStringWithoutMemory, BeginsAgainAllTheSame) {
  ClMultiString list;
  list.Add("ab");
  list.Next();
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(list.Add("c"), CXMemoryAllocException);
  EXPECT_STREQ(list.Next(), "ab");
}

class MutexThatCannotBeSetUp : public testing::TestWithParam<eFailing> {};

INSTANTIATE_TEST_SUITE_P(Steps, MutexThatCannotBeSetUp,
                         testing::Values(eFailing::MutexAttributes, eFailing::MutexType,
                                         eFailing::MutexInit));

TEST_P(MutexThatCannotBeSetUp, ThrowsWithTheErrorNumberAsItStands) {
  for (const int number : {ENOMEM, 0}) {
    const FailingSystem failing(GetParam(), number);
    try {
      const CXMutex mutex;
      FAIL();
    } catch (const CXSystemException& failure) {
      EXPECT_EQ(failure.GetErrorNumber(), number);
    }
  }
}

TEST_P(MutexThatCannotBeSetUp, LeavesNoAttributesBehind) {
  const FailingSystem failing(GetParam());
  EXPECT_THROW(CXMutex(), CXSystemException);
  EXPECT_EQ(failing.attributes_alive(), 0);
}

TEST(MutexThatCanBeSetUp, LeavesNoAttributesBehind) {
  const FailingSystem working(eFailing::Nothing);
  const CXMutex mutex;
  EXPECT_EQ(working.attributes_alive(), 0);
}

}  // namespace
}  // namespace Osv
