#include "foundation/multi_string.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Osv {
namespace {

std::string bytes(const ClMultiString& list) {
  return list.IsEmpty() ? std::string() : std::string(list.Buffer(), list.Length() + 1);
}

class TwoStrings : public testing::Test {
 protected:
  TwoStrings() {
    m_list.Add("ab");
    m_list.Add("c");
  }

  ClMultiString m_list;
};

TEST(MultiString, IsEmptyAtFirst) {
  ClMultiString list;
  EXPECT_TRUE(list.IsEmpty());
  EXPECT_EQ(list.Length(), 0U);
  EXPECT_EQ(list.Next(), nullptr);
}

TEST(MultiString, StaysEmptyWithoutAText) {
  ClMultiString list;
  list.Add("");
  list.Add(nullptr);
  EXPECT_TRUE(list.IsEmpty());
}

TEST(MultiString, ThatIsEmptyHasAnEmptyCopy) {
  const ClMultiString list;
  ClMultiString copy(list);
  EXPECT_TRUE(copy.IsEmpty());
  EXPECT_EQ(copy.Buffer(), nullptr);
  copy.Add("ab");
  EXPECT_EQ(bytes(copy), std::string("ab\0\0", 4));
}

TEST(MultiString, EndsOneStringWithTwoZeros) {
  ClMultiString list;
  list.Add("ab");
  EXPECT_EQ(list.Length(), 3U);
  EXPECT_EQ(bytes(list), std::string("ab\0\0", 4));
}

TEST_F(TwoStrings, StandOneBehindTheOther) {
  EXPECT_EQ(m_list.Length(), 5U);
  EXPECT_EQ(bytes(m_list), std::string("ab\0c\0\0", 6));
}

TEST_F(TwoStrings, AreGivenInTurnThenNullThenFromTheStart) {
  EXPECT_STREQ(m_list.Next(), "ab");
  EXPECT_STREQ(m_list.Next(), "c");
  EXPECT_EQ(m_list.Next(), nullptr);
  EXPECT_STREQ(m_list.Next(), "ab");
}

TEST_F(TwoStrings, BeginAgainAfterAdd) {
  m_list.Next();
  m_list.Add("d");
  EXPECT_STREQ(m_list.Next(), "ab");
}

TEST_F(TwoStrings, BeginAgainAfterAddOfNothing) {
  m_list.Next();
  m_list.Add("");
  EXPECT_STREQ(m_list.Next(), "ab");
  m_list.Add(nullptr);
  EXPECT_STREQ(m_list.Next(), "ab");
}

TEST_F(TwoStrings, BeginAgainAfterReset) {
  m_list.Next();
  m_list.ResetNext();
  EXPECT_STREQ(m_list.Next(), "ab");
}

TEST_F(TwoStrings, TakeAStringOutOfTheirOwnBuffer) {
  m_list.Add(m_list.Buffer());
  EXPECT_EQ(bytes(m_list), std::string("ab\0c\0ab\0\0", 9));
}

TEST_F(TwoStrings, AreCopiedByTheirBytes) {
  const ClMultiString copy(m_list);
  m_list.Empty();
  EXPECT_EQ(bytes(copy), std::string("ab\0c\0\0", 6));
}

TEST_F(TwoStrings, HandTheirPositionToACopyUntilItIsReset) {
  const char* const position = m_list.Next();
  ClMultiString copy(m_list);
  EXPECT_EQ(copy.Next(), position + 3);
  copy.ResetNext();
  EXPECT_EQ(copy.Next(), copy.Buffer());
}

TEST_F(TwoStrings, StayWhenAnotherListIsAssigned) {
  ClMultiString other;
  other.Add("other");
  EXPECT_EQ(&(m_list = other), &m_list);
  EXPECT_EQ(bytes(m_list), std::string("ab\0c\0\0", 6));
}

TEST_F(TwoStrings, AreForgottenByEmptyWhichKeepsTheMemory) {
  const char* const buffer = m_list.Buffer();
  m_list.Next();
  m_list.Empty();
  EXPECT_TRUE(m_list.IsEmpty());
  EXPECT_EQ(m_list.Buffer(), buffer);
  EXPECT_EQ(m_list.Next(), nullptr);
}

TEST_F(TwoStrings, MakeWayForNewOnesAfterEmpty) {
  m_list.Empty();
  m_list.Add("new");
  EXPECT_EQ(bytes(m_list), std::string("new\0\0", 5));
}

TEST_F(TwoStrings, MakeWayForNewOnesAfterDetach) {
  const std::unique_ptr<char[]> buffer(m_list.Detach());
  m_list.Add("new");
  EXPECT_EQ(bytes(m_list), std::string("new\0\0", 5));
  EXPECT_STREQ(m_list.Next(), "new");
}

TEST_F(TwoStrings, GoToTheCallerWithDetach) {
  const char* const position = m_list.Next();
  const std::unique_ptr<char[]> buffer(m_list.Detach());
  EXPECT_EQ(std::string(buffer.get(), 6), std::string("ab\0c\0\0", 6));
  EXPECT_TRUE(m_list.IsEmpty());
  EXPECT_EQ(m_list.Next(), position);
}

}  // namespace
}  // namespace Osv
