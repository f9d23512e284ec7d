#include "view/window_picture.h"

#include <png.h>

#include "hvk3/atomic_file.h"

namespace hvk3::view {

void write_window_picture(const Canvas::Pixels& pixels, const std::string& path) {
  AtomicFile file(path);
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(pixels.width);
  image.height = static_cast<png_uint_32>(pixels.height);
  image.format = PNG_FORMAT_RGB;
  if (png_image_write_to_stdio(&image, file.stream(), 0, pixels.bytes.data(), 0, nullptr) == 0) {
    file.fail();
  }
  file.commit();
}

}  // namespace hvk3::view
