#include "hvk3/delivery.h"

#include <iomanip>
#include <sstream>

#include "hvk3/image_file.h"

namespace hvk3 {
namespace {

std::string file_name(const Options& options, unsigned int number) {
  if (options.out.empty() || options.count == 1) {
    return options.out;
  }
  return numbered_path(options.out, number);
}

nlohmann::ordered_json to_json(const Image& image, const std::string& file) {
  const Osv::lx::ImageView view = image.view();
  return {{"width", view.width()},
          {"height", view.height()},
          {"dpi", image.dots_per_inch()},
          {"pixels_per_metre", view.x_pixels_per_metre()},
          {"mean", image.mean()},
          {"file", file.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(file)}};
}

std::string to_text(const Image& image, const std::string& file) {
  const Osv::lx::ImageView view = image.view();
  std::ostringstream line;
  line << (file.empty() ? "image" : file) << ": " << view.width() << " x " << view.height()
       << " pixels, " << image.dots_per_inch() << " DPI, mean gray " << std::fixed
       << std::setprecision(1) << image.mean() << '\n';
  return line.str();
}

}  // namespace

void deliver(Context& context, const Image& image, unsigned int number) {
  const Options& options = context.options();
  const std::string file = file_name(options, number);
  if (!file.empty()) {
    write_image(image, file, options.record);
  }
  context.report()["images"].push_back(to_json(image, file));
  context.report().text(to_text(image, file));
  if (options.show) {
    context.report().text(draw(image.view(), terminal_canvas(options.shades)));
  }
}

}  // namespace hvk3
