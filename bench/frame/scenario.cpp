// A fixed scenario, whose instructions are counted:
// hvk3_frame_scenario live|plain|fake WIDTH HEIGHT FRAMES

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "client/plugin.h"
#include "frame_run.h"
#include "stand_ins/control.h"

namespace {

constexpr unsigned int kOn = 1;

void capture(std::string_view mode, unsigned long frames) {
  const Osv::client::Plugin plugin;
  Osv::lx::ClFramegrabber& grabber = plugin.grabber();
  if (mode == "fake") {
    grabber.SetFGProperty(ePropLiveliness, kOn);
  }
  Osv::bench::FrameRun(grabber).run(mode == "plain" ? eCapturePlain : eCaptureLive, frames);
  plugin.destroy();
}

unsigned long number(const char* text) { return std::strtoul(text, nullptr, 10); }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fputs("usage: hvk3_frame_scenario live|plain|fake WIDTH HEIGHT FRAMES\n", stderr);
    return 2;
  }
  ostrevan_bench_scanner()->width = static_cast<int>(number(argv[2]));
  ostrevan_bench_scanner()->height = static_cast<int>(number(argv[3]));
  try {
    capture(argv[1], number(argv[4]));
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
  return 0;
}
