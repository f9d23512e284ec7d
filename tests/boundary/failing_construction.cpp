#include "boundary/failing_construction.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "boundary/hvk3_framegrabber.h"

namespace Osv::testing_support {
namespace {

// Built on demand: the allocation functions run before any static object is.
std::function<void()>*& failure_slot() {
  static std::function<void()>* slot = nullptr;
  return slot;
}

}  // namespace

FailingConstruction::FailingConstruction(std::function<void()> failure) {
  failure_slot() = std::make_unique<std::function<void()>>(std::move(failure)).release();
}

FailingConstruction::~FailingConstruction() { delete std::exchange(failure_slot(), nullptr); }

}  // namespace Osv::testing_support

using Osv::testing_support::failure_slot;

void* operator new(std::size_t size) {
  if (failure_slot() != nullptr && size == sizeof(Osv::lx::ClOstrevanHVK3Framegrabber)) {
    (*failure_slot())();
  }
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
