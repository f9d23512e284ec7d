#include "faults/heap.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HVK3_OWN_ALLOCATOR 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HVK3_OWN_ALLOCATOR 0
#endif
#endif
#ifndef HVK3_OWN_ALLOCATOR
#define HVK3_OWN_ALLOCATOR 1
#endif

#if HVK3_OWN_ALLOCATOR

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

using Osv::faults::Refusal;

std::atomic<long> s_nBlocks = 0;
std::atomic<long> s_nBytes = 0;
std::atomic<Refusal> s_pfnRefuses = nullptr;

void count(void* block, long sign) {
  if (block != nullptr) {
    s_nBlocks += sign;
    s_nBytes += sign * static_cast<long>(malloc_usable_size(block));
  }
}

void* counted(void* block) {
  count(block, 1);
  return block;
}

/// @param caller whom the block is for
bool is_refused(const void* caller) {
  const Refusal refuses = s_pfnRefuses;
  const bool refused = refuses != nullptr && refuses(caller);
  errno = refused ? ENOMEM : errno;
  return refused;
}

template <typename Allocate>
void* allocated(const void* caller, Allocate allocate) {
  return is_refused(caller) ? nullptr : counted(allocate());
}

}  // namespace

// The program's own allocator stands in front of the C library's and passes everything on to it.
// NOLINTBEGIN(bugprone-reserved-identifier): the C library's names
extern "C" {

#define HVK3_EXPORTED __attribute__((visibility("default")))

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

HVK3_EXPORTED void* malloc(std::size_t size) noexcept {
  return allocated(__builtin_return_address(0), [&] { return __libc_malloc(size); });
}

HVK3_EXPORTED void* calloc(std::size_t count, std::size_t size) noexcept {
  return allocated(__builtin_return_address(0), [&] { return __libc_calloc(count, size); });
}

HVK3_EXPORTED void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return allocated(__builtin_return_address(0), [&] { return __libc_memalign(alignment, size); });
}

HVK3_EXPORTED void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return allocated(__builtin_return_address(0), [&] { return __libc_memalign(alignment, size); });
}

HVK3_EXPORTED int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  void* const found =
      allocated(__builtin_return_address(0), [&] { return __libc_memalign(alignment, size); });
  *block = found == nullptr ? *block : found;
  return found == nullptr ? ENOMEM : 0;
}

HVK3_EXPORTED void free(void* block) noexcept {
  count(block, -1);
  __libc_free(block);
}

HVK3_EXPORTED void* realloc(void* block, std::size_t size) noexcept {
  const void* const caller = __builtin_return_address(0);
  if (block == nullptr) {
    return allocated(caller, [&] { return __libc_malloc(size); });
  }
  if (size != 0 && is_refused(caller)) {
    return nullptr;
  }
  count(block, -1);
  void* const grown = __libc_realloc(block, size);
  count(grown == nullptr && size != 0 ? block : grown, 1);
  return grown;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

namespace Osv::faults {

std::optional<long> live_blocks() { return s_nBlocks; }

std::optional<long> live_bytes() { return s_nBytes; }

bool is_sanitized() { return false; }

void refuse_allocations(Refusal refuses) { s_pfnRefuses = refuses; }

}  // namespace Osv::faults

#else

#include <atomic>
#include <cstddef>

// Of every sanitizer's runtime; only clang has a header for them.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
std::size_t __sanitizer_get_allocated_size(const volatile void* block);
int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                  std::size_t),
                                              void (*free_hook)(const volatile void*));
}
// NOLINTEND(bugprone-reserved-identifier)

namespace Osv::faults {
namespace {

std::atomic<long> s_nBlocks = 0;
std::atomic<long> s_nBytes = 0;

void count(const volatile void* block, long sign) {
  s_nBlocks += sign;
  s_nBytes += sign * static_cast<long>(__sanitizer_get_allocated_size(block));
}

void on_malloc(const volatile void* block, std::size_t /*size*/) {
  if (block != nullptr) {
    count(block, 1);
  }
}

void on_free(const volatile void* block) {
  if (block != nullptr) {
    count(block, -1);
  }
}

[[maybe_unused]] const int s_nInstalled =
    __sanitizer_install_malloc_and_free_hooks(&on_malloc, &on_free);

}  // namespace

std::optional<long> live_blocks() { return s_nBlocks; }

std::optional<long> live_bytes() { return s_nBytes; }

bool is_sanitized() { return true; }

}  // namespace Osv::faults

#endif
