#include "recorder/session/recorder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <utility>

#include "recorder/format/recording.h"
#include "recorder/session/message.h"

namespace Osv::recorder {
namespace {

// Entries of images keep their memory, others should not make it grow beyond reason.
constexpr std::size_t kFirstRoom = std::size_t{512} * 1024;

std::uint64_t clock_now() {
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                        std::chrono::steady_clock::now().time_since_epoch())
                                        .count());
}

/// The file for one process, as long as that lives.
Descriptor claim(const std::string& path) {
  Descriptor file =
      beyond_the_standard_ones(::open(path.c_str(), O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW));
  if (file.get() < 0) {
    throw RecordingEnds("it can't be opened");
  }
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    throw RecordingEnds("it is another process's");
  }
  return file;
}

}  // namespace

Recorder::Recorder(const std::string& path) : m_nBegin(clock_now()), m_nProcess(::getpid()) {
  try {
    open(path);
  } catch (const std::exception& failure) {
    message("hvk3 record: this process is not recorded in " + path + ": " + failure.what());
  }
}

void Recorder::open(const std::string& path) {
  Descriptor file = claim(path);
  const Recording before(path);
  if (!before.calls().empty() || !before.end().empty()) {
    throw RecordingEnds("it holds the calls of an earlier process");
  }
  m_bPixels = before.header().pixels;
  m_vEntry.reserve(kFirstRoom);
  m_pFile = std::make_unique<BlockWriter>(std::move(file));
}

std::uint64_t Recorder::now() const { return clock_now() - m_nBegin; }

void Recorder::write(eFunction function, std::uint32_t thread, std::uint64_t begin,
                     const Arguments& arguments,
                     const std::function<void(Answer&)>& give_answer) noexcept {
  if (const pid_t process = ::getpid(); process != m_nProcess) {
    tell_of_fork(process);  // before the lock, which a thread that it left behind may hold
    return;
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_pFile == nullptr) {
    return;
  }
  try {
    m_vEntry.clear();
    append_call(m_vEntry, {function, thread, begin, now() - begin}, arguments.encoded());
    Answer answer(m_vEntry, m_bPixels);
    give_answer(answer);
    m_pFile->write(m_vEntry);
  } catch (const std::exception& failure) {
    end(in_words(function, arguments.encoded()) + ": " + failure.what());
  }
}

/// Once. A fork of a program with threads may do little more than write to a file.
void Recorder::tell_of_fork(pid_t process) noexcept {
  if (m_nToldFork.exchange(process) != process) {
    message("hvk3 record: this process is not recorded: it is a fork");
  }
}

void Recorder::end(const std::string& why) noexcept {
  try {
    message("hvk3 record: the recording ends here, at " + why);
    m_vEntry.clear();
    append_end(m_vEntry, why);
    m_pFile->write(m_vEntry);
  } catch (const std::exception&) {
    // The file holds what came before; there is nowhere else to say more.
  }
  m_pFile.reset();
}

}  // namespace Osv::recorder
