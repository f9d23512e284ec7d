#include "hvk3/image.h"

#include <cmath>
#include <numeric>

namespace hvk3 {

double Image::mean() const {
  const Osv::lx::ImageView image = view();
  std::uint64_t sum = 0;
  for (std::size_t y = 0; y < image.height(); ++y) {
    const unsigned char* const row = image.row_from_top(y);
    sum = std::accumulate(row, row + image.width(), sum);
  }
  return static_cast<double>(sum) / static_cast<double>(image.width() * image.height());
}

long Image::dots_per_inch() const {
  constexpr double kInchesPerMetre = 39.37;
  return std::lround(view().x_pixels_per_metre() / kInchesPerMetre);
}

}  // namespace hvk3
