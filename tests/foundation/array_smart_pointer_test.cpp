#include "foundation/array_smart_pointer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Osv {
namespace {

TEST(ArrayOwner, RunsItsHookOnceInFrontOfTheRelease) {
  int runs = 0;
  {
    TXArraySmartPointer<char> array([&] { ++runs; });
    array.replace(new char[2]{'a', 'b'}, 2);
    array.replace(new char[1]{'c'}, 1);
    EXPECT_EQ(runs, 0);
  }
  EXPECT_EQ(runs, 1);
}

/// Tells when it goes.
struct Element {
  ~Element() { *story += "released "; }
  std::string* story;
};

TEST(ArrayOwner, StillHasItsElementsWhenTheHookRuns) {
  std::string story;
  {
    TXArraySmartPointer<Element> array([&] { story += "hook "; });
    array.replace(new Element[2]{{&story}, {&story}}, 2);
  }
  EXPECT_EQ(story, "hook released released ");
}

TEST(ArrayOwner, ReleasesTheElementsThatItReplaces) {
  std::string story;
  TXArraySmartPointer<Element> array;
  array.replace(new Element[2]{{&story}, {&story}}, 2);
  array.replace(nullptr, 0);
  EXPECT_EQ(story, "released released ");
}

TEST(ArrayOwner, RunsNoHookWithoutAnArray) {
  int runs = 0;
  {
    const TXArraySmartPointer<unsigned char> array([&] { ++runs; });
  }
  EXPECT_EQ(runs, 0);
}

TEST(ArrayOwner, ReleasesWithoutAHook) {
  TXArraySmartPointer<unsigned char> array;
  array.replace(new unsigned char[3]{}, 3);
  EXPECT_EQ(array.size(), 3U);
  EXPECT_EQ(array.capacity(), 3U);
}

TEST(ArrayOwner, KeepsArrayAndCapacityWhenEmptied) {
  TXArraySmartPointer<char> array;
  array.replace(new char[3]{}, 3);
  array.empty();
  EXPECT_EQ(array.size(), 0U);
  EXPECT_EQ(array.capacity(), 3U);
  EXPECT_NE(array.get(), nullptr);
}

TEST(ArrayOwner, HasNothingLeftAfterDetach) {
  TXArraySmartPointer<char> array;
  array.replace(new char[3]{}, 3);
  const std::unique_ptr<char[]> detached(array.detach());
  EXPECT_EQ(array.get(), nullptr);
  EXPECT_EQ(array.size() + array.capacity(), 0U);
}

}  // namespace
}  // namespace Osv
