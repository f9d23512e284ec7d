// The program's allocator where the address sanitizer has one of its own, in front of which it
// stands. What leaks the sanitizer tells itself.

#include <cerrno>
#include <cstddef>
#include <new>

#include "faults/heap.h"

namespace {

using Osv::faults::Refusal;

// Nothing of this file is watched, since it runs before the sanitizer is set up; a function of the
// library would be, with the copy of another file.
Refusal s_pfnRefuses = nullptr;

/// @param caller whom the block is for
bool is_refused(const void* caller) {
  const Refusal refuses = __atomic_load_n(&s_pfnRefuses, __ATOMIC_SEQ_CST);
  const bool refused = refuses != nullptr && refuses(caller);
  errno = refused ? ENOMEM : errno;
  return refused;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's names and the C library's
extern "C" {

#define HVK3_EXPORTED __attribute__((visibility("default")))

void* __interceptor_malloc(std::size_t size);
void* __interceptor_calloc(std::size_t count, std::size_t size);
void* __interceptor_realloc(void* block, std::size_t size);
void __interceptor_free(void* block);

HVK3_EXPORTED void* malloc(std::size_t size) noexcept {
  return is_refused(__builtin_return_address(0)) ? nullptr : __interceptor_malloc(size);
}

HVK3_EXPORTED void* calloc(std::size_t count, std::size_t size) noexcept {
  return is_refused(__builtin_return_address(0)) ? nullptr : __interceptor_calloc(count, size);
}

HVK3_EXPORTED void* realloc(void* block, std::size_t size) noexcept {
  return is_refused(__builtin_return_address(0)) ? nullptr : __interceptor_realloc(block, size);
}

}  // extern "C"

namespace {

void* allocated(const void* caller, std::size_t size) noexcept {
  return is_refused(caller) ? nullptr : __interceptor_malloc(size);
}

void* allocated_or_thrown(const void* caller, std::size_t size) {
  void* const block = allocated(caller, size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

}  // namespace

HVK3_EXPORTED void* operator new(std::size_t size) {
  return allocated_or_thrown(__builtin_return_address(0), size);
}
HVK3_EXPORTED void* operator new[](std::size_t size) {
  return allocated_or_thrown(__builtin_return_address(0), size);
}
HVK3_EXPORTED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(__builtin_return_address(0), size);
}
HVK3_EXPORTED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(__builtin_return_address(0), size);
}
HVK3_EXPORTED void operator delete(void* block) noexcept { __interceptor_free(block); }
HVK3_EXPORTED void operator delete[](void* block) noexcept { __interceptor_free(block); }
HVK3_EXPORTED void operator delete(void* block, std::size_t) noexcept { __interceptor_free(block); }
HVK3_EXPORTED void operator delete[](void* block, std::size_t) noexcept {
  __interceptor_free(block);
}
HVK3_EXPORTED void operator delete(void* block, const std::nothrow_t&) noexcept {
  __interceptor_free(block);
}
HVK3_EXPORTED void operator delete[](void* block, const std::nothrow_t&) noexcept {
  __interceptor_free(block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace Osv::faults {

std::optional<long> live_blocks() { return std::nullopt; }

void refuse_allocations(Refusal refuses) {
  __atomic_store_n(&s_pfnRefuses, refuses, __ATOMIC_SEQ_CST);
}

}  // namespace Osv::faults
