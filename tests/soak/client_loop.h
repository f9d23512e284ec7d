#pragma once

#include <atomic>
#include <string>

#include "client/plugin.h"
#include "ostrevanhvk3/framegrabber.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/sleeps.h"

/// @file
/// A client that never tires.

namespace Osv::soak {

/// A client of the loaded plug-in with two simulated scanners, which does everything again and
/// again. It counts its callbacks and keeps nothing of them. What goes otherwise than it should is
/// thrown as std::runtime_error.
class ClientLoop {
 public:
  ClientLoop();
  ~ClientLoop();
  ClientLoop(const ClientLoop&) = delete;
  ClientLoop& operator=(const ClientLoop&) = delete;

  /// Some hundred frames with all that can happen between them. Afterwards the client holds what it
  /// held before: the frame grabber, and one scanner open.
  /// @param sleeps those of the round
  void round(const test::Sleeps& sleeps);

  /// Images that the callbacks were given up to now.
  long frames() const { return m_nLive + m_nFinger; }

 private:
  void live_capture();
  void plain_capture();
  void freezing(const test::Sleeps& sleeps);
  void unplugging();
  void fake_fingers();
  void idle_calls();
  void change_of_scanner();
  void new_grabber();

  void connect();
  void disconnect();
  void start(eCaptureModeIDs mode);
  void stop();
  void expect(unsigned long number, unsigned long expected, const std::string& what);

  static ClientLoop& self(void* user) { return *static_cast<ClientLoop*>(user); }
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_live(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);

  simulator::Bench& m_cBench;
  client::Plugin m_cPlugin;
  lx::ClFramegrabber* m_pGrabber = nullptr;
  std::atomic<long> m_nLive = 0;
  std::atomic<long> m_nFinger = 0;
  std::atomic<long> m_nStarted = 0;
  std::atomic<long> m_nStopped = 0;
  std::atomic<long> m_nErrors = 0;
};

}  // namespace Osv::soak
