#include "view/mailbox.h"

#include <gtest/gtest.h>

#include <memory>

namespace hvk3::test {
namespace {

TEST(Mailbox, IsEmptyAtFirst) {
  view::Mailbox<int> box;
  EXPECT_EQ(box.take(), std::nullopt);
}

TEST(Mailbox, GivesTheNewestAlone) {
  view::Mailbox<int> box;
  box.put(1);
  box.put(2);
  EXPECT_EQ(box.take(), 2);
  EXPECT_EQ(box.take(), std::nullopt);
}

TEST(Mailbox, LetsGoOfWhatNobodyTook) {
  view::Mailbox<std::shared_ptr<int>> box;
  const auto first = std::make_shared<int>(1);
  box.put(first);
  box.put(nullptr);
  EXPECT_EQ(first.use_count(), 1);
}

}  // namespace
}  // namespace hvk3::test
