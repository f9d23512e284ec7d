// A client that has a session with the plug-in and prints every result and callback, images by a
// check sum: session_client PLUGIN [BENCH]. With a bench the simulated scanner does not wait
// between frames, and scanners come and go; without one the frame grabber is given back by the last
// destructor of the process, when the stand-ins of a simulation would be gone.

#include <dlfcn.h>

#include <boost/crc.hpp>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace {

using Osv::simulator::Bench;

constexpr unsigned int kChannel = 1;
constexpr unsigned int kOther = 1;  // interface of the second scanner

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

  /// Freezes behind the first image until something was done.
  Capture(Osv::lx::ClFramegrabber& grabber, unsigned int wanted, std::function<void()> meanwhile)
      : m_pFreezing(&grabber), m_cMeanwhile(std::move(meanwhile)), m_nWanted(wanted) {}

  void run(Osv::lx::ClFramegrabber& grabber, eCaptureModeIDs mode) {
    grabber.SetCallbacks(kChannel, &started, nullptr);
    const unsigned long result =
        grabber.StartCapture(5, kChannel, mode, &live, &finger, &error, &error, this);
    print("start", result);
    if (result != 0) {
      return;
    }
    {
      std::unique_lock<std::mutex> lock(m_cLock);
      if (m_cMeanwhile) {
        m_cEnough.wait(lock, [this] { return m_pFreezing == nullptr; });
        m_cMeanwhile();
        m_sLines += "go on: " + std::to_string(grabber.Freeze(kChannel, false)) + '\n';
      }
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
    if (counts && m_pFreezing != nullptr) {
      m_sLines += "freeze: " + std::to_string(m_pFreezing->Freeze(kChannel, true)) + '\n';
      m_pFreezing = nullptr;
    }
    m_cEnough.notify_one();
  }

  std::mutex m_cLock;
  std::condition_variable m_cEnough;
  Osv::lx::ClFramegrabber* m_pFreezing = nullptr;
  std::function<void()> m_cMeanwhile;
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

void print_last_error(Osv::lx::ClFramegrabber& grabber) {
  char text[1200] = "";
  unsigned long size = sizeof(text);
  print("last error", grabber.GetLastError(text, size));
  print(text);
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
  print_last_error(grabber);
}

/// Another scanner is chosen, and all are unplugged while it idles and while a capture is frozen.
/// @param bench null when this is played
void change_scanners(Osv::lx::ClFramegrabber& grabber, Bench* bench) {
  const auto unplug = [bench] {
    if (bench != nullptr) {
      bench->unplug_all();
    }
  };
  const auto plug_in = [bench] {
    if (bench != nullptr) {
      bench->plug_in_again(0);
      bench->plug_in_again(kOther);
    }
  };
  print("other scanner", grabber.SetActiveDevice(kOther));
  print_image(grabber);
  Capture(grabber, 4, [] {}).run(grabber, eCaptureLive);
  unplug();
  print_image(grabber);
  print_last_error(grabber);
  plug_in();
  print("first scanner", grabber.SetActiveDevice(0));
  print_image(grabber);
  print("other scanner", grabber.SetActiveDevice(kOther));
  print_image(grabber);
  Capture(grabber, 2, unplug).run(grabber, eCaptureLive);
  print_last_error(grabber);
  plug_in();
  print("absent scanner", grabber.SetActiveDevice(kOther + 1));
  print("first scanner", grabber.SetActiveDevice(0));
  print_image(grabber);
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
  Bench* bench = nullptr;
  if (argc > 2) {
    void* const library = dlopen(argv[2], RTLD_NOW);
    bench = function<decltype(&ostrevan_simulator_bench)>(library, "ostrevan_simulator_bench")();
    bench->set_pace(0);
    Osv::simulator::Device other;
    other.serial = "HVK30002";
    other.seed = 2;
    bench->plug_in(kOther, other);
  }
  void* const plugin = argc > 1 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  if (plugin == nullptr) {
    return 1;
  }
  namespace symbol = Osv::lx::symbol;
  g_cLastWill.destroy =
      function<Osv::lx::DestroyFrameGrabberFunction>(plugin, symbol::DestroyFrameGrabber);
  auto& grabber = *function<Osv::lx::GetFrameGrabberFunction>(plugin, symbol::GetFrameGrabber)();
  have_session(grabber);
  change_scanners(grabber, bench);
  if (argc > 2) {
    std::exchange(g_cLastWill.destroy, nullptr)();
  }
  return 0;
}
