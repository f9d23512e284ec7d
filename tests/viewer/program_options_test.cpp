#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/process.h"

namespace hvk3::test {
namespace {

using testing::MatchesRegex;
using testing::StartsWith;

TEST(ViewerOptions, TellTheVersionOfThePackage) {
  const Outcome outcome = run({HVK3_VIEW, "--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, MatchesRegex("hvk3-view [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(ViewerOptions, ThatAreWrongAreToldInTheNameOfTheViewer) {
  const Outcome outcome = run({HVK3_VIEW, "--paint"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("hvk3-view: "));
}

TEST(ViewerOptions, EndWith6WhenTheHelpIsLost) {
  EXPECT_EQ(run({"/bin/sh", "-c", HVK3_VIEW " --help >/dev/full"}).status, 6);
}

}  // namespace
}  // namespace hvk3::test
