#include "foundation/malloc_pointer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace Osv::lx {
namespace {

static_assert(sizeof(MAllocPointer) == sizeof(void*));

TEST(MallocPointer, HoldsNothingAtFirst) { EXPECT_EQ(MAllocPointer().get(), nullptr); }

TEST(MallocPointer, HoldsABlockOfTheSizeAskedFor) {
  const MAllocPointer pointer(16);
  ASSERT_NE(pointer.get(), nullptr);
  std::memset(pointer.get(), 1, 16);
}

TEST(MallocPointer, HandsItsBlockOverAndHoldsNothingThen) {
  MAllocPointer pointer(16);
  void* const held = pointer.get();
  void* const block = pointer.detach();
  EXPECT_EQ(block, held);
  EXPECT_EQ(pointer.get(), nullptr);
  std::free(block);
}

TEST(MallocPointer, FreesWhatItHeldForWhatItTakesOver) {
  MAllocPointer pointer(16);
  void* const block = std::malloc(8);
  pointer.attach(block);
  EXPECT_EQ(pointer.get(), block);
  pointer.attach(nullptr);
  EXPECT_EQ(pointer.get(), nullptr);
}

TEST(MallocPointer, FreeingNullDoesNothing) {
  MAllocPointer::free_memory(nullptr);
  MAllocPointer::free_memory(MAllocPointer::alloc_memory(4));
}

}  // namespace
}  // namespace Osv::lx
