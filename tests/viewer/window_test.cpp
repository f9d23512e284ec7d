#include <csignal>

#include "viewer/viewer_fixture.h"

namespace hvk3::test {
namespace {

using Window = Viewer;

TEST_F(Window, ShowsTheEmptyPlatenAsItIs) {
  start_capturing();
  const Picture seen = picture();
  EXPECT_LT(seen.turns(layout().live.picture), 4);  // its edges
  EXPECT_EQ(state_of(seen), kBlue);
}

TEST_F(Window, ShowsThePrintThatLiesOnThePlaten) {
  start_capturing();
  say("finger on");
  wait_for("settled");
  const Picture seen = picture();
  EXPECT_TRUE(shows_print(seen, layout().live));
  EXPECT_EQ(state_of(seen), kGreen);
}

TEST_F(Window, ShowsTheSettledFingerBesideIt) {
  start_capturing();
  say("finger on");
  wait_for("settled");
  say("finger off");
  wait_for("lifted");
  const Picture seen = picture();
  EXPECT_TRUE(shows_print(seen, layout().kept));
  EXPECT_FALSE(shows_print(seen, layout().live));
}

TEST_F(Window, BringsThePrintOnTheScreen) {
  start_capturing();
  EXPECT_TRUE(screen_comes_to_show([](const Picture& seen) {
    return state_of(seen) == kBlue && !shows_print(seen, layout().live) &&
           !shows_print(seen, layout().kept);
  }));
  say("finger on");
  EXPECT_TRUE(screen_comes_to_show([](const Picture& seen) {
    return state_of(seen) == kGreen && shows_print(seen, layout().live) &&
           shows_print(seen, layout().kept);
  }));
}

TEST_F(Window, BeginsWithNothingBesideIt) {
  start_capturing();
  EXPECT_FALSE(shows_print(picture(), layout().kept));
}

TEST_F(Window, WritesItsTextsIntoAllOfItsParts) {
  start_capturing();
  const Picture seen = picture();
  const view::Layout places = layout();
  for (const SDL_Rect& text : {places.header, places.live.title, places.kept.title,
                               places.plot.title, places.buttons.front(), places.buttons.back()}) {
    EXPECT_GT(seen.drawn({text.x + 8, text.y + 8, text.w - 16, text.h - 10}), 100);
  }
}

TEST_F(Window, WritesTheFrameRateAsLongAsThePictureIsLive) {
  const SDL_Rect header = layout().header;
  const SDL_Rect rate = {header.x + header.w * 2 / 3, 40, header.w / 3, 18};
  start_capturing();
  EXPECT_GT(picture().drawn(rate), 100);
  press("space", "frozen");
  EXPECT_EQ(picture().drawn(rate), 0);
}

TEST_F(Window, ShowsTheKeysAndHidesThemAgain) {
  start_capturing();
  const SDL_Rect box = layout().live.picture;
  const int before = picture().count(box, kBlue);
  press("question", "keys shown");
  EXPECT_GT(picture().count(box, kBlue), before + 100);
  press("Escape", "keys hidden");
  EXPECT_EQ(picture().count(box, kBlue), before);
}

TEST_F(Window, HidesTheKeysAtAClickAndDoesNothingElse) {
  start_capturing();
  press("question", "keys shown");
  click(eAction::Quit);
  wait_for("keys hidden");
  press("r", "red LED on");
}

TEST_F(Window, WritesTheSameOnItsButtonsWhenItIsSmall) {
  start_capturing();
  const Picture usual = picture();
  m_cDisplay.resize(view::kLeastWidth, view::kLeastHeight);
  const Picture small = picture();
  const auto places =
      view::lay_out(view::kLeastWidth, view::kLeastHeight, view::button_count()).buttons;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const SDL_Rect wide = layout().buttons[i];
    const SDL_Rect narrow = places[i];
    EXPECT_EQ(usual.pixels({wide.x + 2, wide.y + 2, narrow.w - 4, narrow.h - 4}),
              small.pixels({narrow.x + 2, narrow.y + 2, narrow.w - 4, narrow.h - 4}))
        << view::controls()[i].label;
  }
}

class WindowOnASmallScreen : public Viewer {
 protected:
  WindowOnASmallScreen() : Viewer("1024x700x24") {}
};

TEST_F(WindowOnASmallScreen, IsNoLargerThanIt) {
  start_capturing();
  const Picture seen = picture();
  EXPECT_EQ(seen.width(), 1024);
  EXPECT_EQ(seen.height(), 700);
}

TEST_F(Window, PicturesOfItAreForTheUserAlone) {
  start_capturing();
  picture();
  EXPECT_EQ(std::filesystem::status(picture_path()).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Window, NeverSlowsCaptureDown) {
  start_capturing();
  m_cDisplay.hang();
  say("pace 0\nwait 300 frames\nunplug 0");
  wait_for("unplugged");
  m_cDisplay.go_on();
  EXPECT_EQ(quit().status, 0);
}

TEST_F(Window, QuitsByAKey) {
  start_capturing();
  const Outcome outcome = quit();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, EndsWith("ending\nquit\n"));
}

TEST_F(Window, QuitsByItsButton) {
  start_capturing();
  click(eAction::Quit);
  EXPECT_EQ(m_pViewer->wait().status, 0);
}

TEST_F(Window, QuitsWhenItIsClosed) {
  start_capturing();
  m_cDisplay.close_window();
  EXPECT_EQ(m_pViewer->wait().status, 0);
}

TEST_F(Window, EndsInGoodOrderOnCtrlC) {
  start_capturing();
  m_pViewer->send(SIGINT);
  const Outcome outcome = m_pViewer->wait();
  EXPECT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.out, EndsWith("quit\n"));
}

