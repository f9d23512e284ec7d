#include "recorder/session/answer.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>

#include "recorder/format/block_file.h"

namespace Osv::recorder {
namespace {

constexpr std::size_t kLongestText = 4096;
constexpr std::uint16_t kNull = 0xFFFF;

/// Texts for good. Nothing is destroyed while the process ends: calls may still come then.
struct Texts {
  std::mutex lock;
  std::set<std::string> all;
};

Texts& texts() {
  static auto& texts = *new Texts;
  return texts;
}

const char* keep(const ByteView text) {
  constexpr std::size_t kMost = 1000;
  const std::lock_guard<std::mutex> guard(texts().lock);
  const auto [kept, is_new] = texts().all.emplace(text.begin(), text.end());
  if (is_new && texts().all.size() > kMost) {
    throw DamagedRecording("the recording has too many texts");
  }
  return kept->c_str();
}

}  // namespace

void Answer::new_handle(void*& handle, HandleBook& book) {
  std::uint32_t number = m_pTarget != nullptr ? book.give(handle) : 0;
  this->number(number);
  if (m_pTarget == nullptr) {
    handle = book.take(number);
  }
}

void Answer::bytes(void* memory, std::size_t size) {
  if (memory == nullptr) {
    return;
  }
  if (m_pTarget != nullptr) {
    append(*m_pTarget, memory, size);
  } else {
    std::memcpy(memory, m_cSource.take(size).data(), size);
  }
}

/// Number of bytes of a piece, from this call or from the recording.
std::size_t Answer::checked_size(std::size_t size, std::size_t room, std::size_t least) {
  std::uint64_t checked = std::min(size, room);
  if (m_pTarget != nullptr && checked > kLargestPiece) {
    throw RecordingEnds("an answer of " + std::to_string(checked) + " bytes is too large for it");
  }
  number(checked);
  if (checked > room) {
    throw DamagedRecording("an answer in the recording is larger than the memory for it");
  }
  if (is_played() && checked < least) {
    throw DamagedRecording("an answer in the recording is smaller than what it has to fill");
  }
  return checked;
}

void Answer::some_bytes(void* memory, std::size_t size, std::size_t room, std::size_t least) {
  const std::size_t checked = checked_size(size, room, least);
  if (checked != 0) {
    bytes(memory, checked);
  }
}

void Answer::written_text(char* memory, std::size_t room) {
  const std::size_t length = is_played() ? 0 : ::strnlen(memory, room);
  const std::size_t size = checked_size(length + 1, room);
  bytes(memory, size);
  if (is_played() && size < room && (size == 0 || memory[size - 1] != '\0')) {
    throw DamagedRecording("a text in the recording has no end");
  }
}

void Answer::image(void* memory, std::size_t front, std::size_t size, std::size_t room,
                   std::size_t least) {
  const std::size_t checked = checked_size(size, room, least);
  if (m_bPixels && checked != 0) {
    bytes(memory, checked);
    return;
  }
  const std::size_t described = checked_size(front, checked);
  if (described != 0) {
    bytes(memory, described);
  }
  if (is_played() && memory != nullptr && described < checked) {
    std::memset(static_cast<unsigned char*>(memory) + described, 0, checked - described);
  }
}

void Answer::text(const char*& text) {
  auto size = text == nullptr
                  ? kNull
                  : static_cast<std::uint16_t>(std::min(std::strlen(text), kLongestText));
  number(size);
  if (size != kNull && size > kLongestText) {
    throw DamagedRecording("a text in the recording is too long");
  }
  if (m_pTarget != nullptr) {
    append(*m_pTarget, text, size == kNull ? 0 : size);
  } else {
    text = size == kNull ? nullptr : keep(m_cSource.take(size));
  }
}

void Answer::forget_texts() {
  const std::lock_guard<std::mutex> guard(texts().lock);
  texts().all.clear();
}

void Answer::finish() const {
  if (is_played() && !m_cSource.rest().empty()) {
    throw DamagedRecording("an answer in the recording is longer than one of this call");
  }
}

}  // namespace Osv::recorder
