// Takes live images, also across an unplugging: recovery [IMAGES]
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

#include "plugin.h"

namespace {

struct Session {
  std::mutex lock;
  std::condition_variable changed;
  int images = 0;
  std::string error;
};

void live(int, unsigned int, unsigned char*, void* user) {
  Session& session = *static_cast<Session*>(user);
  std::lock_guard<std::mutex> guard(session.lock);
  ++session.images;
  session.changed.notify_one();
}

void error(int, unsigned int, const char* text, void* user) {
  Session& session = *static_cast<Session*>(user);
  std::lock_guard<std::mutex> guard(session.lock);
  session.error = text;
  session.changed.notify_one();
}

// The error callback has one text: "<text> error: <number>".
Failure failure_of_capture(const std::string& text) {
  const std::size_t colon = text.rfind(": ");
  const long number =
      colon == std::string::npos ? 0 : std::strtol(text.c_str() + colon + 2, nullptr, 10);
  return Failure(number, text);
}

// Captures until there are enough images. The error has ended capture, and stopping is still due.
void capture(Osv::lx::ClFramegrabber& grabber, Session& session, int images) {
  const StopAtEnd stop(grabber);
  session.error.clear();
  check(grabber,
        grabber.StartCapture(1, kChannel, eCaptureLive, &live, nullptr, &error, nullptr, &session));
  std::unique_lock<std::mutex> guard(session.lock);
  session.changed.wait(guard, [&] { return session.images >= images || !session.error.empty(); });
  if (!session.error.empty()) {
    throw failure_of_capture(session.error);
  }
}

// 2: not connected. 31: the device went, as other calls than that for a frame may put it.
bool is_unplugged(const Failure& failure) {
  return failure.number() == 2 || failure.number() == 31;
}

unsigned long attached_scanners(Osv::lx::ClFramegrabber& grabber) {
  unsigned long count = 0;
  const unsigned long result = grabber.AvailableDevices(nullptr, count);
  if (Osv::lx::ErrorNumber(result) != Osv::lx::error_number::BufferTooSmall) {
    check(grabber, result);
  }
  return count;
}

void wait_for_scanner(Osv::lx::ClFramegrabber& grabber) {
  while (attached_scanners(grabber) == 0) {
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int images = argc > 1 ? std::atoi(argv[1]) : 100;
  return run([&](Plugin& plugin) {
    Session session;
    while (session.images < images) {
      try {
        capture(plugin.grabber(), session, images);
      } catch (const Failure& failure) {
        if (!is_unplugged(failure)) {
          throw;
        }
        std::printf("%s\n", failure.what());
        plugin.close();  // also forgets a scanner that was unplugged while nothing was captured
        wait_for_scanner(plugin.grabber());
      }
    }
    std::printf("%d images\n", images);
  });
}
