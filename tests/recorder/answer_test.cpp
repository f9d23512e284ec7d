#include "recorder/session/answer.h"

#include <gtest/gtest.h>

#include <array>

#include "recorder/format/block_file.h"
#include "recorder/session/frame_sizes.h"

namespace Osv::recorder::test {
namespace {

using Block = std::array<unsigned char, 6>;

constexpr Block kBlock = {1, 2, 3, 4, 5, 6};
constexpr std::size_t kFront = 2;

/// What an image is after it was written down and played.
Block image(bool pixels, std::size_t size) {
  Bytes written;
  Block recorded = kBlock;
  Answer(written, pixels).image(recorded.data(), kFront, size, recorded.size());
  Block played = {9, 9, 9, 9, 9, 9};
  Answer answer(ByteView(written), pixels);
  answer.image(played.data(), 0, 0, played.size());
  answer.finish();
  return played;
}

TEST(Answer, GivesAnImageBack) { EXPECT_EQ(image(true, 6), kBlock); }

TEST(Answer, TouchesNoMoreThanTheImage) { EXPECT_EQ(image(true, 4), (Block{1, 2, 3, 4, 9, 9})); }

TEST(Answer, GivesABlackImageWithoutPixels) {
  EXPECT_EQ(image(false, 5), (Block{1, 2, 0, 0, 0, 9}));
  EXPECT_EQ(image(false, 1), (Block{1, 9, 9, 9, 9, 9}));
}

TEST(Answer, WritesNoPixelsDownThatAreNotWanted) {
  Bytes written;
  Block block = kBlock;
  Answer(written, false).image(block.data(), kFront, block.size(), block.size());
  EXPECT_EQ(written.size(), 2 * sizeof(std::uint64_t) + kFront);
}

TEST(Answer, FitsIntoTheCallersMemory) {
  Bytes written;
  Block block = kBlock;
  Answer(written, true).some_bytes(block.data(), block.size(), block.size());
  EXPECT_THROW(Answer(ByteView(written), true).some_bytes(block.data(), 5, 5), DamagedRecording);
}

TEST(Answer, FillsWhatItHasToFill) {
  Bytes written;
  Block block = kBlock;
  Answer(written, true).some_bytes(block.data(), 5, 5);
  EXPECT_THROW(Answer(ByteView(written), true).some_bytes(block.data(), 6, 6, 6), DamagedRecording);
  EXPECT_THROW(Answer(ByteView(written), true).image(block.data(), 0, 6, 6, 6), DamagedRecording);
}

/// Plays so many bytes of a text into memory for six.
void play_text(std::string text, std::size_t size) {
  Bytes written;
  Answer(written, true).some_bytes(text.data(), size, size);
  std::array<char, 6> played = {};
  Answer answer(ByteView(written), true);
  answer.written_text(played.data(), played.size());
  answer.finish();
  EXPECT_EQ(std::string(played.data(), size), text.substr(0, size));
}

TEST(Answer, GivesAWrittenTextBackAsFarAsItsEnd) {
  Bytes written;
  char text[] = "ab\0cd";
  Answer(written, true).written_text(text, sizeof(text));
  char played[] = "xxxxx";
  Answer(ByteView(written), true).written_text(played, sizeof(played));
  EXPECT_EQ(std::string(played, 5), std::string("ab\0xx", 5));
}

TEST(Answer, TakesATextWithoutAnEndThatFillsItsMemory) { EXPECT_NO_THROW(play_text("abcdef", 6)); }

TEST(Answer, RefusesATextWithoutAnEndThatLeavesMemoryAsItWas) {
  EXPECT_THROW(play_text("abcde", 5), DamagedRecording);
  EXPECT_THROW(play_text("", 0), DamagedRecording);
}

TEST(Answer, GivesNothingToACallerWithoutMemory) {
  for (const bool pixels : {true, false}) {
    Bytes written;
    Answer recorded(written, pixels);
    recorded.bytes(nullptr, 4);
    recorded.image(nullptr, 2, 6, 6);
    Answer played(ByteView(written), pixels);
    played.bytes(nullptr, 4);
    played.image(nullptr, 0, 6, 6);
    EXPECT_NO_THROW(played.finish());
  }
}

TEST(Answer, CutShortIsRefused) {
  Block block = {};
  EXPECT_THROW(Answer(ByteView(kBlock).first(5), true).bytes(block.data(), 6), DamagedRecording);
}

TEST(Answer, TooLargeForARecordingEndsIt) {
  Bytes written;
  Bytes memory(kLargestPiece + 1);
  EXPECT_THROW(Answer(written, true).some_bytes(memory.data(), memory.size(), memory.size()),
               RecordingEnds);
}

TEST(Answer, ATextStaysWhereItIs) {
  Bytes written;
  const char* text = "busy";
  Answer(written, true).text(text);
  const char* played = nullptr;
  Answer(ByteView(written), true).text(played);
  const char* again = nullptr;
  Answer(ByteView(written), true).text(again);
  EXPECT_STREQ(played, "busy");
  EXPECT_EQ(again, played);
}

TEST(Answer, NoTextIsNone) {
  Bytes written;
  const char* text = nullptr;
  Answer(written, true).text(text);
  text = "other";
  Answer(ByteView(written), true).text(text);
  EXPECT_EQ(text, nullptr);
}

TEST(Answer, ANewHandleHasTheNextNumber) {
  HandleBook book;
  Bytes written;
  std::array<int, 2> devices = {};
  void* first = devices.data();
  void* second = &devices[1];
  Answer(written, true).new_handle(first, book);
  book.forget(first);
  EXPECT_EQ(book.number_of(first), kUnknownHandle);
  Answer(written, true).new_handle(second, book);
  Answer(written, true).new_handle(first, book);
  EXPECT_EQ(book.number_of(first), 3U);
}

TEST(Answer, APlayedHandleIsItsNumber) {
  HandleBook book;
  Bytes written;
  append_number(written, std::uint32_t{7});
  void* handle = nullptr;
  Answer(ByteView(written), true).new_handle(handle, book);
  EXPECT_EQ(book.number_of(handle), 7U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handle), 7U);
}

TEST(Answer, OpensNoHandleThatIsOpen) {
  HandleBook book;
  void* const handle = book.take(7);
  EXPECT_THROW(book.take(7), DamagedRecording);
  book.forget(handle);
  EXPECT_EQ(book.take(7), handle);
}

TEST(Answer, TakesNoTextThatIsTooLong) {
  Bytes written;
  append_number(written, std::uint16_t{4097});
  written.resize(written.size() + 4097, 'a');
  const char* text = nullptr;
  EXPECT_THROW(Answer(ByteView(written), true).text(text), DamagedRecording);
}

TEST(Answer, KeepsNoTextsWithoutEnd) {
  const auto play = [](int number) {
    const std::string text = std::to_string(number);
    Bytes written;
    append_number(written, static_cast<std::uint16_t>(text.size()));
    append(written, text.data(), text.size());
    const char* played = nullptr;
    Answer(ByteView(written), true).text(played);
  };
  Answer::forget_texts();
  for (int number = 0; number < 1000; ++number) {
    play(number);
  }
  EXPECT_NO_THROW(play(999));
  EXPECT_THROW(play(1000), DamagedRecording);
  Answer::forget_texts();
}

TEST(FrameSizes, StayAsTheyWereFirst) {
  FrameSizes sizes;
  sizes.set(1, 20, 10);
  sizes.set(1, 20, 10);
  EXPECT_THROW(sizes.set(1, 2000, 10), RecordingEnds);
  EXPECT_THROW(sizes.set(1, 0, 0), RecordingEnds);
  EXPECT_EQ(sizes.of(1), 200U);
}

TEST(FrameSizes, AreThoseOfAnOpening) {
  FrameSizes sizes;
  sizes.set(1, 20, 10);
  sizes.set(2, 30, 10);
  sizes.set(0, 20, 10);
  sizes.set(kUnknownHandle, 20, 10);
  EXPECT_EQ(sizes.of(1), 200U);
  EXPECT_EQ(sizes.of(2), 300U);
  EXPECT_EQ(sizes.of(0), 0U);
  EXPECT_EQ(sizes.of(kUnknownHandle), 0U);
}

TEST(FrameSizes, OfNoFrameAreNone) {
  FrameSizes sizes;
  sizes.set(1, 0, 10);
  sizes.set(2, -20, -10);
  EXPECT_EQ(sizes.of(1), 0U);
  EXPECT_EQ(sizes.of(2), 0U);
  EXPECT_THROW(sizes.set(3, 40000, 37000), RecordingEnds);
}

}  // namespace
}  // namespace Osv::recorder::test
