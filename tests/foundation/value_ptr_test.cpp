#include "foundation/value_ptr.h"

#include <gtest/gtest.h>

namespace Osv {
namespace {

struct Base {
  virtual ~Base() = default;
};

struct Counted : Base {
  explicit Counted(int& gone) : m_gone(gone) {}
  ~Counted() override { ++m_gone; }
  int& m_gone;
};

TEST(ValueOwner, DeletesThroughTheVirtualDestructor) {
  int gone = 0;
  { const TXValuePtr<Base> owner(new Counted(gone)); }
  EXPECT_EQ(gone, 1);
}

TEST(ValueOwner, MayOwnNothing) {
  const TXValuePtr<Base> owner;
  EXPECT_EQ(owner.operator->(), nullptr);
}

}  // namespace
}  // namespace Osv
