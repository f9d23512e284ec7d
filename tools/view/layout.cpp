#include "view/layout.h"

#include <algorithm>

namespace hvk3::view {
namespace {

constexpr int kMargin = 16;
constexpr int kGap = 12;
constexpr int kHeaderHeight = 64;
constexpr int kTitleHeight = 26;
constexpr int kNoticeHeight = 52;
constexpr int kButtonHeight = 38;
constexpr int kButtonGap = 8;
constexpr int kColumns = 3;

Pane pane(const SDL_Rect& area) {
  return {{area.x, area.y, area.w, kTitleHeight},
          {area.x, area.y + kTitleHeight, area.w, area.h - kTitleHeight}};
}

std::vector<SDL_Rect> grid(const SDL_Rect& area, std::size_t count) {
  const int width = (area.w - (kColumns - 1) * kButtonGap) / kColumns;
  std::vector<SDL_Rect> cells;
  cells.reserve(count);
  for (int i = 0; i < static_cast<int>(count); ++i) {
    cells.push_back({area.x + i % kColumns * (width + kButtonGap),
                     area.y + i / kColumns * (kButtonHeight + kButtonGap), width, kButtonHeight});
  }
  return cells;
}

int grid_height(std::size_t count) {
  const int rows = (static_cast<int>(count) + kColumns - 1) / kColumns;
  return rows * (kButtonHeight + kButtonGap) - kButtonGap;
}

}  // namespace

SDL_Point opening_size(const SDL_Rect& room) {
  return {std::clamp(room.w, kLeastWidth, kUsualWidth),
          std::clamp(room.h, kLeastHeight, kUsualHeight)};
}

std::optional<std::size_t> Layout::button_at(int x, int y) const {
  const SDL_Point point = {x, y};
  const auto hit = std::find_if(buttons.begin(), buttons.end(), [&](const SDL_Rect& button) {
    return SDL_PointInRect(&point, &button) == SDL_TRUE;
  });
  if (hit == buttons.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(hit - buttons.begin());
}

Layout lay_out(int width, int height, std::size_t buttons) {
  const int lower_height = grid_height(buttons);
  const int notice_top = height - kNoticeHeight;
  const int lower_top = notice_top - kGap - lower_height;
  const int half = (width - 2 * kMargin - kGap) / 2;
  const int right = width - kMargin - half;
  const int pane_height = lower_top - kGap - kHeaderHeight;
  Layout layout;
  layout.header = {kMargin, 0, width - 2 * kMargin, kHeaderHeight};
  layout.live = pane({kMargin, kHeaderHeight, half, pane_height});
  layout.kept = pane({right, kHeaderHeight, half, pane_height});
  layout.plot = pane({kMargin, lower_top, half, lower_height});
  layout.buttons = grid({right, lower_top, half, lower_height}, buttons);
  layout.notice = {kMargin, notice_top, width - 2 * kMargin, kNoticeHeight};
  return layout;
}

SDL_Rect fit(int width, int height, const SDL_Rect& area) {
  constexpr double kWorthScaling = 1.3;
  double scale =
      std::min(static_cast<double>(area.w) / width, static_cast<double>(area.h) / height);
  if (scale > 1.0 && scale < kWorthScaling) {
    scale = 1.0;
  }
  const int w = static_cast<int>(width * scale);
  const int h = static_cast<int>(height * scale);
  return {area.x + (area.w - w) / 2, area.y + (area.h - h) / 2, w, h};
}

}  // namespace hvk3::view
