#include "support/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_allocations{0};
std::atomic<long> g_releases{0};

thread_local bool t_bNoMemory = false;

void* count_and_allocate(std::size_t size) noexcept {
  if (t_bNoMemory) {
    return nullptr;
  }
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

// Not inlined, or g++ takes the pair of a new and a delete that it sees half of for a mismatch.
[[gnu::noinline]] void release(void* block) noexcept {
  g_releases += block == nullptr ? 0 : 1;
  std::free(block);
}

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

namespace Osv::test {

long allocations_so_far() { return g_allocations; }

long blocks_in_use() { return g_allocations - g_releases; }

NoMemory::NoMemory() { t_bNoMemory = true; }

NoMemory::~NoMemory() { t_bNoMemory = false; }

}  // namespace Osv::test
