#pragma once

#include "client/plugin.h"
#include "closed_calls.h"
#include "frame_run.h"

/// @file
/// The plug-in with its frame grabber, for one measurement.

namespace Osv::bench {

/// Loads the plug-in, and takes it down in the right order.
class Session {
 public:
  explicit Session(const Size& size) {
    set_frame_size(size);
    m_grabber = &m_plugin.grabber();
  }
  ~Session() {
    m_grabber->StopCapture(kChannel);
    m_plugin.destroy();
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  lx::ClFramegrabber& grabber() { return *m_grabber; }

  void detect_fake_fingers() { m_grabber->SetFGProperty(ePropLiveliness, 1); }

 private:
  client::Plugin m_plugin;
  lx::ClFramegrabber* m_grabber = nullptr;
};

}  // namespace Osv::bench
