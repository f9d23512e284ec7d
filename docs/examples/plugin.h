#ifndef PLUGIN_H
#define PLUGIN_H

// What the examples share: loading the plug-in, failures as exceptions, and the end of it all.
// Build one: g++ -std=c++11 -pthread -I include docs/examples/live_view.cpp -o live_view -ldl

#include <dlfcn.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/exports.h"

constexpr unsigned int kChannel = 1;

// A failed operation: its number without the bit 0x10000000, and its text.
class Failure : public std::runtime_error {
 public:
  Failure(long number, const std::string& text)
      : std::runtime_error("error " + std::to_string(number) + ": " + text), m_number(number) {}
  long number() const { return m_number; }

 private:
  long m_number;
};

// Throws unless the result is 0.
inline void check(Osv::lx::ClFramegrabber& grabber, unsigned long result) {
  if (result == 0) {
    return;
  }
  char text[1200] = "";
  unsigned long size = sizeof(text);
  grabber.GetLastError(text, size);
  throw Failure(Osv::lx::ErrorNumber(result), text);
}

// The loaded plug-in.
class Plugin {
 public:
  Plugin() : m_library(dlopen("libostrevanhvk3.so", RTLD_NOW)) {
    if (m_library == nullptr) {
      throw std::runtime_error(dlerror());
    }
  }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin() {
    close();
    dlclose(m_library);
  }

  // The frame grabber, the same one until `close`.
  Osv::lx::ClFramegrabber& grabber() {
    return *function<Osv::lx::GetFrameGrabberFunction>(Osv::lx::symbol::GetFrameGrabber)();
  }

  // Destroys the frame grabber and closes the scanner. Capture has been stopped before.
  void close() {
    function<Osv::lx::DestroyFrameGrabberFunction>(Osv::lx::symbol::DestroyFrameGrabber)();
  }

  // An exported function, by its name of Osv::lx::symbol.
  template <typename Function>
  Function function(const char* name) {
    void* const address = dlsym(m_library, name);
    if (address == nullptr) {
      throw std::runtime_error(name);
    }
    return reinterpret_cast<Function>(address);
  }

 private:
  void* m_library;
};

// Stops capture at the end of its scope, behind which no callback comes any more. Make it before
// capture starts, and behind everything that the callbacks use.
class StopAtEnd {
 public:
  explicit StopAtEnd(Osv::lx::ClFramegrabber& grabber) : m_grabber(grabber) {}
  StopAtEnd(const StopAtEnd&) = delete;
  StopAtEnd& operator=(const StopAtEnd&) = delete;
  ~StopAtEnd() { m_grabber.StopCapture(kChannel); }

 private:
  Osv::lx::ClFramegrabber& m_grabber;
};

// Runs an example with the plug-in loaded. @return the exit status
template <typename Example>
int run(Example example) {
  try {
    Plugin plugin;
    example(plugin);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}

#endif
