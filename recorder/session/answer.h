#pragma once

#include <stdexcept>
#include <string>
#include <type_traits>

#include "recorder/format/bytes.h"
#include "recorder/session/handle_book.h"

/// @file
/// The answer of a call: what it returns, and what it leaves in the caller's memory.

namespace Osv::recorder {

/// Why a recording can't go on.
class RecordingEnds : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Goes through an answer piece by piece, and either writes each down or puts it where it was: the
/// one description of an answer serves both. Played, no piece is larger than the memory for it.
class Answer {
 public:
  /// Writes down. @param pixels whether images are, too
  Answer(Bytes& target, bool pixels) : m_pTarget(&target), m_bPixels(pixels) {}

  /// Plays. @param pixels whether images were recorded
  Answer(ByteView source, bool pixels) : m_cSource(source), m_bPixels(pixels) {}

  bool is_played() const { return m_pTarget == nullptr; }

  template <class Number>
  void number(Number& number) {
    static_assert(std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool>);
    if (m_pTarget != nullptr) {
      append_number(*m_pTarget, number);
    } else {
      number = m_cSource.number<Number>();
    }
  }

  void flag(bool& flag) {
    auto byte = static_cast<std::uint8_t>(flag);
    number(byte);
    flag = byte != 0;
  }

  /// A new handle, or null.
  void new_handle(void*& handle, HandleBook& book);

  /// Bytes of a fixed number; none for a caller who gave no memory, as the arguments tell.
  void bytes(void* memory, std::size_t size);

  /// Bytes of a number that the library chose.
  /// @param size what it wrote, for a recording
  /// @param room what the caller has
  /// @param least what the caller may rely on, when played
  void some_bytes(void* memory, std::size_t size, std::size_t room, std::size_t least = 0);

  /// A text that the library wrote into the caller's memory: as far as its end, which is that of
  /// the memory where it has none.
  void written_text(char* memory, std::size_t room);

  /// An image. Without pixels, what comes behind the front is black.
  /// @param front bytes that describe the image, for a recording
  /// @param size, room, least as in `some_bytes`
  void image(void* memory, std::size_t front, std::size_t size, std::size_t room,
             std::size_t least = 0);

  /// A text of the library's own, or null; a played one stays until the process ends.
  void text(const char*& text);

  /// For a program that plays one recording after another.
  static void forget_texts();

  /// Tells, when played, that this was all. @throws DamagedRecording when it was not
  void finish() const;

 private:
  std::size_t checked_size(std::size_t size, std::size_t room, std::size_t least = 0);

  Bytes* m_pTarget = nullptr;  // null: plays
  ByteReader m_cSource{ByteView()};
  bool m_bPixels;
};

}  // namespace Osv::recorder