TEST_F(Window, EndsInGoodOrderWhenItIsTerminated) {
  start_capturing();
  m_pViewer->send(SIGTERM);
  EXPECT_EQ(m_pViewer->wait().status, 143);
}

/// The scanner library does not come back from a call.
class HangingWindow : public Window {
 protected:
  void SetUp() override {
    start({"--faults", "ftrScanGetImageByVariableDose blocks until told"});
    wait_for("started 0 HVK30001");
  }
};

TEST_F(HangingWindow, EndsAtOnceOnTheSecondSignal) {
  m_pViewer->send(SIGINT);
  wait_for("ending");
  m_pViewer->send(SIGINT);
  EXPECT_EQ(m_pViewer->wait().status, 130);
}

TEST_F(HangingWindow, EndsAtOnceWhenItIsClosedTwice) {
  press("q", "ending");
  press("q");
  EXPECT_EQ(m_pViewer->wait().status, 4);
}

TEST_F(Window, EndsInGoodOrderWhenTheDisplayGoes) {
  start_capturing();
  m_cDisplay.vanish();
  const Outcome outcome = m_pViewer->wait();
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, EndsWith("hvk3-view: error: the display has gone\n"));
  EXPECT_THAT(outcome.out, EndsWith("quit\n"));
}

TEST_F(Window, NeedsADisplay) {
  ::setenv("DISPLAY", ":nowhere", 1);
  start();
  const Outcome outcome = m_pViewer->wait();
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, HasSubstr("there is no display to show a window on"));
}

TEST_F(Window, NeedsADisplayAlsoWhenNobodyHasChosenItsKind) {
  ::setenv("DISPLAY", ":nowhere", 1);
  ::setenv("WAYLAND_DISPLAY", "nowhere", 1);
  ::unsetenv("SDL_VIDEODRIVER");
  start();
  const Outcome outcome = m_pViewer->wait();
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, HasSubstr("there is no display to show a window on"));
}

TEST_F(Window, SaysThatThePluginCantBeLoaded) {
  start({"--plugin", m_cFolder.file("absent.so")});
  wait_for("failed");
  EXPECT_EQ(state_of(picture()), kRed);
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
  EXPECT_EQ(quit().status, 7);
}

TEST_F(Window, EndsWhenNobodyCanReadItsEvents) {
  const Outcome outcome = run({"/bin/sh", "-c", HVK3_VIEW " --simulate --events >/dev/full"});
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, HasSubstr("standard output can't be written"));
}

}  // namespace
}  // namespace hvk3::test
