#include "driver/get_item.h"

#include <gtest/gtest.h>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

const Failure kWrongChannel = {4, "Incorrect channel number for frame grabber"};

TEST(GetItem, NumberOneIsTheFirstElement) {
  std::vector<int> items = {7, 8};
  EXPECT_EQ(&get_item(items, 1), &items[0]);
  EXPECT_EQ(&get_item(items, 2), &items[1]);
}

TEST(GetItem, NumberZeroIsRefusedWithNumber4) {
  std::vector<int> items = {7};
  EXPECT_EQ(failure_of([&] { get_item(items, 0); }), kWrongChannel);
}

TEST(GetItem, NumberTwoOfOneElementIsRefusedWithNumber4) {
  std::vector<int> items = {7};
  EXPECT_EQ(failure_of([&] { get_item(items, 2); }), kWrongChannel);
}

TEST(GetItem, AnyNumberOfAnEmptyListIsRefusedWithNumber4) {
  std::vector<int> items;
  EXPECT_EQ(failure_of([&] { get_item(items, 1); }), kWrongChannel);
}

}  // namespace
}  // namespace Osv::lx
