#include "viewer/viewer_fixture.h"

namespace hvk3::test {
namespace {

using Scanner = Viewer;

TEST_F(Scanner, IsTheFirstOneUnlessAnotherIsNamed) {
  start();
  wait_for("started 0 HVK30001");
}

TEST_F(Scanner, IsTheOneThatIsNamed) {
  start({"--scanners", "2", "--device", "1"});
  wait_for("started 1 HVK30002");
}

TEST_F(Scanner, IsChosenOneAfterTheOther) {
  start_capturing({"--scanners", "2"});
  press("Tab", "started 1 HVK30002");
  press("Tab", "started 0 HVK30001");
}

TEST_F(Scanner, ThatIsAnotherOneBeginsEmptyAndUnfrozen) {
  start_capturing({"--scanners", "2"});
  say("finger on");
  wait_for("settled");
  press("space", "frozen");
  say("finger off\nfault ftrScanGetImageByVariableDose always blocks until told");
  press("Tab", "started 1 HVK30002");
  const Picture seen = picture();
  EXPECT_EQ(seen.turns(layout().live.picture), 1);  // all of it is dark
  EXPECT_EQ(seen.turns(layout().kept.picture), 1);
  EXPECT_EQ(state_of(seen), kBlue);
  say("faults off");
  wait_for("live");
}

TEST_F(Scanner, HasNoSuccessorWhenItIsAlone) {
  start_capturing();
  press("Tab", "no other scanner");
}

TEST_F(Scanner, ThatIsUnpluggedIsToldAndComesBackByItself) {
  start_capturing();
  say("unplug 0");
  wait_for("unplugged");
  EXPECT_EQ(state_of(picture()), kRed);
  say("plug 0");
  wait_for("back 0 HVK30001");
  wait_for("live");
  EXPECT_EQ(state_of(picture()), kBlue);
}

TEST_F(Scanner, MayComeBackAtAnotherInterfaceWithSmallerFrames) {
  start_capturing();
  say("unplug 0");
  wait_for("unplugged");
  say("plug 5 small");
  wait_for("live");
  say("finger on");
  wait_for("settled");
  EXPECT_TRUE(shows_print(picture(), layout().live));
}

TEST_F(Scanner, MayComeBackBeforeTheInterfaceThatItHasLeft) {
  start({"--scanners", "0"});
  say("plug 5");
  wait_for("live");
  say("unplug 5");
  wait_for("unplugged");
  say("plug 2");
  wait_for("back 2 HVK30003");
}

TEST_F(Scanner, ThatTabHasComeToMayComeBackAnywhere) {
  start_capturing({"--scanners", "2"});
  press("Tab", "started 1 HVK30002");
  say("unplug all");
  wait_for("unplugged");
  say("plug 5");
  wait_for("back 5 HVK30006");
}

TEST_F(Scanner, ThatGoesLeavesItsPlaceToAnotherOneAlsoBehindTab) {
  start_capturing({"--scanners", "2"});
  press("Tab", "started 1 HVK30002");
  say("unplug 1");
  wait_for("back 0 HVK30001");
  press("Tab", "no other scanner");
}

TEST_F(Scanner, ThatCameBackBeforeThePresentOneIsFoundByTab) {
  start_capturing({"--scanners", "2"});
  say("unplug 0");
  wait_for("back 1 HVK30002");
  say("plug 0\nfinger on");
  wait_for("finger");
  press("Tab", "started 0 HVK30001");
}

TEST_F(Scanner, ComesBackWhereItWasThoughAnotherOneIsAttached) {
  start_capturing({"--scanners", "2"});
  press("Tab", "started 1 HVK30002");
  say("fault ftrScanGetInterfaces always blocks until told\nunplug 1");
  wait_for("unplugged");
  say("plug 1\nfaults off");
  wait_for("back 1 HVK30002");
}

TEST_F(Scanner, IsStartedAgainWhereItIsThoughAnotherOneComesFirst) {
  start_capturing({"--scanners", "2"});
  press("Tab", "started 1 HVK30002");
  press("Return", "started 1 HVK30002");
}

TEST_F(Scanner, ThatIsNamedIsTheOnlyOneThatIsWaitedFor) {
  start_capturing({"--scanners", "2", "--device", "0"});
  press("Tab", "started 1 HVK30002");
  say("unplug all");
  wait_for("unplugged");
  say("plug 5\nwait 3 calls of ftrScanGetInterfaces\nplug 0");
  wait_for("back 0 HVK30001");
}

TEST_F(Scanner, ThatIsUnpluggedWhileFrozenIsMissed) {
  start_capturing();
  press("space", "frozen");
  press("n", "snap");  // behind it no frame is under way
  say("unplug 0");
  wait_for("unplugged");
}

TEST_F(Scanner, ThatIsFrozenIsSoStillWhenItComesBack) {
  start_capturing();
  press("space", "frozen");
  say("unplug 0");
  wait_for("unplugged");
  say("plug 0");
  wait_for("back 0 HVK30001");
  EXPECT_EQ(state_of(picture()), kAmber);
}

TEST_F(Scanner, MayComeAfterTheViewer) {
  start({"--scanners", "0"});
  wait_for("no scanner");
  EXPECT_EQ(state_of(picture()), kRed);
  say("plug 0");
  wait_for("live");
}

TEST_F(Scanner, ThatFailsIsStoppedUntilItIsStartedAgain) {
  start_capturing();
  say("fault ftrScanGetImageByVariableDose always fails with 87");
  wait_for("stopped");
  EXPECT_EQ(state_of(picture()), kRed);
  say("faults off");
  press("Return", "live");
  press("KP_Enter", "started 0 HVK30001");
}

TEST_F(Scanner, ComesBackWithoutADetectionThatFails) {
  start_capturing();
  press("f", "fake finger detection on");
  say("fault FakeFingerDetectionCreateHandle always fails with -8\nunplug 0");
  wait_for("unplugged");
  say("plug 0");
  wait_for("error");
  wait_for("live");
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
  say("faults off");
  press("f", "fake finger detection on");
}

TEST_F(Scanner, ThatIsStoppedIsSwitchedFromTheNextStartOn) {
  start_capturing();
  press("f", "fake finger detection on");
  say("fault ftrScanGetImageByVariableDose always fails with 87");
  wait_for("stopped");
  press("f", "fake finger detection off");
  say("faults off");
  press("Return", "live");
  EXPECT_EQ(picture().count(layout().plot.picture, kAmber), 0);
}

TEST_F(Scanner, ThatCannotBeginIsNamedAndLeftByTheSameKey) {
  start_capturing({"--scanners", "2"});
  const SDL_Rect name = {layout().header.x + layout().header.w / 2, 0, layout().header.w / 2, 38};
  const std::vector<Colour> before = picture().pixels(name);
  say("fault ftrScanGetImageSize always fails with 87");
  press("Tab", "stopped");
  EXPECT_NE(picture().pixels(name), before);
  say("faults off");
  press("Tab", "started 0 HVK30001");
}

TEST_F(Scanner, ThatHasStoppedShowsWhyWhateverIsRefused) {
  start_capturing();
  say("fault ftrScanGetImageByVariableDose always fails with 87");
  wait_for("stopped");
  press("n", "refused");
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
}

TEST_F(Scanner, ThatHasStoppedShowsWhyBesideWhatIsToldLater) {
  start_capturing();
  say("fault ftrScanGetImageByVariableDose always fails with 87");
  wait_for("stopped");
  picture();
  EXPECT_GT(picture().count(layout().notice, kRed), 20);  // that of before is told by now
}

TEST_F(Scanner, ThatIsMissingTakesNoSnap) {
  start({"--scanners", "0"});
  wait_for("no scanner");
  press("n", "refused");
}

TEST_F(Scanner, IsMeasuredForDirt) {
  start_capturing();
  say("dirt 40");
  press("d");
  EXPECT_TRUE(m_pViewer->wait_for_output_text("contamination level "));
  wait_for("");
  EXPECT_GT(std::stod(m_pViewer->output().substr(m_pViewer->output().rfind(' '))), 20.0);
}

}  // namespace
}  // namespace hvk3::test
