#pragma once

#include "ostrevanhvk3/exports.h"
#include "session/rendezvous.h"
#include "session/transcript.h"
#include "support/input.h"

/// @file
/// A client that does what the bytes of a run say.

namespace Osv::fuzz {

/// What a wait of the plug-in means to the one client.
void wait_for_client(int milliseconds);

/// A worker is about to begin.
void note_worker();

/// Drives the frame grabber, also from inside its callbacks. One at a time.
class Client {
 public:
  /// @param operations three bytes each: which one, and two for its arguments
  explicit Client(Bytes operations);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Does everything, and gives the frame grabber back.
  Transcript run();

 private:
  /// What an operation may choose its arguments by.
  struct Choice {
    std::uint8_t first = 0;
    std::uint8_t second = 0;

    unsigned int channel() const { return first % 8 == 7 ? first : 1; }  ///< 1 mostly
  };

  /// Which operations are out of the question where they are asked for.
  enum class Place { Outside, Callback, EventCallback };

  struct Entry {
    void (Client::*operation)(const Choice& choice);
    Place innermost;  ///< the last of `Place` in which it is permitted
  };

  static const Entry kEntries[];
  static Client& called(int handle, unsigned int channel, void* user);
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_live(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);
  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user);

  void do_next(Place place);
  void called_back(const char* word, Place place = Place::Callback);
  void pass();

  void get_info(const Choice& choice);
  void get_version(const Choice& choice);
  void get_last_error(const Choice& choice);
  void set_camera(const Choice& choice);
  void get_image(const Choice& choice);
  void start(const Choice& choice);
  void stop(const Choice& choice);
  void set_filter(const Choice& choice);
  void set_property(const Choice& choice);
  void get_property(const Choice& choice);
  void set_property_ex(const Choice& choice);
  void get_property_ex(const Choice& choice);
  void freeze(const Choice& choice);
  void go_on(const Choice& choice);
  void lists(const Choice& choice);
  void enable_events(const Choice& choice);
  void unsupported(const Choice& choice);
  void list_devices(const Choice& choice);
  void choose_device(const Choice& choice);
  void get_active_device(const Choice& choice);
  void set_callbacks(const Choice& choice);
  void measure_contamination(const Choice& choice);
  void frame_info(const Choice& choice);
  void get_feature(const Choice& choice);
  void set_feature(const Choice& choice);
  void start_anew(const Choice& choice);

  template <typename Id>
  void copy_list(const Choice& choice,
                 unsigned long (lx::ClFramegrabber::*operation)(Id* list, unsigned long& count));

  template <typename Operation>
  unsigned long joining(Operation operation);

  lx::ClFramegrabber& grabber() { return *GetFrameGrabber(); }
  void connect();
  void destroy();

  Input m_operations;
  Transcript m_transcript;
  Rendezvous m_rendezvous;
  unsigned int m_passes = 0;  ///< until the worker is frozen
  unsigned int m_depth = 0;   ///< of callbacks within operations within callbacks

  friend void wait_for_client(int milliseconds);
  friend void note_worker();
};

}  // namespace Osv::fuzz
