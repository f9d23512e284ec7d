// Measures the plug-in through its exported interface: frame_bench MEASUREMENT

#include <opencv2/core.hpp>

#include "measurements.h"

namespace bench = Osv::bench;

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  return bench::measure(argc, argv,
                        {{"overhead", &bench::overhead},
                         {"growth", &bench::growth},
                         {"pause", &bench::pause},
                         {"rate", &bench::rate},
                         {"latency", &bench::latency},
                         {"latency-with-log", &bench::latency_with_log},
                         {"allocations", &bench::allocations},
                         {"rest", &bench::rest},
                         {"lock", &bench::lock},
                         {"fake-finger", &bench::fake_finger},
                         {"threshold", &bench::threshold},
                         {"memory", &bench::memory},
                         {"start", &bench::start},
                         {"listing", &bench::listing}});
}
