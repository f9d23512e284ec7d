#pragma once

#include <deque>

#include "client/client_fixture.h"
#include "threads/capture_record.h"
#include "threads/dawdling.h"

/// @file
/// The ground for tests of whole captures.

namespace Osv::threads {

using client::kChannel;
using client::kFrameCall;
using client::kHandle;

/// A finger lies on the platen, and captures are each written down in a record of their own.
class Captures : public client::ClientTest {
 protected:
  Captures() {
    bench.record(false);
    bench.set_timeline(simulator::Timeline::settled_finger());
    grabber->SetCallbacks(kChannel, &CaptureRecord::on_start, &CaptureRecord::on_stop);
  }

  void TearDown() override {
    bench.clear_faults();
    disconnect();
    for (const CaptureRecord& record : records) {
      EXPECT_EQ(record.complaint(), "");
    }
  }

  unsigned long start_into(CaptureRecord& record, eCaptureModeIDs mode) {
    return grabber->StartCapture(kHandle, kChannel, mode, &CaptureRecord::on_live,
                                 &CaptureRecord::on_finger, &CaptureRecord::on_error, nullptr,
                                 &record);
  }

  void stop_at_once(CaptureRecord& record) {
    EXPECT_EQ(stop(), 0U);
    record.close();
  }

  void stop_at_any_time(CaptureRecord& record) {
    dawdle();
    stop_at_once(record);
  }

  std::deque<CaptureRecord> records;  // of all captures: one may come late into an earlier one
  Dawdler dawdle{4711};
};

}  // namespace Osv::threads
