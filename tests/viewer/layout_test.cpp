#include "view/layout.h"

#include <gtest/gtest.h>

#include <vector>

#include "view/controls.h"

namespace hvk3::test {
namespace {

view::Layout lay_out(int width, int height) {
  return view::lay_out(width, height, view::button_count());
}

std::vector<SDL_Rect> all_areas(const view::Layout& layout) {
  std::vector<SDL_Rect> areas = {layout.header,       layout.live.title,   layout.live.picture,
                                 layout.kept.title,   layout.kept.picture, layout.plot.title,
                                 layout.plot.picture, layout.notice};
  areas.insert(areas.end(), layout.buttons.begin(), layout.buttons.end());
  return areas;
}

class LayoutOf : public testing::TestWithParam<SDL_Point> {};

TEST_P(LayoutOf, KeepsEverythingInTheWindow) {
  const SDL_Rect window = {0, 0, GetParam().x, GetParam().y};
  for (const SDL_Rect& area : all_areas(lay_out(window.w, window.h))) {
    SDL_Rect both = {};
    SDL_UnionRect(&window, &area, &both);
    EXPECT_TRUE(SDL_RectEquals(&both, &window)) << area.x << ' ' << area.y;
    EXPECT_GT(area.w, 20);
    EXPECT_GT(area.h, 20);
  }
}

TEST_P(LayoutOf, LetsNothingLieOnAnother) {
  const std::vector<SDL_Rect> areas = all_areas(lay_out(GetParam().x, GetParam().y));
  for (std::size_t i = 0; i < areas.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_FALSE(SDL_HasIntersection(&areas[i], &areas[j])) << i << ' ' << j;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Windows, LayoutOf,
                         testing::Values(SDL_Point{view::kUsualWidth, view::kUsualHeight},
                                         SDL_Point{view::kLeastWidth, view::kLeastHeight},
                                         SDL_Point{2560, 1440}, SDL_Point{901, 1203}));

TEST(Layout, OpensNoLargerThanThereIsRoomAndNoSmallerThanLegible) {
  const SDL_Point room_for_all = view::opening_size({0, 0, 1920, 1080});
  EXPECT_EQ(room_for_all.x, view::kUsualWidth);
  EXPECT_EQ(room_for_all.y, view::kUsualHeight);
  EXPECT_EQ(view::opening_size({0, 27, 1024, 741}).y, 741);
  EXPECT_EQ(view::opening_size({0, 0, 800, 480}).x, view::kLeastWidth);
}

TEST(Layout, HasRoomForImagesPixelByPixel) {
  const SDL_Rect area = lay_out(view::kUsualWidth, view::kUsualHeight).live.picture;
  const SDL_Rect place = view::fit(498, 438, area);
  EXPECT_EQ(place.w, 498);
  EXPECT_EQ(place.h, 438);
}

TEST(Layout, FindsTheButtonUnderThePointer) {
  const view::Layout layout = lay_out(view::kUsualWidth, view::kUsualHeight);
  const SDL_Rect& third = layout.buttons[2];
  EXPECT_EQ(layout.button_at(third.x, third.y), 2U);
  EXPECT_EQ(layout.button_at(third.x - 1, third.y), std::nullopt);
}

TEST(Layout, ScalesAPictureDownToItsArea) {
  const SDL_Rect place = view::fit(200, 100, {10, 20, 100, 100});
  const SDL_Rect expected = {10, 45, 100, 50};
  EXPECT_TRUE(SDL_RectEquals(&place, &expected));
}

TEST(Layout, ScalesAPictureUpOnlyWhereItIsWorthIt) {
  EXPECT_EQ(view::fit(100, 100, {0, 0, 120, 120}).w, 100);
  EXPECT_EQ(view::fit(100, 100, {0, 0, 200, 200}).w, 200);
}

}  // namespace
}  // namespace hvk3::test
