#pragma once

#include <functional>
#include <string>

#include "capture/journal.h"
#include "ostrevanhvk3/image_block.h"

namespace Osv::test {

/// A client that writes down each callback and does as it is told inside it. It is the user pointer
/// of its callbacks.
class Client {
 public:
  using Image = lx::ImageView;

  explicit Client(Journal& journal) : m_journal(journal) {}

  static void start(int handle, unsigned int channel, void* user) {
    self(user).note("start", handle, channel, self(user).on_start);
  }
  static void stop(int handle, unsigned int channel, void* user) {
    self(user).note("stop", handle, channel, self(user).on_stop);
  }
  static void live(int handle, unsigned int channel, unsigned char* image, void* user) {
    self(user).note_image("live", handle, channel, image, self(user).on_live);
  }
  static void finger(int handle, unsigned int channel, int type, unsigned char* image, void* user) {
    self(user).note_image("finger " + std::to_string(type), handle, channel, image,
                          self(user).on_finger);
  }
  static void error(int handle, unsigned int channel, const char* text, void* user) {
    self(user).note(std::string("error: ") + text, handle, channel, self(user).on_error);
  }
  static void warning(int handle, unsigned int channel, const char* text, void* user) {
    self(user).note(std::string("warning: ") + text, handle, channel, self(user).on_warning);
  }

  std::function<void()> on_start, on_stop, on_error, on_warning;
  std::function<void(const Image&)> on_live, on_finger;

  int handle = 0;            ///< of the last callback
  unsigned int channel = 0;  ///< of the last callback

 private:
  static Client& self(void* user) { return *static_cast<Client*>(user); }

  void note(const std::string& entry, int from, unsigned int number,
            const std::function<void()>& action) {
    handle = from;
    channel = number;
    m_journal.add(entry);
    if (action != nullptr) {
      action();
    }
  }
  void note_image(const std::string& entry, int from, unsigned int number, unsigned char* image,
                  const std::function<void(const Image&)>& action) {
    note(entry, from, number, [&] {
      if (action != nullptr) {
        action(Image(image));
      }
    });
  }

  Journal& m_journal;
};

}  // namespace Osv::test
