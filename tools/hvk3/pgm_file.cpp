#include "hvk3/pgm_file.h"

#include <string>

#include "hvk3/gray_rows.h"

namespace hvk3 {
namespace {

std::string header_of(const Image& image) {
  const Osv::lx::ImageView view = image.view();
  return "P5\n# " + std::to_string(image.dots_per_inch()) +
         " DPI: " + std::to_string(view.x_pixels_per_metre()) + " x " +
         std::to_string(view.y_pixels_per_metre()) + " pixels per metre\n" +
         std::to_string(view.width()) + ' ' + std::to_string(view.height()) + "\n255\n";
}

}  // namespace

bool write_pgm(const Image& image, std::FILE* stream) {
  const std::string header = header_of(image);
  return std::fwrite(header.data(), header.size(), 1, stream) == 1 &&
         write_gray_rows(image.view(), stream);
}

}  // namespace hvk3
