#include "driver/support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> s_nAllocations{0};

}  // namespace

namespace Osv::testing_support {

std::size_t allocations() { return s_nAllocations.load(std::memory_order_relaxed); }

}  // namespace Osv::testing_support

// The other forms of the language go through these.
void* operator new(std::size_t size) {
  s_nAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size == 0 ? 1 : size); memory != nullptr) {
    return memory;
  }
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
