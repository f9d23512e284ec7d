#pragma once

#include <SDL_rect.h>

#include <deque>
#include <vector>

#include "hvk3/judgement.h"

/// @file
/// The score of fake finger detection over time.

namespace hvk3::view {

struct ScorePlot {
  std::vector<SDL_Point> points;  ///< one a frame, the newest at the right edge
  int threshold_y = 0;
  double top = 0.0;  ///< score at the upper edge; 0 stands at the lower one
};

/// @param room how many frames the width of the area is for
ScorePlot plot_scores(const std::deque<Judgement>& scores, unsigned int threshold, std::size_t room,
                      const SDL_Rect& area);

}  // namespace hvk3::view
