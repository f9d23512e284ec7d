#include "driver/device/kr9_api_lib.h"

#include <gmock/gmock.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "driver/support/loader_journal.h"
#include "driver/support/log_lines.h"
#include "foundation/exceptions.h"
#include "support/closed_libraries.h"
#include "support/failure_of.h"

namespace Osv {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::TestWithParam;
using ::testing::ValuesIn;
using testing_support::failure_of;

constexpr char kLibrary[] = "libKR9ScanAPI.so";

// The three groups, each in the order in which its names are looked up.
const std::vector<std::string> kMandatory = {"ftrScanOpenDeviceOnInterface",
                                             "ftrScanCloseDevice",
                                             "ftrScanSetOptions",
                                             "ftrScanGetOptions",
                                             "ftrScanGetDeviceInfo",
                                             "ftrScanGetImageSize",
                                             "ftrScanGetFrame",
                                             "ftrScanGetBacklightImage",
                                             "ftrScanGetDarkImage",
                                             "ftrScanGetImage",
                                             "ftrScanIsFingerPresent",
                                             "ftrScanSave7Bytes",
                                             "ftrScanRestore7ControlBytes",
                                             "ftrScanGetDiodesStatus",
                                             "ftrScanSetDiodesStatus",
                                             "ftrScanGetInterfaces",
                                             "ftrSetBaseInterface",
                                             "ftrGetBaseInterfaceNumber",
                                             "ftrScanSaveSerialNumber",
                                             "ftrScanGetImageByVariableDose",
                                             "ftrScanGetImage2",
                                             "ftrScanGetLastError",
                                             "ftrScanSetLastError"};

const std::vector<std::string> kExtended = {"ftrScanGetExtMemorySize", "ftrScanSaveExtMemory",
                                            "ftrScanRestoreExtMemory", "ftrScanGetSerialNumber",
                                            "ftrScanGetVersion"};

const std::vector<std::string> kOptional = {"ftrScanSetNewAuthorizationCode",
                                            "ftrScanSaveSecret7Bytes", "ftrScanRestoreSecret7Bytes",
                                            "ftrScanGlobalSetOptions"};

/// All names in the order in which they are looked up.
std::vector<std::string> all_names() {
  std::vector<std::string> all = kMandatory;
  all.insert(all.end(), kExtended.begin(), kExtended.end());
  all.insert(all.end(), kOptional.begin(), kOptional.end());
  return all;
}

template <class Function>
const void* address(Function function) {
  return reinterpret_cast<const void*>(function);
}

/// What stands in the slots of `all_names`, in its order.
std::vector<const void*> all_slots(const ClKR9APILib& api) {
  return {
      address(api.ftrScanOpenDeviceOnInterface),
      address(api.ftrScanCloseDevice),
      address(api.ftrScanSetOptions),
      address(api.ftrScanGetOptions),
      address(api.ftrScanGetDeviceInfo),
      address(api.ftrScanGetImageSize),
      address(api.ftrScanGetFrame),
      address(api.ftrScanGetBacklightImage),
      address(api.ftrScanGetDarkImage),
      address(api.ftrScanGetImage),
      address(api.ftrScanIsFingerPresent),
      address(api.ftrScanSave7Bytes),
      address(api.ftrScanRestore7ControlBytes),
      address(api.ftrScanGetDiodesStatus),
      address(api.ftrScanSetDiodesStatus),
      address(api.ftrScanGetInterfaces),
      address(api.ftrSetBaseInterface),
      address(api.ftrGetBaseInterfaceNumber),
      address(api.ftrScanSaveSerialNumber),
      address(api.ftrScanGetImageByVariableDose),
      address(api.ftrScanGetImage2),
      address(api.ftrScanGetLastError),
      address(api.ftrScanSetLastError),
      address(api.ftrScanGetExtMemorySize),
      address(api.ftrScanSaveExtMemory),
      address(api.ftrScanRestoreExtMemory),
      address(api.ftrScanGetSerialNumber),
      address(api.ftrScanGetVersion),
      address(api.ftrScanSetNewAuthorizationCode),
      address(api.ftrScanSaveSecret7Bytes),
      address(api.ftrScanRestoreSecret7Bytes),
      address(api.ftrScanGlobalSetOptions),
  };
}

/// Whether the slots of `kExtended` are filled, in its order.
std::vector<bool> extended_slots(const ClKR9APILib& api) {
  return {api.ftrScanGetExtMemorySize != nullptr, api.ftrScanSaveExtMemory != nullptr,
          api.ftrScanRestoreExtMemory != nullptr, api.ftrScanGetSerialNumber != nullptr,
          api.ftrScanGetVersion != nullptr};
}

/// Whether the slots of `kOptional` are filled, in its order.
std::vector<bool> optional_slots(const ClKR9APILib& api) {
  return {api.ftrScanSetNewAuthorizationCode != nullptr, api.ftrScanSaveSecret7Bytes != nullptr,
          api.ftrScanRestoreSecret7Bytes != nullptr, api.ftrScanGlobalSetOptions != nullptr};
}

/// `names` as slots: filled in front of `missing`, null from there on.
std::vector<bool> filled_up_to(const std::vector<std::string>& names, const std::string& missing) {
  std::vector<bool> filled;
  bool found = true;
  for (const std::string& name : names) {
    found = found && name != missing;
    filled.push_back(found);
  }
  return filled;
}

class ScannerBinding : public TestWithParam<std::string> {
 protected:
  void leave_out(const std::string& symbol) { m_libraries.leave_out(kLibrary, symbol); }

