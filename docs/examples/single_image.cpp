// Measures the dirt on the empty platen, then takes one image at once: single_image [FILE.pgm]
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "ostrevanhvk3/image_block.h"
#include "plugin.h"

namespace {

// What is still as it was behind a success has failed without a reason.
void require(bool filled) {
  if (!filled) {
    throw std::runtime_error("the scanner failed without a reason");
  }
}

double dirt(Osv::lx::ClFramegrabber& grabber) {
  double level = -1;
  check(grabber, grabber.ContaminationDetection(kChannel, &level));
  require(level >= 0);
  return level;
}

// An image of its own, which goes back at the end of the scope.
class SingleImage {
 public:
  explicit SingleImage(Osv::lx::ClFramegrabber& grabber) : m_grabber(grabber), m_block(nullptr) {
    check(grabber, grabber.GetImage(kChannel, &m_block));
    require(m_block != nullptr);
  }
  SingleImage(const SingleImage&) = delete;
  SingleImage& operator=(const SingleImage&) = delete;
  ~SingleImage() { m_grabber.FreeImage(m_block); }

  Osv::lx::ImageView view() const { return Osv::lx::ImageView(m_block); }

 private:
  Osv::lx::ClFramegrabber& m_grabber;
  unsigned char* m_block;
};

void write(const Osv::lx::ImageView& image, const char* path) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << image.width() << ' ' << image.height() << "\n255\n";
  for (std::size_t y = 0; y < image.height(); ++y) {
    file.write(reinterpret_cast<const char*>(image.row_from_top(y)),
               static_cast<std::streamsize>(image.width()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  return run([&](Plugin& plugin) {
    std::printf("dirt: %.0f\n", dirt(plugin.grabber()));
    const SingleImage image(plugin.grabber());
    write(image.view(), argc > 1 ? argv[1] : "platen.pgm");
  });
}
