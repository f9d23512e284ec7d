#include "foundation/exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

namespace Osv {
namespace {

/// What a handler for `std::exception` reads.
template <typename Thrown>
std::string what_of(const Thrown& thrown) {
  try {
    throw thrown;
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

CXSystemException system_failure(int number) {
  errno = number;
  return {};
}

static_assert(std::is_base_of_v<std::exception, ClOstrevanException>);
static_assert(std::is_base_of_v<ClOstrevanException, CXException>);
static_assert(std::is_base_of_v<CXException, CXOtherException>);
static_assert(std::is_base_of_v<CXException, CXSystemException>);
static_assert(std::is_base_of_v<CXException, CXMemoryAllocException>);
static_assert(std::is_base_of_v<CXOtherException, lx::ClLXException>);
static_assert(std::is_base_of_v<lx::ClLXException, lx::ClLXWarning>);
static_assert(std::is_base_of_v<CXOtherException, lx::CLiveDetectionException>);
static_assert(std::is_base_of_v<CXOtherException, ClHeaderFormatException>);
static_assert(std::is_base_of_v<CXOtherException, ClCHeaderDesrcTooLongException>);
static_assert(std::is_base_of_v<CXOtherException, lx::ClKR9NOTImplException>);
static_assert(std::is_base_of_v<CXOtherException, CXConfigFileParsingException>);
static_assert(std::is_base_of_v<CXOtherException, utilities::ClContextException<CXOtherException>>);
static_assert(std::is_base_of_v<CXSystemException, file::CXFileNotFound>);
static_assert(std::is_base_of_v<CXSystemException, CXDynamicLibraryException>);
static_assert(!std::is_base_of_v<std::exception, lx::CLX3ModuleException>);

template <typename Exception>
concept HasNumber = requires(const Exception& failure) {
  failure.GetErrorNumber();
};

// A handler that wants the number has to catch one of the two branches that have one.
static_assert(!HasNumber<ClOstrevanException>);
static_assert(!HasNumber<CXException>);
static_assert(!HasNumber<CXMemoryAllocException>);
static_assert(HasNumber<CXOtherException>);
static_assert(HasNumber<CXSystemException>);

TEST(NumberedException, CarriesTextAndNumber) {
  const CXOtherException failure("a text", -14);
  EXPECT_STREQ(failure.GetDescription(), "a text");
  EXPECT_EQ(failure.GetErrorNumber(), -14);
}

TEST(NumberedException, WithoutTextHasAnEmptyDescriptionAndKeepsItsNumber) {
  const CXOtherException failure(nullptr, 7);
  EXPECT_STREQ(failure.GetDescription(), "");
  EXPECT_EQ(failure.GetErrorNumber(), 7);
}

TEST(NumberedException, GivesAtMost1024Characters) {
  for (const std::size_t length : {1023U, 1024U, 1025U, 5000U}) {
    const CXOtherException failure(std::string(length, 'x').c_str(), 1);
    EXPECT_EQ(std::strlen(failure.GetDescription()), std::min<std::size_t>(length, 1024)) << length;
  }
}

TEST(NumberedException, GivesTheSameTextThroughAllThreeRoads) {
  const CXOtherException failure("a text", 1);
  EXPECT_STREQ(failure.What(), "a text");
  EXPECT_EQ(what_of(failure), "a text");
}

TEST(NumberedException, KeepsTextAndNumberInEachDerivedClass) {
  const lx::ClLXWarning warning("w", 1);
  const lx::CLiveDetectionException detection("d", -15);
  const lx::ClKR9NOTImplException missing("n", 22);
  const ClHeaderFormatException header("h", -1);
  const ClCHeaderDesrcTooLongException too_long("l", -1);
  const std::pair<const CXOtherException*, const char*> rows[] = {
      {&warning, "w"}, {&detection, "d"}, {&missing, "n"}, {&header, "h"}, {&too_long, "l"}};
  for (const auto& [failure, text] : rows) {
    EXPECT_STREQ(failure->GetDescription(), text);
  }
  EXPECT_EQ(detection.GetErrorNumber(), -15);
}

/// The classes that add nothing to how a numbered exception reads.
template <typename Exception>
class PlainException : public testing::Test {};

using PlainExceptions = testing::Types<CXOtherException, lx::ClLXException, lx::ClLXWarning,
                                       lx::CLiveDetectionException, ClHeaderFormatException,
                                       ClCHeaderDesrcTooLongException, lx::ClKR9NOTImplException>;
TYPED_TEST_SUITE(PlainException, PlainExceptions);

TYPED_TEST(PlainException, ReadsThePlainTextThroughWhat) {
  EXPECT_EQ(what_of(TypeParam("a text", 1)), "a text");
}

TEST(SystemException, TakesTheErrorNumberAtConstruction) {
  const CXSystemException failure = system_failure(EACCES);
  errno = ENOENT;
  EXPECT_EQ(failure.GetErrorNumber(), EACCES);
  EXPECT_STREQ(failure.GetDescription(), std::strerror(EACCES));
}

TEST(SystemException, OfNumberZeroHasTheTextOfTheSystemForIt) {
  const CXSystemException failure = system_failure(0);
  EXPECT_EQ(failure.GetErrorNumber(), 0);
  EXPECT_EQ(std::string(failure.GetDescription()), std::strerror(0));
}

TEST(SystemException, ReadsThePlainTextThroughWhat) {
  EXPECT_EQ(what_of(system_failure(ENOENT)), std::strerror(ENOENT));
  errno = ENOEXEC;
  EXPECT_EQ(what_of(CXDynamicLibraryException()), std::strerror(ENOEXEC));
}

TEST(MemoryException, HasAFixedText) {
  EXPECT_EQ(what_of(CXMemoryAllocException()), "memory allocation failed");
}

TEST(MemoryException, IsNotCaughtAsANumberedException) {
  try {
    throw CXMemoryAllocException();
  } catch (const CXOtherException&) {
    FAIL();
  } catch (const CXException& failure) {
    EXPECT_STREQ(failure.GetDescription(), "memory allocation failed");
  }
}

TEST(FileNotFound, DescribesItselfAsPathBlankAndTheTextOfTheSystem) {
  errno = ENOENT;
  const file::CXFileNotFound failure("x");
  EXPECT_EQ(failure.GetDescription(), std::string("x ") + std::strerror(ENOENT));
  EXPECT_EQ(what_of(failure), failure.GetDescription());
  EXPECT_EQ(failure.GetErrorNumber(), ENOENT);
}

TEST(ContextException, WrapsItsMessageThroughWhatOnly) {
  const auto failure = utilities::MakeException<CXOtherException, const char*, int>("fault", -33);
  EXPECT_EQ(what_of(failure), " Message[fault]");
  EXPECT_STREQ(failure.What(), "fault");
  EXPECT_STREQ(failure.GetDescription(), "fault");
  EXPECT_EQ(failure.GetErrorNumber(), -33);
}

TEST(ContextException, WrapsTheCutText) {
  const std::string text(2000, 'x');
  const auto failure = utilities::MakeException<CXOtherException>(text.c_str(), 1);
  EXPECT_EQ(std::strlen(failure.what()), 1024 + std::strlen(" Message[]"));
}

TEST(ModuleException, CarriesABareNumber) {
  EXPECT_EQ(lx::CLX3ModuleException(0x80000001U).value(), 0x80000001U);
}

TEST(ParsingException, TellsTheValueWhenThereIsOne) {
  const CXConfigFileParsingException failure(-1012, "s", "p", "v");
  EXPECT_STREQ(failure.GetDescription(),
               "Error -1012 by parsing config file value v of p parameter in s section");
  EXPECT_EQ(failure.Value() + failure.Parameter() + failure.Section(), "v");
}

TEST(ParsingException, ReadsThePlainTextThroughWhat) {
  EXPECT_EQ(what_of(CXConfigFileParsingException(-1010, "s", nullptr, nullptr)),
            "Error -1010 by parsing config file s section");
}

TEST(ParsingException, TellsTheParameterWithoutAValue) {
  const CXConfigFileParsingException failure(-1011, "s", "p", nullptr);
  EXPECT_STREQ(failure.GetDescription(),
               "Error -1011 by parsing config file p parameter in s section");
  EXPECT_EQ(failure.Value() + failure.Parameter() + failure.Section(), "p");
}

TEST(ParsingException, TellsTheSectionWithoutAParameter) {
  const CXConfigFileParsingException failure(-1010, "s", nullptr, nullptr);
  EXPECT_STREQ(failure.GetDescription(), "Error -1010 by parsing config file s section");
  EXPECT_EQ(failure.Value() + failure.Parameter() + failure.Section(), "s");
}

TEST(ParsingException, TellsTheNumberAloneWithoutAnyName) {
  const CXConfigFileParsingException failure(-1007, nullptr, nullptr, nullptr);
  EXPECT_STREQ(failure.GetDescription(), "Error -1007 by parsing config file");
  EXPECT_EQ(failure.Value() + failure.Parameter() + failure.Section(), "");
}

TEST(ParsingException, CutsItsTextAt1024CharactersButKeepsTheWholeValue) {
  const std::string value(3000, 'v');
  const CXConfigFileParsingException failure(-1012, "s", "p", value.c_str());
  EXPECT_EQ(std::strlen(failure.GetDescription()), 1024U);
  EXPECT_EQ(failure.Value(), value);
}

}  // namespace
}  // namespace Osv
