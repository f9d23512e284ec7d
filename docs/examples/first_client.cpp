// Waits for a finger on the scanner and draws the middle of it: first_client
#include <dlfcn.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/image_block.h"

namespace {

constexpr unsigned int kChannel = 1;
constexpr int kImages = 10;  // the first ones show a finger that is only touching down

// What the callbacks, on the plug-in's thread, leave for the main thread.
struct Capture {
  std::mutex lock;
  std::condition_variable changed;
  int images = 0;
  std::vector<unsigned char> finger;  // the last of them
  std::string error;
};

// Called for every frame that shows a finger. The image is lent: copy what you keep.
void finger_came(int, unsigned int, int, unsigned char* image, void* user) {
  Capture& capture = *static_cast<Capture*>(user);
  std::lock_guard<std::mutex> guard(capture.lock);
  if (capture.images == kImages) {
    return;  // one more, before capture has stopped
  }
  capture.finger.assign(image, image + Osv::lx::ImageView(image).block_size());
  ++capture.images;
  capture.changed.notify_one();
}

// Called once at most, when something has ended the capture.
void capture_failed(int, unsigned int, const char* text, void* user) {
  Capture& capture = *static_cast<Capture*>(user);
  std::lock_guard<std::mutex> guard(capture.lock);
  capture.error = text;
  capture.changed.notify_one();
}

void wait_for_finger(Capture& capture) {
  std::unique_lock<std::mutex> guard(capture.lock);
  capture.changed.wait(guard, [&] { return capture.images == kImages || !capture.error.empty(); });
}

// A sign for 4 x 8 pixels, the darker the denser; ridges are dark.
char sign(const Osv::lx::ImageView& image, std::size_t x, std::size_t y) {
  unsigned int sum = 0;
  for (std::size_t row = 0; row < 8; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      sum += image.row_from_top(y + row)[x + column];
    }
  }
  return "@%#*+=-:. "[sum / 32 * 10 / 256];
}

void draw(const Osv::lx::ImageView& image) {
  const std::size_t columns = std::min<std::size_t>(78, image.width() / 4);
  const std::size_t rows = std::min<std::size_t>(24, image.height() / 8);
  const std::size_t left = (image.width() - 4 * columns) / 2;
  const std::size_t top = (image.height() - 8 * rows) / 2;
  for (std::size_t y = 0; y < rows; ++y) {
    std::string line;
    for (std::size_t x = 0; x < columns; ++x) {
      line += sign(image, left + 4 * x, top + 8 * y);
    }
    std::puts(line.c_str());
  }
}

int run(Osv::lx::ClFramegrabber& grabber) {
  Capture capture;
  const unsigned long result = grabber.StartCapture(
      1, kChannel, eCapturePlain, nullptr, &finger_came, &capture_failed, nullptr, &capture);
  if (result != 0) {
    char text[1200] = "";
    unsigned long size = sizeof(text);
    grabber.GetLastError(text, size);
    std::printf("error %ld: %s\n", Osv::lx::ErrorNumber(result), text);
    return 1;
  }
  std::puts("Put a finger on the scanner.");
  wait_for_finger(capture);
  grabber.StopCapture(kChannel);  // behind it no callback comes any more
  if (!capture.error.empty()) {
    std::printf("%s\n", capture.error.c_str());
    return 1;
  }
  draw(Osv::lx::ImageView(capture.finger.data()));
  return 0;
}

}  // namespace

int main() {
  void* const library = dlopen("libostrevanhvk3.so", RTLD_NOW);
  if (library == nullptr) {
    std::printf("%s\n", dlerror());
    return 1;
  }
  namespace symbol = Osv::lx::symbol;
  const auto get =
      reinterpret_cast<Osv::lx::GetFrameGrabberFunction>(dlsym(library, symbol::GetFrameGrabber));
  const auto destroy = reinterpret_cast<Osv::lx::DestroyFrameGrabberFunction>(
      dlsym(library, symbol::DestroyFrameGrabber));
  const int status = run(*get());
  destroy();
  dlclose(library);
  return status;
}
