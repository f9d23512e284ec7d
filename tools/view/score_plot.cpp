#include "view/score_plot.h"

#include <algorithm>
#include <cmath>

namespace hvk3::view {
namespace {

/// Everything is in the picture, the threshold not at its edge, and the scale moves seldom.
double top_for(const std::deque<Judgement>& scores, unsigned int threshold) {
  constexpr double kUsualTop = 100.0;
  double top = kUsualTop;
  for (const Judgement& each : scores) {
    top = std::max(top, each.score);
  }
  return std::max(top, 1.25 * threshold);
}

/// What lies outside, or is no number, stands at the edge.
int row_of(double score, double top, const SDL_Rect& area) {
  const double part = std::isnan(score) ? 0.0 : std::clamp(score / top, 0.0, 1.0);
  return area.y + area.h - 1 - static_cast<int>(std::lround(part * (area.h - 1)));
}

}  // namespace

ScorePlot plot_scores(const std::deque<Judgement>& scores, unsigned int threshold, std::size_t room,
                      const SDL_Rect& area) {
  ScorePlot plot;
  plot.top = top_for(scores, threshold);
  plot.threshold_y = row_of(threshold, plot.top, area);
  const double step = static_cast<double>(area.w - 1) / static_cast<double>(room - 1);
  for (std::size_t i = 0; i < scores.size(); ++i) {
    const auto age = static_cast<double>(scores.size() - 1 - i);
    plot.points.push_back({area.x + area.w - 1 - static_cast<int>(std::lround(age * step)),
                           row_of(scores[i].score, plot.top, area)});
  }
  return plot;
}

}  // namespace hvk3::view
