#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "driver/driver_fixture.h"

namespace {

std::atomic<long> g_allocations{0};

void* count_and_allocate(std::size_t size) noexcept {
  ++g_allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void* count_and_allocate_or_throw(std::size_t size) {
  void* const block = count_and_allocate(size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

// Out of line: inlined, the compiler takes the pair of malloc and delete for a mistake.
__attribute__((noinline)) void release(void* block) { std::free(block); }

}  // namespace

void* operator new(std::size_t size) { return count_and_allocate_or_throw(size); }
void* operator new[](std::size_t size) { return count_and_allocate_or_throw(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return count_and_allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return count_and_allocate(size);
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }

namespace Osv::lx {
namespace {

constexpr int kFrames = 50;

class FrameAllocations : public DriverFixture {
 protected:
  FrameAllocations() {
    bench.record(false);
    bench.set_timeline(simulator::Timeline::settled_finger());
  }

  /// What `kFrames` frames allocate once capture runs.
  long allocations_of_frames() {
    const auto fetch = [&] { driver.GetLiveBitmap(driver.channel(), bitmap); };
    EXPECT_EQ(driver.SetActiveChannel(driver.channel(), bitmap), 0UL);
    fetch();
    fetch();
    const long before = g_allocations;
    for (int frame = 0; frame < kFrames; ++frame) {
      fetch();
    }
    return g_allocations - before;
  }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(FrameAllocations, APlainFrameAllocatesNothing) { EXPECT_EQ(allocations_of_frames(), 0); }

TEST_F(FrameAllocations, TheDirtyFlagAndTheSwitchOfDetectionAllocateNothing) {
  allocations_of_frames();
  const long before = g_allocations;
  EXPECT_TRUE(driver.IsDirty(driver.channel()));  // no worker's bitmap was ever shaped
  EXPECT_FALSE(driver.SupressFingerDetection());
  EXPECT_EQ(g_allocations, before);
}

}  // namespace
}  // namespace Osv::lx
