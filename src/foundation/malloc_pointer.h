#pragma once

/// @file
/// An owner of memory that a client gives back with `LXSP_Free`.

namespace Osv::lx {

/// Owns one block from `malloc`, or nothing.
class MAllocPointer {
 public:
  MAllocPointer() = default;

  /// A new block of `size` bytes. @throws std::bad_alloc
  explicit MAllocPointer(unsigned long size);
  ~MAllocPointer();
  MAllocPointer(const MAllocPointer&) = delete;
  MAllocPointer& operator=(const MAllocPointer&) = delete;

  void* get() const { return m_pMemory; }

  /// Hands the block over to the caller.
  [[nodiscard]] void* detach();

  /// Frees the block that was held and takes over `memory`, which comes from `malloc` or is null.
  void attach(void* memory);

  /// Null when memory runs out.
  [[nodiscard]] static void* alloc_memory(unsigned long size);

  /// Null does nothing.
  static void free_memory(void* memory);

 private:
  void* m_pMemory = nullptr;
};

}  // namespace Osv::lx
