#include "recorder/session/player.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Osv::recorder {
namespace {

// A capture beyond its recorded end goes on at about this pace, as a scanner does.
constexpr std::chrono::milliseconds kFrameTime(50);

}  // namespace

Player::Player(std::unique_ptr<Recording> recording, Milliseconds patience,
               std::unique_ptr<Ending> ending)
    : m_pRecording(std::move(recording)), m_cPatience(patience), m_pEnding(std::move(ending)) {
  const std::vector<Recording::Call>& calls = m_pRecording->calls();
  std::unordered_map<std::uint32_t, Thread*> threads;
  for (std::size_t call = 0; call < calls.size(); ++call) {
    const CallHead& head = calls[call].head;
    if (is_line_to_the_log(head.function)) {
      continue;
    }
    Thread*& thread = threads[head.thread];
    if (thread == nullptr) {
      thread = m_vThreads.emplace_back(std::make_unique<Thread>()).get();
    }
    thread->calls.push_back(call);
    thread->has_frames = thread->has_frames || is_frame(head.function);
  }
}

void Player::answer(eFunction function, std::uint32_t thread, const Arguments& arguments,
                    const std::function<void(Answer&)>& take_answer) {
  if (is_line_to_the_log(function)) {
    return;
  }
  const Bytes& encoded = arguments.encoded();
  Lock lock(m_cLock);
  const auto living = m_cLiving.find(thread);
  Wanted wanted = {function, encoded, hash_of(encoded),
                   living == m_cLiving.end() ? nullptr : living->second};
  const std::size_t call = choose(lock, wanted, thread);
  try {
    Bytes bytes;
    m_pRecording->read_answer(m_pRecording->calls()[call], bytes);
    Answer answer(ByteView(bytes), pixels());
    take_answer(answer);
    answer.finish();
  } catch (const std::exception& damage) {  // nothing of it is to go out through the call
    m_pEnding->damaged({call + 1, function,
                        "call " + std::to_string(call + 1) + ", " + in_words(function, encoded) +
                            ": " + damage.what()});
  }
}

void Player::thread_ended(std::uint32_t thread) {
  const Lock lock(m_cLock);
  const auto living = m_cLiving.find(thread);
  if (living != m_cLiving.end()) {  // kept: its last destructors may still make calls
    living->second->ended = true;
    m_cProgress.notify_all();
  }
}

std::string Player::left_over() const {
  const Lock lock(m_cLock);
  std::size_t count = 0;
  std::size_t first = m_pRecording->calls().size();
  for (const auto& thread : m_vThreads) {
    count += thread->calls.size() - thread->next;
    if (thread->next < thread->calls.size()) {
      first = std::min(first, thread->calls[thread->next]);
    }
  }
  if (count == 0) {
    return {};
  }
  return std::to_string(count) + " of " + std::to_string(count + m_nMade) +
         " recorded calls were not made, the first of them is call " + std::to_string(first + 1) +
         ", " + m_pRecording->in_words(m_pRecording->calls()[first]);
}

bool Player::is_same(std::size_t call, const Wanted& wanted) const {
  const Recording::Call& recorded = m_pRecording->calls()[call];
  return recorded.head.function == wanted.function && recorded.arguments == wanted.hash;
}

bool Player::is_next(const Thread& thread, const Wanted& wanted) const {
  return thread.next < thread.calls.size() && is_same(thread.calls[thread.next], wanted);
}

/// The recorded thread whose call comes first; null when none has any left.
const Player::Thread* Player::first_thread() const {
  const Thread* first = nullptr;
  for (const auto& thread : m_vThreads) {
    if (thread->next < thread->calls.size() &&
        (first == nullptr || thread->calls[thread->next] < first->calls[first->next])) {
      first = thread.get();
    }
  }
  return first;
}

/// The recorded thread that made this call next; null for none.
Player::Thread* Player::find(const Wanted& wanted) {
  if (wanted.own != nullptr && is_next(*wanted.own, wanted)) {
    return wanted.own;
  }
  if (wanted.own == nullptr) {
    const auto found = std::find_if(m_vThreads.begin(), m_vThreads.end(), [&](const auto& thread) {
      return !thread->bound && is_next(*thread, wanted);
    });
    if (found != m_vThreads.end()) {
      return found->get();
    }
  }
  // A program may give the same work to other threads of its own.
  const Thread* const first = first_thread();
  const auto found = std::find_if(m_vThreads.begin(), m_vThreads.end(), [&](const auto& thread) {
    return (thread.get() == first || thread->ended) && is_next(*thread, wanted);
  });
  return found == m_vThreads.end() ? nullptr : found->get();
}

/// Whether calls come before this thread's next one that are still to be made.
bool Player::must_wait(const Thread& thread) const {
  const std::size_t call = thread.calls[thread.next];
  return std::any_of(m_vThreads.begin(), m_vThreads.end(), [&](const auto& other) {
    return !other->ended && !other->is_late && other->next < other->calls.size() &&
           other->calls[other->next] < call;
  });
}

