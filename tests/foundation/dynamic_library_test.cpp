#include "foundation/dynamic_library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "foundation/exceptions.h"
#include "foundation/loader_redirection.h"
#include "support/failure_of.h"

namespace Osv {
namespace {

constexpr char kPath[] = HVK3_PLAIN_LIBRARY;

struct Probe : CXDynamicLibrary {
  using CXDynamicLibrary::m_hLibrary;
};

/// Whether the library is loaded at present, by whomever.
bool loaded() {
  void* const handle = dlopen(kPath, RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) {
    dlclose(handle);
  }
  return handle != nullptr;
}

template <typename Action>
CXOtherException failure_of(Action action) {
  return testing_support::failure_of<CXOtherException>(action);
}

class OpenLibrary : public testing::Test {
 protected:
  OpenLibrary() { m_library.Open(kPath); }

  Probe m_library;
};

TEST_F(OpenLibrary, GivesTheAddressOfASymbol) {
  int (*answer)() = nullptr;
  const SymbolSlot slots[] = {{"hvk3_answer", &answer}};
  m_library.Resolve(slots, 1);
  EXPECT_EQ(answer(), 42);
}

TEST_F(OpenLibrary, GivesNullForASymbolThatHasThatValue) {
  EXPECT_EQ(m_library.GetSymbol("hvk3_null"), nullptr);
}

TEST_F(OpenLibrary, ThrowsTheLoadersTextForAMissingSymbol) {
  const CXOtherException failure = failure_of([&] { (void)m_library.GetSymbol("hvk3_missing"); });
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_NE(std::string(failure.GetDescription()).find("hvk3_missing"), std::string::npos);
}

TEST_F(OpenLibrary, FindsASymbolAfterAFailure) {
  failure_of([&] { (void)m_library.GetSymbol("hvk3_missing"); });
  EXPECT_NE(m_library.GetSymbol("hvk3_answer"), nullptr);
}

TEST_F(OpenLibrary, KeepsTheAddressesInFrontOfAMissingSymbol) {
  void* first = nullptr;
  void* second = &first;
  const SymbolSlot slots[] = {{"hvk3_answer", &first}, {"hvk3_missing", &second}};
  EXPECT_EQ(failure_of([&] { m_library.Resolve(slots, 2); }).GetErrorNumber(), -202);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(second, &first);
}

TEST_F(OpenLibrary, IsClosedOnlyOnce) {
  m_library.Close();
  EXPECT_EQ(m_library.m_hLibrary, nullptr);
  EXPECT_FALSE(loaded());
  m_library.Close();
}

TEST_F(OpenLibrary, IsClosedWhenAnotherIsOpened) {
  EXPECT_EQ(failure_of([&] { m_library.Open("/nonexistent/x.so"); }).GetErrorNumber(), -201);
  EXPECT_EQ(m_library.m_hLibrary, nullptr);
  EXPECT_FALSE(loaded());
}

TEST(DynamicLibrary, HasNoHandleAtFirst) { EXPECT_EQ(Probe().m_hLibrary, nullptr); }

TEST(DynamicLibrary, ClosesItsLibraryWhenItGoes) {
  {
    Probe library;
    library.Open(kPath);
    EXPECT_TRUE(loaded());
  }
  EXPECT_FALSE(loaded());
}

TEST(DynamicLibrary, ThatIsMissingThrowsTheLoadersText) {
  Probe library;
  const CXOtherException failure = failure_of([&] { library.Open("/nonexistent/x.so"); });
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_NE(std::string(failure.GetDescription()).find("/nonexistent/x.so"), std::string::npos);
}

TEST(DynamicLibrary, ThatIsMissingHasAnEmptyTextWhenTheLoaderHasNone) {
  testing_support::put_silence_in_place_of("libostrevanlf.so");
  Probe library;
  const CXOtherException failure = failure_of([&] { library.Open("libostrevanlf.so"); });
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_STREQ(failure.GetDescription(), "");
}

}  // namespace
}  // namespace Osv
