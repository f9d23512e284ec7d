// Takes ten finger images and tells live fingers from fake ones: fake_finger [SECURITY-LEVEL]
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <string>

#include "plugin.h"

namespace {

constexpr int kImages = 10;

struct Judging {
  Osv::lx::CurrentFrameInfoFunction frame_info;
  bool event = false;  // of the frame under way; only the plug-in's thread uses the two
  bool fake = false;   // the last frame was judged to show a fake finger
  std::mutex lock;     // guards the rest
  std::condition_variable changed;
  int images = 0;
  int fakes = 0;
  std::string error;

  explicit Judging(Osv::lx::CurrentFrameInfoFunction function) : frame_info(function) {}
};

// For each frame of a finger that is not live, before its live image.
void event(int, unsigned int, eFGs, unsigned int type, void* user) {
  if (type == eFG_HVK3_FakeFinger) {
    static_cast<Judging*>(user)->event = true;
  }
}

// Each frame begins here: what the event told is about this one.
void live(int, unsigned int, unsigned char*, void* user) {
  Judging& judging = *static_cast<Judging*>(user);
  judging.fake = judging.event;
  judging.event = false;
}

// A fake finger's image is delivered as any other.
void finger(int, unsigned int, int, unsigned char*, void* user) {
  Judging& judging = *static_cast<Judging*>(user);
  std::lock_guard<std::mutex> guard(judging.lock);
  if (judging.images == kImages) {
    return;  // one that came before the stop
  }
  unsigned char info[12] = {};
  judging.frame_info(0, 0, 1, info);
  double score = 0;
  std::memcpy(&score, info, sizeof(score));
  std::printf("score %.0f: %s\n", score, judging.fake ? "fake" : "live");
  judging.fakes += judging.fake ? 1 : 0;
  ++judging.images;
  judging.changed.notify_one();
}

void error(int, unsigned int, const char* text, void* user) {
  Judging& judging = *static_cast<Judging*>(user);
  std::lock_guard<std::mutex> guard(judging.lock);
  judging.error = text;
  judging.changed.notify_one();
}

// Turned on before capture starts, so that no frame goes unjudged.
void turn_on(Osv::lx::ClFramegrabber& grabber, unsigned int level) {
  unsigned int threshold = 0;
  check(grabber, grabber.SetFGProperty(ePropLiveliness, level));
  check(grabber, grabber.GetFGProperty(ePropFakeDetection, threshold));
  std::printf("a live finger scores above %u\n", threshold);
}

void capture(Osv::lx::ClFramegrabber& grabber, Judging& judging) {
  const StopAtEnd stop(grabber);
  check(grabber, grabber.EnableEvents(0, 1, &event, &judging));
  check(grabber, grabber.StartCapture(1, kChannel, eCapturePlain, &live, &finger, &error, nullptr,
                                      &judging));
  std::unique_lock<std::mutex> guard(judging.lock);
  judging.changed.wait(guard, [&] { return judging.images == kImages || !judging.error.empty(); });
  if (!judging.error.empty()) {
    throw std::runtime_error(judging.error);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const unsigned int level = argc > 1 ? static_cast<unsigned int>(std::atoi(argv[1])) : 1;
  return run([&](Plugin& plugin) {
    Judging judging(
        plugin.function<Osv::lx::CurrentFrameInfoFunction>(Osv::lx::symbol::CurrentFrameInfo));
    turn_on(plugin.grabber(), level);
    capture(plugin.grabber(), judging);
    std::printf("%d of %d images are fake\n", judging.fakes, judging.images);
  });
}
