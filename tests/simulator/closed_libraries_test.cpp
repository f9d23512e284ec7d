#include "support/closed_libraries.h"

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <memory>

#include "bench/functions.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

constexpr const char* kScannerLibrary = "libKR9ScanAPI.so";
constexpr int kMode = RTLD_NOW;

struct Closer {
  void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Closer>;

Library open_library(const std::string& name) { return Library(dlopen(name.c_str(), kMode)); }

/// The library that has a function.
std::string library_of(const std::string& function) {
  if (function.starts_with("ftr")) {
    return kScannerLibrary;
  }
  if (function.starts_with("FakeFinger")) {
    return "libostrevanfakefingerdetection.so";
  }
  return function.starts_with("OsvLF") ? "libostrevanlf.so" : "libostrevancalibratesdk.so";
}

class ClosedLibraryChoice : public SimulatorFixture {
 protected:
  ClosedLibraries m_cLibraries;
};

TEST_F(ClosedLibraryChoice, ThePlainStandInsHaveAllTheirFunctions) {
  for (const char* const function : kFunctionNames) {
    const Library library = open_library(library_of(function));
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_NE(dlsym(library.get(), function), nullptr) << function;
  }
}

TEST_F(ClosedLibraryChoice, EachVariantLacksOneFunctionAndNoOther) {
  for (const char* const missing : kFunctionNames) {
    const std::string name = library_of(missing);
    m_cLibraries.leave_out(name, missing);
    const Library library = open_library(name);
    ASSERT_NE(library, nullptr) << dlerror();
    for (const char* const function : kFunctionNames) {
      if (library_of(function) == name) {
        EXPECT_EQ(dlsym(library.get(), function) == nullptr, function == missing) << function;
      }
    }
    m_cLibraries.use_plain(name);
  }
}

TEST_F(ClosedLibraryChoice, AVariantSharesTheBench) {
  m_cLibraries.leave_out(kScannerLibrary, "ftrScanGetImage2");
  const Library library = open_library(kScannerLibrary);
  ASSERT_NE(library, nullptr) << dlerror();
  using Function = std::uint32_t (*)();
  reinterpret_cast<Function>(dlsym(library.get(), "ftrScanGetLastError"))();
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 1U);
}

TEST_F(ClosedLibraryChoice, AnAbsentLibraryCanNotBeOpened) {
  m_cLibraries.make_absent(kScannerLibrary);
  EXPECT_EQ(open_library(kScannerLibrary), nullptr);
  EXPECT_THAT(dlerror(), testing::HasSubstr(kScannerLibrary));
}

TEST_F(ClosedLibraryChoice, OpeningsAreRecordedWithTheirMode) {
  open_library(kScannerLibrary);
  open_library("libm.so.6");
  ASSERT_EQ(m_cLibraries.openings().size(), 1U);
  EXPECT_EQ(m_cLibraries.openings()[0].name, kScannerLibrary);
  EXPECT_EQ(m_cLibraries.openings()[0].mode, kMode);
}

TEST_F(ClosedLibraryChoice, ANameThatIsNoClosedLibraryCanNotBeChosen) {
  EXPECT_THROW(m_cLibraries.make_absent("libm.so.6"), std::invalid_argument);
}

TEST(ClosedLibrariesOfATest, AreThePlainOnesAgainAfterIt) {
  { ClosedLibraries().make_absent(kScannerLibrary); }
  EXPECT_NE(open_library(kScannerLibrary), nullptr);
}

}  // namespace
}  // namespace Osv::simulator
