#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "client/plugin.h"
#include "faults/scenario.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// A client of the loaded plug-in that does the steps of a scenario.

namespace Osv::faults {

/// One client at a time. No capture of it ends by the clock: it stops inside the last image that it
/// wants, when the stop is already under way.
class Client {
 public:
  Client();

  /// Gives everything back, as a client does that comes to its end after a failure.
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// What the client has of the step, in words.
  std::string run(const Step& step);

  /// The same on a thread of its own, which takes every lock that a client's call takes.
  std::string run_elsewhere(const Step& step);

  /// Gives the frame grabber back.
  void destroy();

  /// What the last frame was scored with.
  double score();

  /// Callbacks that came when nothing was captured.
  unsigned int stray_callbacks() const { return m_nStray; }

 private:
  static Client& self(void* user) { return *static_cast<Client*>(user); }
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_live(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);
  static void on_warning(int handle, unsigned int channel, const char* text, void* user);
  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user);

  void connect();
  void note(const std::string& word, bool ends = false);
  void note_image(const unsigned char* image);
  void unplug_inside(unsigned int callback);
  void act_inside(unsigned int callback);
  void await_stop();
  std::string events();

  unsigned long list(std::string& value);
  unsigned long info(std::string& value);
  unsigned long snap(std::string& value);
  unsigned long property(const Step& step, std::string& value);
  unsigned long feature(const Step& step, std::string& value);
  unsigned long allocated_feature(const Step& step, std::string& value);
  unsigned long contamination(std::string& value);
  unsigned long frame_info(std::string& value);
  unsigned long capture(const Step& step, std::string& value);
  void await_end(bool captures);

  simulator::Bench& m_cBench;
  std::unique_ptr<client::Plugin> m_pPlugin;
  lx::ClFramegrabber* m_pGrabber = nullptr;

  // of one capture
  Step m_sStep;
  std::vector<unsigned char> m_vImage;  // the one before
  unsigned int m_nImages = 0;
  bool m_bStopping = false;
  bool m_bUnplugged = false;

  std::mutex m_cLock;  // guards the rest
  std::condition_variable m_cChanged;
  bool m_bCapturing = false;
  bool m_bEnded = false;   // enough was seen, or capture has ended by itself
  bool m_bFrozen = false;  // the freeze is to be ended
  std::string m_sEvents;
  unsigned int m_nStray = 0;
};

}  // namespace Osv::faults
