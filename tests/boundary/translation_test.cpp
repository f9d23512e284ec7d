#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "boundary/facade_fixture.h"

namespace Osv::lx {
namespace {

/// What the facade makes of an exception.
class Translation : public Facade {
 protected:
  template <typename Exception>
  unsigned long thrown(const Exception& exception) {
    return grabber.Translated([&]() -> unsigned long { throw exception; });
  }
};

TEST_F(Translation, AResultWithoutAnExceptionGoesOnAsItIs) {
  EXPECT_EQ(grabber.Translated([] { return 77UL; }), 77U);
  EXPECT_EQ(grabber.last_text(), "");
}

TEST_F(Translation, AFailureOfThePlugInKeepsItsNumberAndText) {
  EXPECT_EQ(thrown(ClLXException("out of order", 37)), 0x10000025U);
  EXPECT_EQ(grabber.last_text(), "out of order");
  EXPECT_EQ(grabber.last_number(), 37U);
}

TEST_F(Translation, AFailureOfThePlugInWithNumberZeroIsStoredAndGivesZero) {
  EXPECT_EQ(thrown(ClLXException("nothing named", 0)), 0U);
  EXPECT_EQ(grabber.last_text(), "nothing named");
}

TEST_F(Translation, AWarningCountsAsAFailureOfThePlugIn) {
  EXPECT_EQ(thrown(ClLXWarning("careful", 5)), 0x10000005U);
}

TEST_F(Translation, AnEnginesNegativeNumberIsWidenedWithItsSign) {
  EXPECT_EQ(thrown(ClLXException("engine", -21)), 0xFFFFFFFFFFFFFFEBU);
}

TEST_F(Translation, AnyOtherOfTheFamilyLosesItsNumberAndKeepsItsText) {
  EXPECT_EQ(thrown(CXOtherException("no library", -201)), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "no library");
  EXPECT_EQ(thrown(CLiveDetectionException("no usable finger", -15)), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "no usable finger");
  EXPECT_EQ(thrown(ClKR9NOTImplException("too old", 22)), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "too old");
  EXPECT_EQ(thrown(CXMemoryAllocException()), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "memory allocation failed");
}

TEST_F(Translation, OfTheFamilyThePlainTextIsStoredAndNotTheContextForm) {
  EXPECT_EQ(thrown(utilities::MakeException<CXOtherException>("too narrow", -14)), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "too narrow");
}

TEST_F(Translation, AStandardExceptionHasTheNumber23AndItsOwnText) {
  EXPECT_EQ(thrown(std::runtime_error("unforeseen")), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), "unforeseen");
  EXPECT_EQ(grabber.last_number(), 23U);
}

TEST_F(Translation, MemoryThatRanOutIsAStandardException) {
  EXPECT_EQ(thrown(std::bad_alloc()), 0x10000017U);
  EXPECT_EQ(grabber.last_text(), std::bad_alloc().what());
}

TEST_F(Translation, ABareNumberOfTheFeaturesGoesOnToTheClient) {
  EXPECT_THROW(thrown(CLX3ModuleException(53)), CLX3ModuleException);
}

TEST_F(Translation, AScannersNumberWithATextOfItsOwnKeepsTheNumber) {
  EXPECT_EQ(thrown(ClLXException("dropped", 0x20000003)), 0x30000003U);
  EXPECT_EQ(grabber.last_text(), "The user canceled the action");
  EXPECT_EQ(thrown(ClLXException("dropped", 0x20000004)), 0x30000004U);
  EXPECT_EQ(grabber.last_text(), "The hardware is incompatible");
  EXPECT_EQ(thrown(ClLXException("dropped", 0x20000005)), 0x30000005U);
  EXPECT_EQ(grabber.last_text(), "The firmware is incompatible");
}

TEST_F(Translation, ARefusedAuthorizationCodeComesOutAs83) {
  EXPECT_EQ(thrown(ClLXException("dropped", 0x20000006)), 0x10000053U);
  EXPECT_EQ(grabber.last_text(), "Invalid authorization code");
  EXPECT_EQ(grabber.last_number(), 83U);
}

}  // namespace
}  // namespace Osv::lx
