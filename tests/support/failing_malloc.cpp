#include "support/failing_malloc.h"

#include <cstddef>

namespace Osv::testing_support {
namespace {

constexpr int kNever = -1;

thread_local int t_nGoodCalls = kNever;  // calls that still succeed

bool fails() {
  if (t_nGoodCalls == kNever) {
    return false;
  }
  if (t_nGoodCalls == 0) {
    return true;
  }
  --t_nGoodCalls;
  return false;
}

}  // namespace

FailingMalloc::FailingMalloc(int call) { t_nGoodCalls = call - 1; }

FailingMalloc::~FailingMalloc() { t_nGoodCalls = kNever; }

}  // namespace Osv::testing_support

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
void* __real_malloc(std::size_t size);
[[gnu::visibility("default")]] void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
  return Osv::testing_support::fails() ? nullptr : __real_malloc(size);
}
// NOLINTEND(bugprone-reserved-identifier)
}
