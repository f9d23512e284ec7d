#pragma once

#include <sys/types.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <memory>

#include "recorder/format/arguments.h"
#include "recorder/functions.h"
#include "recorder/session/answer.h"
#include "recorder/session/frame_sizes.h"
#include "recorder/session/handle_book.h"
#include "recorder/session/player.h"
#include "recorder/session/recorder.h"
#include "recorder/session/variables.h"

/// @file
/// What the four forwarders of a process share.

namespace Osv::recorder {

/// Lives until the process has ended: calls may come from the last destructors.
class Session {
 public:
  /// The one of the process. Made at the first call, from the variables above.
  static Session& get();

  /// Puts a player in place, in a program that has no such variables.
  void play(std::unique_ptr<Player> player);

  Player* player() const { return m_pPlayer.get(); }
  Recorder* recorder() const { return m_pRecorder.get(); }

  HandleBook& handles(eLibrary library) { return m_aState->handles[index_of(library)]; }
  FrameSizes& frame_sizes() { return m_aState->frame_sizes; }

  /// Whether images stand in the recording. Without, they are compared by their sizes alone.
  bool pixels() const {
    return m_pPlayer != nullptr ? m_pPlayer->pixels()
                                : m_pRecorder == nullptr || m_pRecorder->pixels();
  }

  /// Whether this process is not the one that began, but made from it.
  bool is_fork() const;

  /// Opens a real library and looks its functions up; ends the process when it isn't there.
  void open(eLibrary library);

  /// A real function; null when the library does not have it.
  void* real(eFunction function) const { return m_aReal[index_of(function)]; }

  /// Number of the calling thread, from 1.
  static std::uint32_t thread();

 private:
  struct State {
    std::array<HandleBook, kLibraryCount> handles;
    FrameSizes frame_sizes;
  };

  Session();

  const pid_t m_nProcess;
  std::unique_ptr<Player> m_pPlayer;
  std::unique_ptr<Recorder> m_pRecorder;
  std::unique_ptr<State> m_aState = std::make_unique<State>();
  std::array<void*, kFunctionCount> m_aReal = {};
};

/// One call: forwarded and recorded, or played.
/// @param real makes it
/// @param answer goes through result and outputs, as `Answer` tells
template <class Result, class Real, class Outputs>
Result exchange(eFunction function, const Arguments& arguments, Real real, Outputs outputs) {
  Session& session = Session::get();
  Result result{};
  const auto go_through = [&](Answer& answer) { outputs(answer, result); };
  if (Player* const player = session.player(); player != nullptr) {
    player->answer(function, Session::thread(), arguments, go_through);
    return result;
  }
  Recorder* const recorder = session.recorder();
  const std::uint64_t begin = recorder == nullptr ? 0 : recorder->now();
  result = real();
  if (recorder != nullptr) {
    const int error = errno;
    recorder->write(function, Session::thread(), begin, arguments, go_through);
    errno = error;
  }
  return result;
}

}  // namespace Osv::recorder
