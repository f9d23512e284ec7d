#include "ostrevanhvk3/exports.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "boundary/dummy_framegrabber.h"
#include "boundary/failing_construction.h"
#include "boundary/hvk3_framegrabber.h"
#include "foundation/exceptions.h"
#include "foundation/system_failures.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

namespace Osv::lx {
namespace {

using testing_support::eFailing;
using testing_support::FailingConstruction;
using testing_support::FailingSystem;

std::string dummy_text(ClFramegrabber& dummy) {
  std::string text(513, 'x');
  unsigned long size = text.size();
  EXPECT_EQ(dummy.GetLastError(text.data(), size), 0U);
  return text.substr(0, size);
}

/// The exported functions, each test beginning and ending without a frame grabber.
class Exports : public simulator::SimulatorFixture {
 protected:
  ~Exports() override { DestroyFrameGrabber(); }

  /// What a client gets when the construction ends with this exception.
  template <typename Exception>
  ClFramegrabber& built_with(const Exception& exception) {
    const FailingConstruction failing([&] { throw exception; });
    return *GetFrameGrabber();
  }
};

TEST_F(Exports, TheFrameGrabberIsBuiltOnce) {
  ClFramegrabber* const first = GetFrameGrabber();
  EXPECT_EQ(first, m_pFG);
  EXPECT_EQ(GetFrameGrabber(), first);
  EXPECT_EQ(m_pDummy, nullptr);
}

TEST_F(Exports, BuildingItTouchesNoScanner) {
  GetFrameGrabber();
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
}

TEST_F(Exports, DestroyingClearsThePointerAndASecondTimeDoesNothing) {
  GetFrameGrabber();
  DestroyFrameGrabber();
  EXPECT_EQ(m_pFG, nullptr);
  DestroyFrameGrabber();
  EXPECT_EQ(m_pFG, nullptr);
}

TEST_F(Exports, AConstructionThatFailsWithANumberReportsNumberAndText) {
  ClFramegrabber& dummy = built_with(ClLXException("no scanner today", 2));
  EXPECT_EQ(&dummy, m_pDummy);
  EXPECT_EQ(m_pFG, nullptr);
  EXPECT_EQ(dummy.StopCapture(1), 0x10000002U);
  EXPECT_EQ(dummy_text(dummy), "no scanner today");
}

TEST_F(Exports, AConstructionThatFailsInTheFamilyKeepsItsOwnNumber) {
  ClFramegrabber& dummy = built_with(CXOtherException("no library", -201));
  EXPECT_EQ(dummy.StopCapture(1), 0xFFFFFFFFFFFFFF37UL);
}

TEST_F(Exports, AConstructionThatFailsInTheSystemReportsTheSystemsNumberAndText) {
  const FailingSystem failing(eFailing::MutexType, EINVAL);
  ClFramegrabber& dummy = *GetFrameGrabber();
  EXPECT_EQ(dummy.StopCapture(1), 0x10000000U | EINVAL);
  EXPECT_EQ(dummy_text(dummy), std::strerror(EINVAL));
}

TEST_F(Exports, AConstructionThatFailsOtherwiseReports23AndTheExceptionsText) {
  ClFramegrabber& dummy = built_with(std::runtime_error("unforeseen"));
  EXPECT_EQ(dummy.StopCapture(1), 0x10000017U);
  EXPECT_EQ(dummy_text(dummy), "unforeseen");
}

TEST_F(Exports, MemoryThatRanOutInTheFamilyHasNoNumberOfItsOwn) {
  ClFramegrabber& dummy = built_with(CXMemoryAllocException());
  EXPECT_EQ(dummy.StopCapture(1), 0x10000017U);
  EXPECT_EQ(dummy_text(dummy), "memory allocation failed");
}

TEST_F(Exports, AnythingElseLeavesTheFunction) {
  EXPECT_THROW(built_with(CLX3ModuleException(51)), CLX3ModuleException);
  EXPECT_EQ(m_pFG, nullptr);
  EXPECT_EQ(m_pDummy, nullptr);
}

TEST_F(Exports, AfterAFailureTheNextCallTriesAgainAndTheDummyStays) {
  ClFramegrabber& dummy = built_with(std::runtime_error("unforeseen"));
  ClFramegrabber* const grabber = GetFrameGrabber();
  EXPECT_EQ(grabber, m_pFG);
  EXPECT_EQ(m_pDummy, &dummy);
}

TEST_F(Exports, ANewDummyTakesTheOldOnesPlaceAndTheOldOneStaysUsable) {
  ClFramegrabber& old = built_with(ClLXException("first", 2));
  ClFramegrabber& young = built_with(ClLXException("second", 3));
  EXPECT_EQ(m_pDummy, &young);
  EXPECT_EQ(old.StopCapture(1), 0x10000002U);
  EXPECT_EQ(dummy_text(old), "first");
  delete &old;  // nothing in the plug-in knows it any more
}

TEST_F(Exports, DestroyingFreesTheDummyToo) {
  built_with(ClLXException("first", 2));
  DestroyFrameGrabber();
  EXPECT_EQ(m_pDummy, nullptr);
}

TEST_F(Exports, DestroyingFreesTheFrameGrabberAndTheDummyOfAnEarlierFailure) {
  built_with(ClLXException("first", 2));
  GetFrameGrabber();
  ASSERT_NE(m_pFG, nullptr);
  ASSERT_NE(m_pDummy, nullptr);
  DestroyFrameGrabber();
  EXPECT_EQ(m_pFG, nullptr);
  EXPECT_EQ(m_pDummy, nullptr);
}

TEST_F(Exports, FrameInformationNeedsARealFrameGrabber) {
  double score = -1;
  EXPECT_EQ(FGCurrentFrameInfo(0, 0, 0, &score), 0x10000017U);
  built_with(ClLXException("no scanner", 2));
  EXPECT_EQ(FGCurrentFrameInfo(0, 0, 0, &score), 0x10000017U);
  EXPECT_EQ(score, -1);
}

/// A frame grabber that notes what it is asked for, in the place of the exported one.
class AskedForInformation : public ClOstrevanHVK3Framegrabber {
 public:
  AskedForInformation() : ClOstrevanHVK3Framegrabber(nullptr) { m_pFG = this; }
  ~AskedForInformation() override { m_pFG = nullptr; }

