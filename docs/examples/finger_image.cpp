// Waits for a finger and writes the darkest of ten images of it: finger_image FILE.pgm
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "ostrevanhvk3/image_block.h"
#include "plugin.h"

namespace {

constexpr int kImages = 10;

struct Finger {
  std::mutex lock;
  std::condition_variable changed;
  int images = 0;
  unsigned long least = ~0UL;        // sum of the levels of the best image
  std::vector<unsigned char> image;  // the best one
  std::string error;
};

unsigned long sum_of_levels(const Osv::lx::ImageView& image) {
  unsigned long sum = 0;
  for (std::size_t y = 0; y < image.height(); ++y) {
    const unsigned char* const row = image.row_from_top(y);
    sum = std::accumulate(row, row + image.width(), sum);
  }
  return sum;
}

// The first images show a finger that is only touching down: the darkest one has the most of it.
void finger(int, unsigned int, int, unsigned char* image, void* user) {
  Finger& result = *static_cast<Finger*>(user);
  const Osv::lx::ImageView view(image);
  const unsigned long sum = sum_of_levels(view);
  std::lock_guard<std::mutex> guard(result.lock);
  if (sum < result.least) {
    result.least = sum;
    result.image.assign(image, image + view.block_size());
  }
  ++result.images;
  result.changed.notify_one();
}

void error(int, unsigned int, const char* text, void* user) {
  Finger& result = *static_cast<Finger*>(user);
  std::lock_guard<std::mutex> guard(result.lock);
  result.error = text;
  result.changed.notify_one();
}

void capture(Osv::lx::ClFramegrabber& grabber, Finger& result) {
  const StopAtEnd stop(grabber);
  check(grabber, grabber.StartCapture(1, kChannel, eCapturePlain, nullptr, &finger, &error, nullptr,
                                      &result));
  std::unique_lock<std::mutex> guard(result.lock);
  result.changed.wait(guard, [&] { return result.images >= kImages || !result.error.empty(); });
  if (!result.error.empty()) {
    throw std::runtime_error(result.error);
  }
}

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
    Finger result;
    capture(plugin.grabber(), result);
    write(Osv::lx::ImageView(result.image.data()), argc > 1 ? argv[1] : "finger.pgm");
  });
}