void Player::give_up_waiting(const Thread& thread) {
  const std::size_t call = thread.calls[thread.next];
  for (const auto& other : m_vThreads) {
    other->is_late =
        other->is_late || (other->next < other->calls.size() && other->calls[other->next] < call);
  }
}

/// Waits for the recorded call that answers this one. @return its place in the recording
std::size_t Player::choose(Lock& lock, Wanted& wanted, std::uint32_t thread) {
  const auto begin = Clock::now();
  while (true) {
    Thread* const found = find(wanted);
    if (found != nullptr && !must_wait(*found)) {
      return take(*found, thread);
    }
    const std::optional<std::size_t> again = found == nullptr ? repeated(wanted) : std::nullopt;
    const Milliseconds patience = again ? pause(*wanted.own, *again) : m_cPatience;
    const bool is_over = Clock::now() >= begin + patience ||
                         m_cProgress.wait_until(lock, begin + patience) == std::cv_status::timeout;
    if (!is_over) {
      continue;
    }
    if (again) {
      wanted.own->repeated = *again + 1;
      return wanted.own->calls[*again];
    }
    if (found == nullptr) {
      diverge(wanted);
    }
    give_up_waiting(*found);
  }
}

std::size_t Player::take(Thread& thread, std::uint32_t living) {
  m_cLiving.try_emplace(living, &thread);
  thread.bound = true;
  thread.ended = false;
  thread.is_late = false;
  m_pEnding->played(++m_nMade);
  m_cProgress.notify_all();
  return thread.calls[thread.next++];
}

/// How long a capture beyond its end waits: once for each frame.
Player::Milliseconds Player::pause(const Thread& thread, std::size_t repeated) const {
  return repeated == thread.repeated ? Milliseconds(0) : std::min(m_cPatience, kFrameTime);
}

/// How many functions before a place are those at the end, one by one.
std::size_t Player::likeness(const Thread& thread, std::size_t place) const {
  constexpr std::size_t kMost = 64;  // more calls than a frame takes
  const auto function = [&](std::size_t at) {
    return m_pRecording->calls()[thread.calls[at]].head.function;
  };
  std::size_t alike = 0;
  while (alike < std::min(place, kMost) &&
         function(place - 1 - alike) == function(thread.calls.size() - 1 - alike)) {
    ++alike;
  }
  return alike;
}

/// For a capture beyond its recorded end: which of its calls this one repeats. It goes through
/// those for its last frame again and again: other frames of the same kind are for something else.
std::optional<std::size_t> Player::repeated(const Wanted& wanted) const {
  const Thread* const own = wanted.own;
  if (own == nullptr || own == m_vThreads.front().get() || !own->has_frames ||
      own->next < own->calls.size()) {
    return std::nullopt;
  }
  if (own->repeated < own->calls.size() && is_same(own->calls[own->repeated], wanted)) {
    return own->repeated;
  }
  std::optional<std::size_t> best;
  for (std::size_t place = 0; place < own->calls.size(); ++place) {
    if (is_same(own->calls[place], wanted) &&
        (!best || likeness(*own, place) >= likeness(*own, *best))) {
      best = place;
    }
  }
  return best;
}

/// The call that should have been made; none when this thread, or any, has made all of its calls.
std::optional<std::size_t> Player::expected(const Wanted& wanted) const {
  const Thread* const thread = wanted.own != nullptr ? wanted.own : first_thread();
  return thread == nullptr || thread->next == thread->calls.size()
             ? std::nullopt
             : std::optional<std::size_t>(thread->calls[thread->next]);
}

/// Number of the last recorded call of this thread, or of all; 0 when there is none.
std::size_t Player::last_recorded(const Wanted& wanted) const {
  std::size_t last = 0;
  for (const auto& thread : m_vThreads) {
    if (wanted.own == nullptr || wanted.own == thread.get()) {
      last = std::max(last, thread->calls.back() + 1);
    }
  }
  return last;
}

void Player::diverge(const Wanted& wanted) {
  const std::string made = in_words(wanted.function, wanted.arguments);
  if (const std::optional<std::size_t> place = expected(wanted)) {
    m_pEnding->diverged({*place + 1, wanted.function,
                         "call " + std::to_string(*place + 1) + " is " + made + ", recorded was " +
                             m_pRecording->in_words(m_pRecording->calls()[*place])});
  }
  const std::size_t last = last_recorded(wanted);
  const std::string& why = m_pRecording->end();
  m_pEnding->diverged({last + 1, wanted.function,
                       "call " + std::to_string(last + 1) + " is " + made +
                           ", the recording has no more calls of this thread behind call " +
                           std::to_string(last) + (why.empty() ? "" : ": it ended at " + why)});
  std::terminate();  // a compiler does not take a virtual function's word that it never returns
}

}  // namespace Osv::recorder
