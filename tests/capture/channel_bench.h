#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "capture/client.h"
#include "capture/fake_scanner.h"
#include "capture/hvk3_channel.h"
#include "capture/journal.h"
#include "capture/recorders.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

/// @file
/// A channel between a fake scanner and a recording client.

namespace Osv::test {

/// A channel that starts no thread: the test calls `Work` itself.
struct StillChannel : lx::ClOstrevanHVK3Channel {
  bool Start() override { return starts; }
  int Stop() override { return result; }
  bool DoImageProcessing() const override { return processes; }

  bool starts = true;
  int result = 0;          ///< what the thread ends with
  bool processes = false;  ///< takes the road of channels that turn their frames
};

/// Journal entries of a bench: scanner calls, callbacks and waits in their order.
template <typename Channel>
class ChannelBench : public testing::Test {
 protected:
  static constexpr int kHandle = 7;

  ChannelBench() {
    lx::ClFrameGrabberChannel::m_pFramegrabberSDK = &scanner;
    channel.SetCallbacks(&Client::start, &Client::stop);
  }

  bool start(eCaptureModeIDs mode) {
    return channel.StartCapture(kHandle, mode, &Client::live, &Client::finger, &Client::error,
                                &Client::warning, &client);
  }

  Journal journal;
  FakeScanner scanner{journal};
  Client client{journal};
  Channel channel;
};

/// A bench whose test is the worker thread.
class StillBench : public ChannelBench<StillChannel> {
 protected:
  /// Runs a whole capture.
  int capture(eCaptureModeIDs mode) {
    start(mode);
    const WaitRecorder waits([this](int milliseconds) {
      journal.add("wait " + std::to_string(milliseconds));
      if (on_wait != nullptr) {
        on_wait(milliseconds);
      }
    });
    return channel.Work();
  }

  void ask_to_stop() { channel.m_bRunning = false; }

  /// The client asks to stop when it has its nth live image.
  void stop_after(int frames) {
    client.on_live = [this, frames](const Client::Image&) {
      if (journal.count("live") == frames) {
        ask_to_stop();
      }
    };
  }

  /// The journal from `entry` on.
  std::vector<std::string> from(const std::string& entry) const {
    std::vector<std::string> all = journal.entries();
    all.erase(all.begin(), std::find(all.begin(), all.end(), entry));
    return all;
  }

  std::function<void(int)> on_wait;  ///< gets the milliseconds
};

/// The number and the text that a call fails with; number 0 when it does not fail.
template <typename Call>
std::pair<int, std::string> failure_of(const Call& call) {
  try {
    call();
  } catch (const lx::ClLXException& e) {
    return {e.GetErrorNumber(), e.GetDescription()};
  }
  return {0, ""};
}

using Failure = std::pair<int, std::string>;

}  // namespace Osv::test
