#include "recorder/session/session.h"

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#include "recorder/format/replay_report.h"
#include "recorder/session/message.h"

namespace Osv::recorder {
namespace {

constexpr Player::Milliseconds kPatience(500);

std::string variable_named(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// For the tool, which waits for the end; null without one.
ReplayReport* open_report() {
  const std::string path = variable_named(variable::kReport);
  try {
    return path.empty() ? nullptr : std::make_unique<ReplayReport>(path).release();
  } catch (const std::exception&) {
    return nullptr;  // as when the tool is gone
  }
}

ReplayReport* report() {
  static ReplayReport* const report = open_report();
  return report;
}

/// The process ends at once: nothing that it could still do would be as it was.
[[noreturn]] void end_process(eEnd end, const LastCall& call) {
  if (report() != nullptr) {
    report()->end({static_cast<int>(end), call.number, call.function, call.why});
  }
  message("hvk3: " + call.why);  // which may be the end by itself, when nobody reads it
  ::_exit(static_cast<int>(end));
}

[[noreturn]] void end_process(eEnd end, const std::string& why) {
  end_process(end, LastCall{0, {}, why});
}

class ProcessEnding : public Ending {
 public:
  void played(std::uint64_t calls) override {
    if (report() != nullptr) {
      report()->played(calls);
    }
  }
  void diverged(const LastCall& call) override { end(eEnd::Diverged, call); }
  void damaged(const LastCall& call) override { end(eEnd::Damaged, call); }

 private:
  [[noreturn]] static void end(eEnd end, const LastCall& call) {
    end_process(end, LastCall{call.number, call.function, "replay: " + call.why});
  }
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
  if (report() != nullptr) {
    report()->begin();
  }
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
  const Session& session = Session::get();
  const bool is_told = session.player() != nullptr && !session.is_fork();
  const std::string left_over = is_told ? session.player()->left_over() : "";
  if (!left_over.empty()) {
    message("hvk3 replay: " + left_over);
  }
}

}  // namespace

Session& Session::get() {
  static auto& session = *new Session;
  return session;
}

Session::Session() : m_nProcess(::getpid()) {
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

bool Session::is_fork() const { return ::getpid() != m_nProcess; }

std::uint32_t Session::thread() {
  static std::atomic<std::uint32_t> s_nLast = 0;
  thread_local const LivingThread living = {++s_nLast};
  return living.number;
}

}  // namespace Osv::recorder
