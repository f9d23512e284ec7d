#include "support/process.h"
#include "tools/manual.h"

namespace hvk3::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(ManPage, SaysOfEachOptionWhatTheHelpOfTheViewerSays) {
  EXPECT_THAT(warnings_of_page(HVK3_VIEW_MAN_PAGE), IsEmpty());
  expect_page_says(read_page(HVK3_VIEW_MAN_PAGE), run({HVK3_VIEW, "--help"}).out);
}

TEST(ManPage, NamesTheViewerAsItIsCalled) {
  EXPECT_THAT(read_page(HVK3_VIEW_MAN_PAGE), HasSubstr("\n       hvk3-view [OPTIONS]\n"));
}

TEST(ManPage, HasTheKeysAndTheExitStatuses) {
  const std::string page = read_page(HVK3_VIEW_MAN_PAGE);
  EXPECT_THAT(page, HasSubstr("\nKEYS\n"));
  EXPECT_THAT(page, HasSubstr("\nEXIT STATUS\n       0 the user has quit"));
}

}  // namespace
}  // namespace hvk3::test
