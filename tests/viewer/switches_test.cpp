#include "viewer/viewer_fixture.h"

namespace hvk3::test {
namespace {

using Switches = Viewer;

bool is_lit(const Picture& picture, const SDL_Rect& button) {
  return picture.at(button.x, button.y) == kGreen;
}

TEST_F(Switches, AKeySwitchesAnLedOnAndOff) {
  start_capturing();
  press("r", "red LED on");
  EXPECT_TRUE(is_lit(picture(), button(eAction::RedLed)));
  press("r", "red LED off");
  EXPECT_FALSE(is_lit(picture(), button(eAction::RedLed)));
}

TEST_F(Switches, AButtonSwitchesAnLedOn) {
  start_capturing();
  click(eAction::GreenLed);
  wait_for("green LED on");
  EXPECT_TRUE(is_lit(picture(), button(eAction::GreenLed)));
}

TEST_F(Switches, AKeyIsNobodysWhileAnotherOneIsHeld) {
  start_capturing();
  for (const char* const held : {"Control_L", "Alt_L", "Super_L"}) {
    m_cDisplay.hold_key(held, true);
    press("c");
    m_cDisplay.hold_key(held, false);
  }
  press("r", "red LED on");
  EXPECT_THAT(m_pViewer->output(), Not(HasSubstr("low contrast")));
}

TEST_F(Switches, AButtonIsLitAsLongAsThePointerIsOnIt) {
  start_capturing();
  const SDL_Rect snap = button(eAction::Snap);
  const SDL_Rect other = button(eAction::Contamination);
  const auto lit = [&](const Picture& seen) {
    return seen.at(snap.x, snap.y) != seen.at(other.x, other.y);
  };
  const Place place = {snap.x + 4, snap.y + 4};
  m_cDisplay.point_at(place);
  EXPECT_TRUE(screen_comes_to_show(lit));
  m_cDisplay.cover(place);
  EXPECT_TRUE(screen_comes_to_show([&](const Picture& seen) { return !lit(seen); }));
}

TEST_F(Switches, ShowWhatTheCommandLineHasSwitchedOn) {
  start_capturing({"--set", "green-led=on"});
  EXPECT_TRUE(is_lit(picture(), button(eAction::GreenLed)));
}

TEST_F(Switches, StayOverAScannerThatComesBack) {
  start_capturing();
  press("r", "red LED on");
  say("unplug 0");
  wait_for("unplugged");
  say("plug 0");
  wait_for("live");
  EXPECT_TRUE(is_lit(picture(), button(eAction::RedLed)));
  say("show");
  EXPECT_THAT(quit().error, HasSubstr("green off, red on"));
}

TEST_F(Switches, HoldFromTheStartWhenTheyWerePressedBeforeThereWasAScanner) {
  start({"--scanners", "0", "--set", "green-led=on"});
  wait_for("no scanner");
  press("g", "green LED on");
  press("g", "green LED off");
  press("r", "red LED on");
  press("f", "fake finger detection on");
  press("c", "low contrast on");
  say("plug 0");
  wait_for("live");
  const Picture seen = picture();
  for (const eAction on : {eAction::RedLed, eAction::Detection, eAction::LowContrast}) {
    EXPECT_TRUE(is_lit(seen, button(on)));
  }
  EXPECT_FALSE(is_lit(seen, button(eAction::GreenLed)));
  EXPECT_EQ(state_of(seen), kAmber);
  EXPECT_GT(seen.count(layout().plot.picture, kAmber), layout().plot.picture.w / 2);
  say("show");
  EXPECT_THAT(quit().error, HasSubstr("green off, red on"));
}

TEST_F(Switches, FreezeKeepsThePictureWhateverComes) {
  start_capturing();
  press("space", "frozen");
  say("finger on");
  press("n", "snap");
  const Picture seen = picture();
  EXPECT_FALSE(shows_print(seen, layout().live));
  EXPECT_EQ(state_of(seen), kAmber);
}

TEST_F(Switches, ThePictureGoesOnAfterAFreeze) {
  start_capturing();
  press("space", "frozen");
  say("finger on");
  press("space", "going on");
  wait_for("settled");
  EXPECT_TRUE(shows_print(picture(), layout().live));
}

TEST_F(Switches, LowContrastFindsNoFingerAndSaysSo) {
  start_capturing();
  press("c", "low contrast on");
  EXPECT_EQ(state_of(picture()), kAmber);
  say("finger on\nwait 40 frames\nunplug 0");
  wait_for("unplugged");
  EXPECT_THAT(m_pViewer->output(), Not(HasSubstr("finger\n")));
}

TEST_F(Switches, WithoutLowContrastTheFingerIsFoundAgain) {
  start_capturing();
  press("c", "low contrast on");
  say("finger on");
  press("c", "low contrast off");
  wait_for("settled");
}

/// The score's curve.
class Detection : public Viewer {
 protected:
  /// @param kind of the finger that lies there when its image has settled
  void detect(const std::string& kind, const Words& more = {}) {
    start_capturing(more);
    say("kind " + kind);
    press("f", "fake finger detection on");
    say("finger on");
  }

