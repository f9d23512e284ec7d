#include "support/memory.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Osv::fuzz {
namespace {

constexpr std::size_t kLargestBlock = std::size_t{16} << 20;

std::atomic<bool> g_watched = false;
std::atomic<unsigned char> g_fill = 0;

}  // namespace

WatchedMemory::WatchedMemory() { g_watched = true; }
WatchedMemory::~WatchedMemory() { g_watched = false; }

void fill_new_memory_with(unsigned char byte) { g_fill = byte; }
unsigned char filling() { return g_fill; }

}  // namespace Osv::fuzz

// The programs are linked with `--wrap=malloc`: calls from their own objects come here, and those
// of `new` from everywhere.
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
void* __real_malloc(std::size_t size);
[[gnu::visibility("default")]] void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
  if (!Osv::fuzz::g_watched) {
    return __real_malloc(size);
  }
  void* const memory = size > Osv::fuzz::kLargestBlock ? nullptr : __real_malloc(size);
  if (memory != nullptr) {
    std::memset(memory, Osv::fuzz::g_fill, size);
  }
  return memory;
}
// NOLINTEND(bugprone-reserved-identifier)
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size != 0 ? size : 1);
}

void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}

void* operator new[](std::size_t size) { return operator new(size); }

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
