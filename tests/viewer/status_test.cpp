#include "view/status.h"

#include <gmock/gmock.h>

#include "view/controls.h"

namespace hvk3::test {
namespace {

using testing::HasSubstr;
using view::eConnection;
using view::eState;

view::Status capturing() {
  view::Status status;
  status.connection = eConnection::Capturing;
  return status;
}

TEST(ViewerState, FollowsTheFinger) {
  view::Status status = capturing();
  EXPECT_EQ(state_of(status), eState::Waiting);
  status.finger = true;
  EXPECT_EQ(state_of(status), eState::Finger);
  status.settled = true;
  EXPECT_EQ(state_of(status), eState::Settled);
}

TEST(ViewerState, SaysFrozenFirst) {
  view::Status status = capturing();
  status.finger = status.switches.frozen = status.switches.low_contrast = true;
  EXPECT_EQ(state_of(status), eState::Frozen);
}

TEST(ViewerState, SaysThatLowContrastFindsNoFinger) {
  view::Status status = capturing();
  status.switches.low_contrast = true;
  EXPECT_EQ(state_of(status), eState::NoDetection);
  EXPECT_THAT(words_for(eState::NoDetection).explanation, HasSubstr("no finger is found"));
}

TEST(ViewerState, SaysThatTheScannerIsMissingWhateverIsSwitched) {
  view::Status status;
  status.connection = eConnection::Missing;
  status.switches.frozen = status.finger = true;
  EXPECT_EQ(state_of(status), eState::Missing);
}

TEST(ViewerState, CallsAnImageLiveOnlyWhileItIs) {
  EXPECT_STREQ(view::title_for(eState::Waiting), "Live image");
  EXPECT_STREQ(view::title_for(eState::Frozen), "Frozen image");
  EXPECT_STREQ(view::title_for(eState::Missing), "Last image");
}

TEST(ViewerState, HasWordsAndAWayOnForAll) {
  for (int state = 0; state <= static_cast<int>(eState::Failed); ++state) {
    const view::StateWords words = view::words_for(static_cast<eState>(state));
    EXPECT_STRNE(words.title, "");
    EXPECT_STRNE(words.explanation, "");
  }
}

TEST(ViewerRemedy, IsToPlugInWhatIsUnplugged) {
  EXPECT_THAT(view::remedy_for(Failure(2L, "gone")), HasSubstr("plug the scanner in"));
}

TEST(ViewerRemedy, IsToNameAPluginThatCantBeFound) {
  EXPECT_THAT(view::remedy_for(Failure(ExitStatus::PluginUnavailable, "absent")),
              HasSubstr("--plugin"));
}

TEST(ViewerRemedy, IsToStartAgainForANumberThatHasNone) {
  EXPECT_THAT(view::remedy_for(Failure(4711L, "odd")), HasSubstr("press Enter"));
}

TEST(ViewerRemedy, OfASwitchIsItsKey) {
  EXPECT_THAT(view::remedy_for_control(Failure(4711L, "odd"), view::eAction::Detection),
              HasSubstr("press F"));
}

TEST(ViewerRemedy, StandsBesideAWarningToo) {
  EXPECT_EQ(view::warning_of("odd").text, "odd");
  EXPECT_THAT(view::warning_of("odd").remedy, HasSubstr("capture goes on"));
}

}  // namespace
}  // namespace hvk3::test
