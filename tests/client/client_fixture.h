#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/plugin.h"
#include "client/recorder.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/image_block.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"
#include "support/sleeps.h"

/// @file
/// The ground for tests of the loaded plug-in.

namespace Osv::client {

constexpr int kHandle = 4711;
constexpr unsigned int kChannel = 1;
constexpr char kFrameCall[] = "ftrScanGetImageByVariableDose";

using Image = std::vector<unsigned char>;  ///< a copy of an image block

/// A client over the bench's default scene: the plug-in is loaded, the frame grabber there. None of
/// the plug-in's waits takes time.
class ClientTest : public simulator::SimulatorFixture {
 protected:
  ClientTest() { connect(); }

  ~ClientTest() override {
    bench.clear_faults();  // a worker that is blocked could not be joined
    disconnect();
  }

  /// Gets the frame grabber, with start and stop callbacks.
  void connect() {
    grabber = &plugin.grabber();
    grabber->SetCallbacks(kChannel, &Recorder::on_start, &Recorder::on_stop);
  }

  /// Stops capture and gives the frame grabber back.
  void disconnect() {
    if (grabber != nullptr) {
      grabber->StopCapture(kChannel);
      plugin.destroy();
      grabber = nullptr;
    }
  }

  unsigned long start(eCaptureModeIDs mode, int handle = kHandle) {
    return grabber->StartCapture(handle, kChannel, mode, &Recorder::on_live, &Recorder::on_finger,
                                 &Recorder::on_error, &Recorder::on_warning, &recorder);
  }

  unsigned long stop() { return grabber->StopCapture(kChannel); }

  std::string last_text() { return last_error(*grabber); }

  /// A copy of the block that `GetImage` delivers, empty when it delivers none.
  Image snap() {
    unsigned char* block = nullptr;
    if (grabber->GetImage(kChannel, &block) != 0 || block == nullptr) {
      return {};
    }
    Image image(block, block + lx::ImageView(block).block_size());
    grabber->FreeImage(block);
    return image;
  }

  /// Captures live up to a frame call that is blocked, so that the test decides what comes next.
  /// The first frame call of a capture only shapes the image.
  void capture_live_up_to_frame_call(int call) {
    bench.set_faults(std::string(kFrameCall) + " call " + std::to_string(call) +
                     " blocks until told");
    ASSERT_EQ(start(eCaptureLive), 0U);
    bench.wait_until_blocked(kFrameCall);
  }

  /// Blocks until the worker has looked at the freeze `count` times and found it set.
  [[nodiscard]] bool await_freeze_polls(long count) {
    constexpr long kPoll = 100'000'000;  // nanoseconds
    return sleeps.await_nanosleeps(0, kPoll, count);
  }

  // In this order: the worker's callbacks end before the recorder does, the plug-in before the
  // choice of the libraries that it finds.
  simulator::ClosedLibraries libraries;
  test::Sleeps sleeps;
  Recorder recorder;
  Plugin plugin;
  lx::ClFramegrabber* grabber = nullptr;
};

}  // namespace Osv::client
