// Waits for a finger and writes its image: capture [FILE.pgm]
// Build: g++ -std=c++11 -pthread -I include docs/examples/capture.cpp -o capture -ldl
#include <dlfcn.h>

#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/image_block.h"

namespace {

constexpr unsigned int kChannel = 1;

// What the callbacks, on the plug-in's thread, leave for the main thread.
struct Result {
  std::mutex lock;
  std::condition_variable ready;
  std::vector<unsigned char> image;
  std::string error;
};

void finger(int, unsigned int, int, unsigned char* image, void* user) {
  Result& result = *static_cast<Result*>(user);
  const std::size_t size = Osv::lx::ImageView(image).block_size();
  std::lock_guard<std::mutex> guard(result.lock);
  result.image.assign(image, image + size);  // a callback's image is lent: copy what you keep
  result.ready.notify_one();
}

void error(int, unsigned int, const char* text, void* user) {
  Result& result = *static_cast<Result*>(user);
  std::lock_guard<std::mutex> guard(result.lock);
  result.error = text;
  result.ready.notify_one();
}

bool report(Osv::lx::ClFramegrabber& grabber, unsigned long result) {
  if (result == 0) {
    return true;
  }
  char text[1200] = "";
  unsigned long size = sizeof(text);
  grabber.GetLastError(text, size);
  std::fprintf(stderr, "error %ld: %s\n", Osv::lx::ErrorNumber(result), text);
  return false;
}

void write(const Osv::lx::ImageView& image, const char* path) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << image.width() << ' ' << image.height() << "\n255\n";
  for (std::size_t y = 0; y < image.height(); ++y) {
    file.write(reinterpret_cast<const char*>(image.row_from_top(y)),
               static_cast<std::streamsize>(image.width()));
  }
}

int capture(Osv::lx::ClFramegrabber& grabber, const char* path) {
  Result result;
  if (!report(grabber, grabber.StartCapture(1, kChannel, eCapturePlain, nullptr, &finger, &error,
                                            nullptr, &result))) {
    return 1;
  }
  {
    std::unique_lock<std::mutex> guard(result.lock);
    result.ready.wait(guard, [&] { return !result.image.empty() || !result.error.empty(); });
  }
  report(grabber, grabber.StopCapture(kChannel));  // behind it no callback comes any more
  if (!result.error.empty()) {
    std::fprintf(stderr, "%s\n", result.error.c_str());
    return 1;
  }
  write(Osv::lx::ImageView(result.image.data()), path);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  void* library = dlopen("libostrevanhvk3.so", RTLD_NOW);
  if (library == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  namespace symbol = Osv::lx::symbol;
  const auto get =
      reinterpret_cast<Osv::lx::GetFrameGrabberFunction>(dlsym(library, symbol::GetFrameGrabber));
  const auto destroy = reinterpret_cast<Osv::lx::DestroyFrameGrabberFunction>(
      dlsym(library, symbol::DestroyFrameGrabber));
  const int status = capture(*get(), argc > 1 ? argv[1] : "finger.pgm");
  destroy();
  dlclose(library);
  return status;
}
