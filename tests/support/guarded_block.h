#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <span>

namespace Osv::test {

/// Memory between two pages that nobody may touch: a read or write beyond it ends the test.
class GuardedBlock {
 public:
  explicit GuardedBlock(std::size_t capacity)
      : m_page(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
        m_capacity((capacity + m_page - 1) / m_page * m_page),
        m_whole(
            mmap(nullptr, m_capacity + 2 * m_page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (m_whole == MAP_FAILED || mprotect(begin(), m_capacity, PROT_READ | PROT_WRITE) != 0) {
      throw std::bad_alloc();
    }
    std::fill_n(begin(), m_capacity, kCanary);
  }
  GuardedBlock(const GuardedBlock&) = delete;
  GuardedBlock& operator=(const GuardedBlock&) = delete;
  ~GuardedBlock() { munmap(m_whole, m_capacity + 2 * m_page); }

  /// So many bytes behind the lower guard.
  std::span<unsigned char> behind_guard(std::size_t offset, std::size_t size) {
    return {begin() + offset, size};
  }

  /// The last bytes before the upper guard.
  std::span<unsigned char> before_guard(std::size_t size) {
    return {begin() + m_capacity - size, size};
  }

  /// True when nothing around a part has been written to; the part is then forgotten.
  bool untouched_around(std::span<unsigned char> part) {
    std::memset(part.data(), kCanary, part.size());
    const unsigned char* const from = std::max(begin(), part.data() - kLooked);
    const unsigned char* const to =
        std::min(begin() + m_capacity, part.data() + part.size() + kLooked);
    return from == to ||
           (*from == kCanary &&
            std::memcmp(from, from + 1, static_cast<std::size_t>(to - from) - 1) == 0);
  }

 private:
  static constexpr unsigned char kCanary = 0xC5;
  static constexpr std::size_t kLooked = 128;

  unsigned char* begin() { return static_cast<unsigned char*>(m_whole) + m_page; }

  std::size_t m_page;
  std::size_t m_capacity;
  void* m_whole;
};

}  // namespace Osv::test
