#ifndef APPLICATION_H
#define APPLICATION_H

// An application's part that captures: what application_test.cpp tests.

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

#include "ostrevanhvk3/image_block.h"
#include "plugin.h"

// A finger's gray levels, row by row from the top, or what the user is to do.
struct Enrolment {
  std::vector<unsigned char> finger;
  std::string trouble;
};

// What the callbacks leave for the thread that waits.
struct Capture {
  std::mutex lock;
  std::condition_variable changed;
  std::vector<unsigned char> finger;
  std::string error;
};

inline void finger_came(int, unsigned int, int, unsigned char* image, void* user) {
  const Osv::lx::ImageView view(image);
  Capture& capture = *static_cast<Capture*>(user);
  std::lock_guard<std::mutex> guard(capture.lock);
  capture.finger.clear();
  for (std::size_t y = 0; y < view.height(); ++y) {
    const unsigned char* const row = view.row_from_top(y);
    capture.finger.insert(capture.finger.end(), row, row + view.width());
  }
  capture.changed.notify_one();
}

inline void capture_failed(int, unsigned int, const char* text, void* user) {
  Capture& capture = *static_cast<Capture*>(user);
  std::lock_guard<std::mutex> guard(capture.lock);
  capture.error = text;
  capture.changed.notify_one();
}

// Number 2, behind the last colon of an error text, is a scanner that is not there.
inline std::string advice(long number) {
  return number == Osv::lx::error_number::NotConnected ? "connect the scanner"
                                                       : "call the help desk";
}

inline void wait_for_finger(Osv::lx::ClFramegrabber& grabber, Capture& capture) {
  const StopAtEnd stop(grabber);
  check(grabber, grabber.StartCapture(1, kChannel, eCapturePlain, nullptr, &finger_came,
                                      &capture_failed, nullptr, &capture));
  std::unique_lock<std::mutex> guard(capture.lock);
  capture.changed.wait(guard, [&] { return !capture.finger.empty() || !capture.error.empty(); });
}

// Waits for a finger, and gives scanner and plug-in back.
inline Enrolment enrol() {
  Capture capture;
  try {
    Plugin plugin;
    wait_for_finger(plugin.grabber(), capture);
  } catch (const Failure& failure) {
    return {{}, advice(failure.number())};
  }
  if (!capture.error.empty()) {
    return {{}, advice(std::atol(capture.error.c_str() + capture.error.rfind(':') + 1))};
  }
  return {capture.finger, ""};
}

#endif
