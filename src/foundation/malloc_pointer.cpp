#include "foundation/malloc_pointer.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace Osv::lx {

MAllocPointer::MAllocPointer(unsigned long size) : m_pMemory(alloc_memory(size)) {
  if (m_pMemory == nullptr) {
    throw std::bad_alloc();
  }
}

MAllocPointer::~MAllocPointer() { free_memory(m_pMemory); }

void* MAllocPointer::detach() { return std::exchange(m_pMemory, nullptr); }

void MAllocPointer::attach(void* memory) { free_memory(std::exchange(m_pMemory, memory)); }

void* MAllocPointer::alloc_memory(unsigned long size) { return std::malloc(size); }

void MAllocPointer::free_memory(void* memory) { std::free(memory); }

}  // namespace Osv::lx
