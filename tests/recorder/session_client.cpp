// A client that has a session with the plug-in and prints every result and callback, images by a
// check sum: session_client PLUGIN [BENCH]. With a bench the simulated scanner does not wait
// between frames; without one the frame grabber is given back by the last destructor of the
// process, when the stand-ins of a simulation would be gone.

#include <dlfcn.h>

#include <boost/crc.hpp>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace {

constexpr unsigned int kChannel = 1;

void print(const std::string& what) { std::printf("%s\n", what.c_str()); }

void print(const std::string& what, unsigned long result) {
  print(what + ": " + std::to_string(result));
}

std::string sum_of(const unsigned char* image) {
  boost::crc_32_type sum;
  sum.process_bytes(image, Osv::lx::ImageView(image).block_size());
  return std::to_string(sum.checksum());
}

/// The callbacks of a capture up to so many images; what comes until it is stopped is by chance.
class Capture {
 public:
  explicit Capture(unsigned int wanted) : m_nWanted(wanted) {}

  void run(Osv::lx::ClFramegrabber& grabber, eCaptureModeIDs mode) {
    grabber.SetCallbacks(kChannel, &started, nullptr);
    print("start", grabber.StartCapture(5, kChannel, mode, &live, &finger, &error, &error, this));
    {
      std::unique_lock<std::mutex> lock(m_cLock);
      m_cEnough.wait(lock, [this] { return m_nWanted == 0; });
    }
    print(m_sLines + "stop", grabber.StopCapture(kChannel));
  }

 private:
  static void started(int /*handle*/, unsigned int /*channel*/, void* user) {
    static_cast<Capture*>(user)->add("started", false);
  }
  static void live(int /*handle*/, unsigned int /*channel*/, unsigned char* image, void* user) {
    static_cast<Capture*>(user)->add("live " + sum_of(image), true);
  }
  static void finger(int /*handle*/, unsigned int /*channel*/, int type, unsigned char* image,
                     void* user) {
    static_cast<Capture*>(user)->add("finger " + std::to_string(type) + ' ' + sum_of(image), false);
  }
  static void error(int /*handle*/, unsigned int /*channel*/, const char* text, void* user) {
    static_cast<Capture*>(user)->add(text, true);
  }

  void add(const std::string& line, bool counts) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    if (m_nWanted == 0) {
      return;
    }
    m_sLines += line + '\n';
    m_nWanted -= counts ? 1 : 0;
    m_cEnough.notify_one();
  }

  std::mutex m_cLock;
  std::condition_variable m_cEnough;
  unsigned int m_nWanted;
  std::string m_sLines;
};

void print_property(Osv::lx::ClFramegrabber& grabber, ePropertyIDs property) {
  unsigned int value = 0;
  print("get " + std::to_string(property), grabber.GetFGProperty(property, value));
  print("value", value);
}

void print_image(Osv::lx::ClFramegrabber& grabber) {
  unsigned char* image = nullptr;
  print("image", grabber.GetImage(kChannel, &image));
  if (image != nullptr) {
    print(sum_of(image));
    grabber.FreeImage(image);
  }
}

void have_session(Osv::lx::ClFramegrabber& grabber) {
  char text[1200] = "";
  unsigned long size = sizeof(text);
  print("info", grabber.GetInfo(text, size));
  print(text);
  print_image(grabber);
  Capture(4).run(grabber, eCaptureLive);
  Capture(30).run(grabber, eCapturePlain);
  for (const unsigned int on : {1U, 0U}) {
    print("low contrast", grabber.SetFGProperty(ePropLowContrastImage, on));
    print_property(grabber, ePropLowContrastImage);
  }
  print("LED", grabber.SetFGProperty(ePropRedLED, 1));
  print("fake finger detection", grabber.SetFGProperty(ePropLiveliness, 1));
  print_property(grabber, ePropFakeDetection);
  Capture(3).run(grabber, eCaptureLive);
  print_image(grabber);
  print("fake finger detection", grabber.SetFGProperty(ePropLiveliness, 0));
  double dirt = 0;
  print("dirt", grabber.ContaminationDetection(kChannel, &dirt));
  print(std::to_string(dirt));
  size = sizeof(text);
  print("last error", grabber.GetLastError(text, size));
  print(text);
}

struct LastWill {
  Osv::lx::DestroyFrameGrabberFunction destroy = nullptr;
  ~LastWill() {
    if (destroy != nullptr) {
      destroy();
    }
  }
};

LastWill g_cLastWill;

template <class Function>
Function function(void* library, const char* name) {
  return reinterpret_cast<Function>(dlsym(library, name));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    void* const bench = dlopen(argv[2], RTLD_NOW);
    function<decltype(&ostrevan_simulator_bench)>(bench, "ostrevan_simulator_bench")()->set_pace(0);
  }
  void* const plugin = argc > 1 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  if (plugin == nullptr) {
    return 1;
  }
  namespace symbol = Osv::lx::symbol;
  g_cLastWill.destroy =
      function<Osv::lx::DestroyFrameGrabberFunction>(plugin, symbol::DestroyFrameGrabber);
  have_session(*function<Osv::lx::GetFrameGrabberFunction>(plugin, symbol::GetFrameGrabber)());
  if (argc > 2) {
    std::exchange(g_cLastWill.destroy, nullptr)();
  }
  return 0;
}
