#include "hvk3/terminal_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tools/image_builder.h"

namespace hvk3::test {
namespace {

constexpr std::size_t kColumns = 8;
constexpr std::size_t kRows = 4;

std::string draw_in(const Image& image, eShades shades) {
  return draw(image.view(), {kColumns, kRows, shades});
}

TEST(TerminalPicture, BlackAndWhiteAreTheEndsOfThePlainSigns) {
  EXPECT_EQ(draw_in(make_gray_image(2, 2, 0), eShades::Plain), "@@\n");
  EXPECT_EQ(draw_in(make_gray_image(2, 2, 255), eShades::Plain), "  \n");
}

TEST(TerminalPicture, ACharacterShowsTwoPixelsOneAboveTheOther) {
  const Image image = make_image(1, 2, [](int, int y) { return y == 0 ? 1 : 2; });
  EXPECT_EQ(draw_in(image, eShades::TrueColour), "\x1b[38;2;1;1;1;48;2;2;2;2m\u2580\x1b[0m\n");
}

TEST(TerminalPicture, ALastOddRowIsShownTwice) {
  const Image image = make_image(1, 3, [](int, int y) { return y + 1; });
  EXPECT_THAT(draw_in(image, eShades::TrueColour),
              testing::EndsWith("\x1b[38;2;3;3;3;48;2;3;3;3m\u2580\x1b[0m\n"));
}

TEST(TerminalPicture, ThePaletteHasBlackGraysAndWhite) {
  EXPECT_THAT(draw_in(make_gray_image(1, 2, 0), eShades::Palette), testing::HasSubstr("38;5;16;"));
  EXPECT_THAT(draw_in(make_gray_image(1, 2, 8), eShades::Palette), testing::HasSubstr("38;5;232;"));
  EXPECT_THAT(draw_in(make_gray_image(1, 2, 128), eShades::Palette),
              testing::HasSubstr("38;5;244;"));
  EXPECT_THAT(draw_in(make_gray_image(1, 2, 255), eShades::Palette),
              testing::HasSubstr("38;5;231;"));
}

TEST(TerminalPicture, ALargeImageFillsTheCanvasAndKeepsItsShape) {
  const std::string wide = draw_in(make_gray_image(160, 40, 0), eShades::Plain);
  EXPECT_EQ(wide, "@@@@@@@@\n");
  const std::string high = draw_in(make_gray_image(40, 160, 0), eShades::Plain);
  EXPECT_EQ(high, "@@\n@@\n@@\n@@\n");
}

TEST(TerminalPicture, ShrinkingTakesTheMeanOfEachPatch) {
  const Image image = make_image(16, 4, [](int x, int) { return x % 2 == 0 ? 100 : 200; });
  EXPECT_THAT(draw_in(image, eShades::TrueColour), testing::StartsWith("\x1b[38;2;150;150;150;"));
}

TEST(TerminalPicture, HasTheShadesThatTheTerminalNames) {
  for (const char* const colours : {"truecolor", "24bit"}) {
    EXPECT_EQ(shades_for("xterm", colours), eShades::TrueColour);
  }
}

TEST(TerminalPicture, HasThePaletteOnEveryUsualTerminal) {
  for (const char* const type : {"xterm", "xterm-256color", "xterm-kitty", "alacritty", "foot",
                                 "rxvt-unicode-256color", "screen", "tmux-256color", "vte"}) {
    EXPECT_EQ(shades_for(type, ""), eShades::Palette) << type;
  }
}

TEST(TerminalPicture, HasPlainSignsOnATerminalOfFewColours) {
  for (const char* const type :
       {"linux", "vt100", "vt220", "ansi", "xterm-16color", "xterm-mono"}) {
    EXPECT_EQ(shades_for(type, ""), eShades::Plain) << type;
  }
}

TEST(TerminalPicture, HasPlainSignsWhereNothingCanBeSaidToATerminal) {
  EXPECT_EQ(shades_for("dumb", "truecolor"), eShades::Plain);
  EXPECT_EQ(shades_for("", "truecolor"), eShades::Plain);
}

}  // namespace
}  // namespace hvk3::test
