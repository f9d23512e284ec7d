#include "driver/calibration/cal_dynamic_lib.h"

#include <new>
#include <string>
#include <vector>

#include "driver/calibration/calibration_fixture.h"
#include "driver/calibration/calibration_handle.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<std::string> kFunctions = {"CalibrateCreate",
                                             "Calibrate",
                                             "CalibrateDelete",
                                             "CalibrateSetData",
                                             "CalibrateGetErrorDescription",
                                             "ContaminationDetection",
                                             "CalibrateSetOption",
                                             "CalibrateGetOption"};

class EngineBinding : public simulator::SimulatorFixture,
                      public ::testing::WithParamInterface<std::string> {
 protected:
  CXOtherException failure() {
    return failure_of<CXOtherException>([] { const lx::CXCalDynamicLib library; });
  }

  simulator::ClosedLibraries m_libraries;
  LoaderJournal m_loader;
};

TEST_F(EngineBinding, OpensTheLibraryOnceWithAllSymbolsBoundAtOnce) {
  const lx::CXCalDynamicLib library;
  EXPECT_THAT(m_loader.opened(), ElementsAre("libostrevancalibratesdk.so in mode 2"));
}

TEST_F(EngineBinding, LooksUpItsFunctionsInTheirOrder) {
  const lx::CXCalDynamicLib library;
  EXPECT_THAT(m_loader.looked_up(), ElementsAreArray(kFunctions));
}

TEST_F(EngineBinding, IsLoggedUnderTheNameOfAnotherPlatform) {
  const LogOn log;
  const lx::CXCalDynamicLib library;
  EXPECT_THAT(log_lines(bench),
              ElementsAre("level 7, 'KR9 scanner. Load OstrevanCalibrateSDK.dll'"));
}

TEST_F(EngineBinding, IsLoggedBeforeItFails) {
  const LogOn log;
  m_libraries.make_absent(kEngineLibrary);
  EXPECT_EQ(failure().GetErrorNumber(), -201);
  EXPECT_THAT(log_lines(bench),
              ElementsAre("level 7, 'KR9 scanner. Load OstrevanCalibrateSDK.dll'"));
}

TEST_F(EngineBinding, WithoutTheLibraryFailsWithNumberMinus201AndTheLoadersText) {
  m_libraries.make_absent(kEngineLibrary);
  EXPECT_EQ(failure().GetErrorNumber(), -201);
  EXPECT_THAT(failure().GetDescription(), HasSubstr("libostrevancalibratesdk.so: cannot open"));
}

TEST_F(EngineBinding, WithoutTheLibraryAndWithoutALoadersTextFailsWithAnEmptyText) {
  m_loader.find_nothing();
  EXPECT_EQ(failure().GetErrorNumber(), -201);
  EXPECT_STREQ(failure().GetDescription(), "");
}

TEST_F(EngineBinding, CutsTheLoadersTextAt1024Characters) {
  m_loader.find_nothing();
  m_loader.say(std::string(1500, 'x'));
  EXPECT_EQ(failure().GetDescription(), std::string(1024, 'x'));
}

TEST_F(EngineBinding, ClosesTheLibraryBeforeASecondRunAndWhenItGoes) {
  {
    lx::CXCalDynamicLib library;
    library.Initialize();
    EXPECT_EQ(m_loader.closed(), 1);
  }
  EXPECT_EQ(m_loader.closed(), 2);
}

using EngineFunction = EngineBinding;

TEST_P(EngineFunction, MissingFailsWithNumberMinus202AndTheLoadersText) {
  m_libraries.leave_out(kEngineLibrary, GetParam());
  const CXOtherException missing = failure();
  EXPECT_EQ(missing.GetErrorNumber(), -202);
  EXPECT_THAT(missing.GetDescription(), HasSubstr("undefined symbol: " + GetParam()));
}

TEST_P(EngineFunction, MissingEndsTheLookUpsAndClosesTheLibrary) {
  m_libraries.leave_out(kEngineLibrary, GetParam());
  (void)failure();
  EXPECT_EQ(m_loader.looked_up().back(), GetParam());
  EXPECT_EQ(m_loader.closed(), 1);
}

INSTANTIATE_TEST_SUITE_P(OfTheEngine, EngineFunction, ::testing::ValuesIn(kFunctions),
                         [](const auto& symbol) { return symbol.param; });

using EngineHandle = EngineBinding;

TEST_F(EngineHandle, CreatesOneInstanceAndDeletesIt) {
  lx::CXCalDynamicLib library;
  {
    const lx::CXCalibrationHandle handle(library);
    EXPECT_NE(handle.get(), nullptr);
  }
  EXPECT_THAT(journal(),
              ElementsAre("CalibrateCreate() = handle 1", "CalibrateDelete(handle 1) = "));
}

TEST_F(EngineHandle, OfNullIsBadAllocAndIsNotDeleted) {
  lx::CXCalDynamicLib library;
  bench.set_faults("CalibrateCreate gives a null handle");
  EXPECT_THROW(const lx::CXCalibrationHandle handle(library), std::bad_alloc);
  EXPECT_THAT(journal("CalibrateDelete"), IsEmpty());
}

}  // namespace
}  // namespace Osv::testing_support
