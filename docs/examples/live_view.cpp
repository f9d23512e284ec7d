// Takes live images as a window would show them: live_view [IMAGES]
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "ostrevanhvk3/image_block.h"
#include "plugin.h"

namespace {

// What the callbacks, on the plug-in's thread, leave for the thread that draws.
struct View {
  std::mutex lock;
  std::condition_variable changed;
  std::vector<unsigned char> newest;  // empty once it was drawn
  std::string error;
};

// Copies and returns: while it runs, no further frame is fetched. A frame that nobody drew in time
// is replaced.
void live(int, unsigned int, unsigned char* image, void* user) {
  View& view = *static_cast<View*>(user);
  std::lock_guard<std::mutex> guard(view.lock);
  view.newest.assign(image, image + Osv::lx::ImageView(image).block_size());
  view.changed.notify_one();
}

void error(int, unsigned int, const char* text, void* user) {
  View& view = *static_cast<View*>(user);
  std::lock_guard<std::mutex> guard(view.lock);
  view.error = text;
  view.changed.notify_one();
}

// Waits for a frame that was not drawn yet.
void take_newest(View& view, std::vector<unsigned char>& frame) {
  std::unique_lock<std::mutex> guard(view.lock);
  view.changed.wait(guard, [&] { return !view.newest.empty() || !view.error.empty(); });
  if (!view.error.empty()) {
    throw std::runtime_error(view.error);
  }
  frame.swap(view.newest);
  view.newest.clear();
}

void draw(const Osv::lx::ImageView& image) {
  const unsigned char* const row = image.row_from_top(image.height() / 2);
  const unsigned long sum = std::accumulate(row, row + image.width(), 0UL);
  std::printf("%lu x %lu, level of the middle row %lu\n", static_cast<unsigned long>(image.width()),
              static_cast<unsigned long>(image.height()), sum / image.width());
}

}  // namespace

int main(int argc, char** argv) {
  const int images = argc > 1 ? std::atoi(argv[1]) : 30;
  return run([&](Plugin& plugin) {
    Osv::lx::ClFramegrabber& grabber = plugin.grabber();
    View view;
    const StopAtEnd stop(grabber);
    check(grabber,
          grabber.StartCapture(1, kChannel, eCaptureLive, &live, nullptr, &error, nullptr, &view));
    std::vector<unsigned char> frame;
    for (int i = 0; i < images; ++i) {
      take_newest(view, frame);
      draw(Osv::lx::ImageView(frame.data()));
    }
  });
}