  /// What the making of a binding logs.
  static std::vector<std::string> lines_of_binding() {
    simulator::Bench& bench = *ostrevan_simulator_bench();
    const testing_support::LogOn log;
    bench.reset();
    bench.record(true);
    const ClKR9APILib api;
    std::vector<std::string> lines = testing_support::log_lines(bench);
    bench.reset();
    return lines;
  }

  simulator::ClosedLibraries m_libraries;
  testing_support::LoaderJournal m_loader;
};

TEST_F(ScannerBinding, OpensTheLibraryOnceWithAllSymbolsBoundAtOnce) {
  const ClKR9APILib api;
  EXPECT_THAT(m_loader.opened(), ElementsAre("libKR9ScanAPI.so in mode 2"));
}

TEST_F(ScannerBinding, LooksUpMandatoryThenExtendedThenOptionalFunctionsInTheirOrder) {
  const ClKR9APILib api;
  EXPECT_THAT(m_loader.looked_up(), ElementsAreArray(all_names()));
}

TEST_F(ScannerBinding, OfAWholeLibraryHasApiLevel1AndAllFunctions) {
  const ClKR9APILib api;
  EXPECT_EQ(api.m_nApiLevel, 1);
  EXPECT_THAT(extended_slots(api), ElementsAre(true, true, true, true, true));
  EXPECT_THAT(optional_slots(api), ElementsAre(true, true, true, true));
}

TEST_F(ScannerBinding, FillsEachSlotWithTheFunctionOfItsName) {
  std::array<char, 32> functions{};  // an address for each name
  std::vector<const void*> expected;
  for (const std::string& name : all_names()) {
    char& function = functions.at(expected.size());
    m_loader.give(name, &function);
    expected.push_back(&function);
  }
  const ClKR9APILib api;
  EXPECT_EQ(expected.size(), functions.size());
  EXPECT_THAT(all_slots(api), ElementsAreArray(expected));
  EXPECT_EQ(api.m_pfnUnnamed, nullptr);
}

TEST_F(ScannerBinding, WithoutTheLibraryFailsWithNumberMinus201AndTheLoadersText) {
  m_libraries.make_absent(kLibrary);
  const auto failure = failure_of<CXOtherException>([] { const ClKR9APILib api; });
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_THAT(failure.GetDescription(), HasSubstr("libKR9ScanAPI.so: cannot open shared object"));
}

TEST_F(ScannerBinding, WithoutTheLibraryAndWithoutALoadersTextFailsWithAnEmptyText) {
  m_loader.find_nothing();
  const auto failure = failure_of<CXOtherException>([] { const ClKR9APILib api; });
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_STREQ(failure.GetDescription(), "");
}

TEST_F(ScannerBinding, CutsTheLoadersTextAt1024CharactersWhenTheLibraryIsMissing) {
  m_loader.find_nothing();
  m_loader.say(std::string(1500, 'x'));
  const auto failure = failure_of<CXOtherException>([] { const ClKR9APILib api; });
  EXPECT_EQ(failure.GetDescription(), std::string(1024, 'x'));
}

TEST_F(ScannerBinding, CutsTheLoadersTextAt1024CharactersWhenASymbolIsMissing) {
  m_loader.say(std::string(1500, 'x'));
  const auto failure = failure_of<CXOtherException>([] { const ClKR9APILib api; });
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_EQ(failure.GetDescription(), std::string(1024, 'x'));
}

TEST_F(ScannerBinding, TakesASymbolAtTheNullAddressWithoutALoadersTextForFound) {
  m_loader.give("ftrScanGetImage2", nullptr);
  const ClKR9APILib api;
  EXPECT_EQ(api.ftrScanGetImage2, nullptr);
  EXPECT_EQ(api.m_nApiLevel, 1);
}

TEST_F(ScannerBinding, ClosesTheLibraryWhenItGoes) {
  auto api = std::make_unique<ClKR9APILib>();
  EXPECT_EQ(m_loader.closed(), 0);
  api.reset();
  EXPECT_EQ(m_loader.closed(), 1);
}

TEST_F(ScannerBinding, ClosesTheLibraryBeforeASecondRun) {
  ClKR9APILib api;
  std::vector<std::size_t> openedAtClosings;
  m_loader.before_closing([&] { openedAtClosings.push_back(m_loader.opened().size()); });
  api.Initialize();
  m_loader.before_closing(nullptr);
  EXPECT_THAT(openedAtClosings, ElementsAre(1U));
  EXPECT_EQ(m_loader.opened().size(), 2U);
  EXPECT_EQ(api.m_nApiLevel, 1);
}

TEST_F(ScannerBinding, ForgetsWhatAnOlderLibraryLacksInASecondRun) {
  ClKR9APILib api;
  leave_out("ftrScanGetExtMemorySize");
  api.Initialize();
  EXPECT_EQ(api.m_nApiLevel, 0);
  EXPECT_THAT(extended_slots(api), ElementsAre(false, false, false, false, false));
  EXPECT_THAT(optional_slots(api), ElementsAre(false, false, false, false));
}

TEST_F(ScannerBinding, ForgetsEveryFunctionOfTheClosedLibraryWhenASecondRunFails) {
  ClKR9APILib api;
  m_libraries.make_absent(kLibrary);
  EXPECT_THROW(api.Initialize(), CXOtherException);
  EXPECT_EQ(api.m_nApiLevel, 0);
  EXPECT_THAT(all_slots(api), Each(IsNull()));
}

TEST_F(ScannerBinding, KeepsOfASecondRunTheFunctionsInFrontOfAMissingOne) {
  ClKR9APILib api;
  leave_out("ftrScanCloseDevice");
  EXPECT_THROW(api.Initialize(), CXOtherException);
  std::vector<const void*> slots = all_slots(api);
  EXPECT_NE(slots.front(), nullptr);
  slots.erase(slots.begin());
  EXPECT_THAT(slots, Each(IsNull()));
}

using MandatoryFunction = ScannerBinding;

TEST_P(MandatoryFunction, MissingFailsWithNumberMinus202AndTheLoadersText) {
  leave_out(GetParam());
  const auto failure = failure_of<CXOtherException>([] { const ClKR9APILib api; });
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_THAT(failure.GetDescription(), HasSubstr("undefined symbol: " + GetParam()));
}

TEST_P(MandatoryFunction, MissingEndsTheLookUpsAndClosesTheLibrary) {
  leave_out(GetParam());
  EXPECT_THROW(const ClKR9APILib api, CXOtherException);
  EXPECT_EQ(m_loader.looked_up().back(), GetParam());
  EXPECT_EQ(m_loader.closed(), 1);
}

INSTANTIATE_TEST_SUITE_P(OfTheScannerLibrary, MandatoryFunction, ValuesIn(kMandatory),
                         [](const auto& symbol) { return symbol.param; });

using ExtendedFunction = ScannerBinding;

TEST_P(ExtendedFunction, MissingLeavesApiLevel0AndTheFunctionsFoundBeforeIt) {
  leave_out(GetParam());
  const ClKR9APILib api;
  EXPECT_EQ(api.m_nApiLevel, 0);
  EXPECT_EQ(extended_slots(api), filled_up_to(kExtended, GetParam()));
  EXPECT_THAT(optional_slots(api), ElementsAre(false, false, false, false));
}

TEST_P(ExtendedFunction, MissingEndsTheLookUpsAndLeavesTheLibraryOpen) {
  leave_out(GetParam());
  const ClKR9APILib api;
  EXPECT_EQ(m_loader.looked_up().back(), GetParam());
  EXPECT_EQ(m_loader.closed(), 0);
}

TEST_P(ExtendedFunction, MissingIsNotLogged) {
  leave_out(GetParam());
  EXPECT_THAT(lines_of_binding(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfTheScannerLibrary, ExtendedFunction, ValuesIn(kExtended),
                         [](const auto& symbol) { return symbol.param; });

using OptionalFunction = ScannerBinding;

TEST_P(OptionalFunction, MissingLeavesApiLevel1AndTheFunctionsFoundBeforeIt) {
  leave_out(GetParam());
  const ClKR9APILib api;
  EXPECT_EQ(api.m_nApiLevel, 1);
  EXPECT_EQ(optional_slots(api), filled_up_to(kOptional, GetParam()));
}

TEST_P(OptionalFunction, MissingIsNotLogged) {
  leave_out(GetParam());
  EXPECT_THAT(lines_of_binding(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfTheScannerLibrary, OptionalFunction, ValuesIn(kOptional),
                         [](const auto& symbol) { return symbol.param; });

}  // namespace
}  // namespace Osv
