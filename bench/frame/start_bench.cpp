// How long the plug-in takes to start, to stop and to list scanners, on the simulator:
// start_bench MEASUREMENT

#include <dlfcn.h>

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include "client/plugin.h"
#include "measure.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::bench {
namespace {

constexpr unsigned int kChannel = 1;
constexpr double kMilli = 1e-6;
constexpr double kMiddle = 0.5;

double milliseconds_since(std::int64_t begin) {
  return static_cast<double>(now() - begin) * kMilli;
}

/// Makes the stand-ins known under the names that the plug-in asks for.
void load_stand_ins() {
  for (const char* const name :
       {"libKR9ScanAPI.so", "libostrevancalibratesdk.so", "libostrevanfakefingerdetection.so"}) {
    if (dlopen((std::string(HVK3_SIMULATOR_DIR "/") + name).c_str(), RTLD_NOW) == nullptr) {
      throw std::runtime_error(dlerror());
    }
  }
}

/// The first live image.
class FirstImage {
 public:
  void await() {
    std::unique_lock<std::mutex> lock(m_lock);
    m_changed.wait(lock, [this] { return m_there; });
  }

  static void callback(int, unsigned int, unsigned char*, void* user) {
    FirstImage& first = *static_cast<FirstImage*>(user);
    const std::lock_guard<std::mutex> lock(first.m_lock);
    first.m_there = true;
    first.m_changed.notify_one();
  }

 private:
  std::mutex m_lock;
  std::condition_variable m_changed;
  bool m_there = false;
};

struct StartAndStop {
  double start;
  double stop;
};

StartAndStop start_and_stop(const client::Plugin& plugin) {
  FirstImage first;
  const std::int64_t begin = now();
  lx::ClFramegrabber& grabber = plugin.grabber();
  if (grabber.StartCapture(0, kChannel, eCaptureLive, &FirstImage::callback, nullptr, nullptr,
                           nullptr, &first) != 0) {
    throw std::runtime_error(client::last_error(grabber));
  }
  first.await();
  const double start = milliseconds_since(begin);
  const std::int64_t end = now();
  grabber.StopCapture(kChannel);
  const double stop = milliseconds_since(end);
  plugin.destroy();
  return {start, stop};
}

void add_starts(std::vector<Row>& rows, const client::Plugin& plugin, const std::string& pace) {
  constexpr int kTimes = 15;
  std::vector<double> starts;
  std::vector<double> stops;
  for (int i = 0; i < kTimes; ++i) {
    const StartAndStop times = start_and_stop(plugin);
    starts.push_back(times.start);
    stops.push_back(times.stop);
  }
  rows.push_back({"start and stop on the simulator, " + pace, "",
                  "GetFrameGrabber to the first image", quantile(starts, kMiddle), "ms"});
  rows.push_back({"start and stop on the simulator, " + pace, "", "StopCapture",
                  quantile(stops, kMiddle), "ms"});
}

std::vector<Row> start() {
  load_stand_ins();
  simulator::Bench& bench = *ostrevan_simulator_bench();
  const client::Plugin plugin;
  std::vector<Row> rows;
  bench.set_pace(0);
  rows.push_back({"start and stop on the simulator, no pace", "", "the very first time",
                  start_and_stop(plugin).start, "ms"});
  add_starts(rows, plugin, "no pace");
  bench.set_pace(simulator::kDefaultPace);
  add_starts(rows, plugin, "15 frames a second");
  return rows;
}

void plug_in(simulator::Bench& bench, unsigned int scanners) {
  bench.unplug_all();
  for (unsigned int interface = 0; interface < scanners; ++interface) {
    bench.plug_in(interface, simulator::Device());
  }
}

double list_all(lx::ClFramegrabber& grabber) {
  std::vector<DeviceInfo> list(simulator::kInterfaceCount);
  unsigned long count = list.size();
  const std::int64_t begin = now();
  grabber.AvailableDevices(list.data(), count);
  return milliseconds_since(begin);
}

std::vector<Row> listing() {
  constexpr int kTimes = 15;
  load_stand_ins();
  const client::Plugin plugin;
  std::vector<Row> rows;
  for (const unsigned int scanners : {1U, 8U, 128U}) {
    plug_in(*ostrevan_simulator_bench(), scanners);
    list_all(plugin.grabber());  // the simulator makes its scanners at the first look
    std::vector<double> times;
    times.reserve(kTimes);
    for (int i = 0; i < kTimes; ++i) {
      times.push_back(list_all(plugin.grabber()));
    }
    rows.push_back({"listing on the simulator", "", std::to_string(scanners) + " interfaces",
                    quantile(times, kMiddle), "ms"});
  }
  plugin.destroy();
  return rows;
}

}  // namespace
}  // namespace Osv::bench

int main(int argc, char** argv) {
  using namespace Osv::bench;
  return measure(argc, argv, {{"start", &start}, {"listing", &listing}});
}