  static SDL_Rect plot() { return layout().plot.picture; }
};

TEST_F(Detection, IsOffAtFirst) {
  start_capturing();
  EXPECT_EQ(picture().count(plot(), kAmber), 0);
}

TEST_F(Detection, DrawsTheThreshold) {
  start_capturing();
  press("f", "fake finger detection on");
  EXPECT_GT(picture().count(plot(), kAmber), plot().w / 2);
}

TEST_F(Detection, DrawsTheScoresOfALiveFinger) {
  detect("live");
  wait_for("settled");
  const Picture seen = picture();
  EXPECT_GT(seen.count(plot(), kGreen), 20);
  EXPECT_EQ(seen.count(plot(), kRed), 0);
}

TEST_F(Detection, DrawsTheScoresOfAFakeAndNamesItBesideTheImage) {
  detect("printed");
  wait_for("settled fake");
  const Picture seen = picture();
  EXPECT_GT(seen.count(plot(), kRed), 20);
  EXPECT_GT(seen.count(layout().kept.title, kRed), 20);
}

TEST_F(Detection, ShowsNoOldFakeWhenItIsSwitchedOnAgain) {
  detect("printed");
  wait_for("settled fake");
  press("f", "fake finger detection off");
  say("finger off");
  wait_for("lifted");
  say("kind live\nfinger on");
  press("f", "fake finger detection on");
  wait_for("settled");
  EXPECT_EQ(picture().count(plot(), kRed), 0);
}

TEST_F(Detection, CallsAnImageNoFakeForWhatItSawBeforeItWasSwitchedOn) {
  detect("printed", {"--settle", "60"});
  wait_for("finger");
  say("pace 5");  // all of this is within one row
  press("n", "snap");
  press("n", "snap");
  say("kind live");
  press("f", "fake finger detection off");
  press("f", "fake finger detection on");
  say("pace 0");
  wait_for("settled");
  EXPECT_THAT(m_pViewer->output(), Not(HasSubstr("settled fake")));
}

TEST_F(Detection, TellsAFakeOfASnapFromThatOfAFrame) {
  detect("printed");
  wait_for("settled fake");
  say("kind live");
  press("n", "snap");
  EXPECT_EQ(picture().count(layout().kept.title, kRed), 0);
  say("kind printed");
  press("n", "snap");
  EXPECT_GT(picture().count(layout().kept.title, kRed), 20);
}

TEST_F(Detection, StaysOverAScannerThatComesBack) {
  detect("printed");
  wait_for("settled fake");
  say("unplug 0");
  wait_for("unplugged");
  say("plug 0");
  wait_for("settled fake");
}

TEST_F(Detection, SaysThatTheDetectorFails) {
  start_capturing({"--faults", "FakeFingerDetectionCreateHandle fails with -8"});
  press("f", "error");
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
}

}  // namespace
}  // namespace hvk3::test
