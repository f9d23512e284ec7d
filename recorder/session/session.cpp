#include "recorder/session/session.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#include "recorder/session/message.h"

namespace Osv::recorder {
namespace {

constexpr Player::Milliseconds kPatience(500);

std::string variable_named(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// For the tool, which waits for the end.
void leave_report(const std::string& text) {
  const std::string path = variable_named(variable::kReport);
  const Descriptor file(
      path.empty() ? -1 : ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  static_cast<void>(file.get() >= 0 && ::write(file.get(), text.data(), text.size()) > 0);
}

/// The process ends at once: nothing that it could still do would be as it was.
[[noreturn]] void end_process(eEnd end, const std::string& text) {
  message("hvk3: " + text);
  leave_report(text);
  ::_exit(static_cast<int>(end));
}

class ProcessEnding : public Ending {
 public:
  void diverged(const std::string& how) override { end_process(eEnd::Diverged, "replay: " + how); }
  void damaged(const std::string& how) override { end_process(eEnd::Damaged, "replay: " + how); }
};

Player::Milliseconds patience() {
  const std::string text = variable_named(variable::kPatience);
  unsigned int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  constexpr unsigned int kMost = 3600000;
  const bool is_good = error == std::errc() && end == text.data() + text.size() && number <= kMost;
  return is_good ? Player::Milliseconds(number) : kPatience;
}

std::unique_ptr<Player> open_player(const std::string& path) {
  try {
    return std::make_unique<Player>(std::make_unique<Recording>(path), patience(),
                                    std::make_unique<ProcessEnding>());
  } catch (const std::exception& failure) {
    end_process(eEnd::Damaged, failure.what());
  }
}

/// One of the paths, by its place.
std::string path_of(eLibrary library) {
  std::string paths = variable_named(variable::kLibraries);
  for (std::size_t i = 0; i < index_of(library); ++i) {
    const std::size_t colon = paths.find(':');
    paths = colon == std::string::npos ? "" : paths.substr(colon + 1);
  }
  return paths.substr(0, paths.find(':'));
}

/// Tells the player when its thread ends.
struct LivingThread {
  std::uint32_t number;
  ~LivingThread() {
    if (Player* const player = Session::get().player(); player != nullptr) {
      player->thread_ended(number);
    }
  }
};

// Behind the destructors of all programs and libraries that were there before this one, unlike
// what a static destructor does: some of them make calls.
[[gnu::destructor]] void tell_what_is_left_over() {
  const Player* const player = Session::get().player();
  const std::string left_over = player == nullptr ? "" : player->left_over();
  if (!left_over.empty()) {
    message("hvk3 replay: " + left_over);
  }
}

}  // namespace

Session& Session::get() {
  static auto& session = *new Session;
  return session;
}

Session::Session() {
  if (const std::string path = variable_named(variable::kReplay); !path.empty()) {
    m_pPlayer = open_player(path);
  } else if (const std::string file = variable_named(variable::kRecording); !file.empty()) {
    m_pRecorder = std::make_unique<Recorder>(file);
  }
}

void Session::play(std::unique_ptr<Player> player) {
  m_pPlayer = std::move(player);
  m_aState = std::make_unique<State>();
  Answer::forget_texts();
}

void Session::open(eLibrary library) {
  if (m_pPlayer != nullptr) {
    return;
  }
  const std::string path = path_of(library);
  void* const handle = path.empty() ? nullptr : ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* const text = path.empty() ? nullptr : ::dlerror();
    end_process(eEnd::NoLibrary, std::string("record: there is no ") + name_of(library) +
                                     " to forward to" + (text == nullptr ? "" : ": ") +
                                     (text == nullptr ? "" : text));
  }
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    if (kLibraryOfFunction[i] == library) {
      m_aReal[i] = ::dlsym(handle, kFunctionNames[i]);
    }
  }
  ::dlerror();  // a function that isn't there is nobody's error yet
}

std::uint32_t Session::thread() {
  static std::atomic<std::uint32_t> s_nLast = 0;
  thread_local const LivingThread living = {++s_nLast};
  return living.number;
}

}  // namespace Osv::recorder