  unsigned long CurrentFrameInfo(unsigned long reserved, unsigned int type, void* info) override {
    m_nReserved = reserved;
    m_nType = type;
    m_pInfo = info;
    return 99;
  }

  unsigned long m_nReserved = 0;
  unsigned int m_nType = 0;
  void* m_pInfo = nullptr;
};

TEST_F(Exports, FrameInformationComesFromTheVirtualOperationWhoseResultIsIgnored) {
  AskedForInformation grabber;
  double score = 0;
  EXPECT_EQ(FGCurrentFrameInfo(7, 0x500000008UL, 9, &score), 0U);
  EXPECT_EQ(grabber.m_nReserved, 0x500000008UL);
  EXPECT_EQ(grabber.m_nType, 9U);
  EXPECT_EQ(grabber.m_pInfo, &score);
}

TEST_F(Exports, FrameInformationTurnsFailuresIntoNumberAndText) {
  GetFrameGrabber();
  double score = -1;
  EXPECT_EQ(FGCurrentFrameInfo(1, 2, 7, &score), 0x10000039U);
  EXPECT_EQ(m_pFG->LastErrorText(),
            "The frame information type ID[7] isn't supported by the frame grabber");
  EXPECT_EQ(FGCurrentFrameInfo(1, 2, 0, nullptr), 0x1000003CU);
  EXPECT_EQ(FGCurrentFrameInfo(1, 2, 0, &score), 0U);
  EXPECT_EQ(score, 0.0);
}

TEST_F(Exports, FeaturesNeedARealFrameGrabber) {
  osvlx3_feature feature{};
  EXPECT_EQ(LXSP_GetFeature(1, &feature), 0x10000017U);
  EXPECT_EQ(LXSP_SetFeature(1, &feature), 0x10000017U);
  built_with(ClLXException("no scanner", 2));
  EXPECT_EQ(LXSP_GetFeature(1, &feature), 0x10000017U);
  EXPECT_EQ(LXSP_SetFeature(1, &feature), 0x10000017U);
}

TEST_F(Exports, FeaturesReachTheFrameGrabber) {
  GetFrameGrabber();
  osvlx3_feature feature{};
  EXPECT_EQ(LXSP_GetFeature(2, &feature), 2U);
  EXPECT_EQ(LXSP_SetFeature(2, &feature), 2U);
}

TEST_F(Exports, FreeingTakesBlocksOfTheCLibraryAndNull) {
  EXPECT_EQ(LXSP_Free(nullptr), 0U);
  EXPECT_EQ(LXSP_Free(std::malloc(7)), 0U);
}

}  // namespace
}  // namespace Osv::lx
