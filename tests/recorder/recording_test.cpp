#include "recorder/format/recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <filesystem>

#include "recorder/recording_builder.h"

namespace Osv::recorder::test {
namespace {

using testing::HasSubstr;

constexpr auto kGetOptions = eFunction::ftrScanGetOptions;

/// What a recording is refused with; empty for one that is read.
std::string refusal(const std::string& path) {
  try {
    const Recording recording(path);
    return "";
  } catch (const DamagedRecording& damage) {
    return damage.what();
  }
}

void overwrite(const std::string& path, std::streamoff position, const std::string& bytes) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(position);
  file << bytes;
}

TEST(Recording, HoldsWhatWasWritten) {
  Header header;
  header.pixels = false;
  header.seconds = 1700000000;
  header.present[1] = true;
  header.exported[3] = true;
  header.failures[2] = "lib.so: file too short";
  RecordingBuilder builder(header);
  builder.call(7, kGetOptions, Arguments().handle(1), {1, 2, 3});
  Recording recording(builder.path());
  EXPECT_FALSE(recording.header().pixels);
  EXPECT_EQ(recording.header().seconds, 1700000000);
  EXPECT_EQ(recording.header().present, header.present);
  EXPECT_EQ(recording.header().exported, header.exported);
  EXPECT_EQ(recording.header().failures, header.failures);
  ASSERT_EQ(recording.calls().size(), 1U);
  EXPECT_EQ(recording.calls()[0].head.thread, 7U);
  EXPECT_EQ(recording.calls()[0].head.function, kGetOptions);
  Bytes answer;
  recording.read_answer(recording.calls()[0], answer);
  EXPECT_EQ(answer, (Bytes{1, 2, 3}));
}

Header header_behind_writing(const Bytes& written) {
  ByteReader reader(written);
  take_kind(reader);
  return take_header(reader);
}

TEST(Recording, OfAnEarlierRecorderSaysNothingOfFailures) {
  Bytes header;
  append_header(header, {});
  const std::size_t texts = kLibraryCount * sizeof(std::uint16_t);  // empty ones
  header.resize(header.size() - texts);
  EXPECT_EQ(header_behind_writing(header).failures, Header().failures);
}

TEST(Recording, IsRefusedWithAFailureThatIsTooLong) {
  Bytes header;
  append_header(header, {});
  header.insert(header.end(), 60000, 'x');
  header[header.size() - 60000 - 1] = 0xEA;  // the last text's size, 59904
  EXPECT_THROW(header_behind_writing(header), DamagedRecording);
}

TEST(Recording, KeepsALongFailureByItsBeginning) {
  Header header;
  header.failures[0] = std::string(5000, 'x');
  EXPECT_EQ(Recording(RecordingBuilder(header).path()).header().failures[0], std::string(500, 'x'));
}

TEST(Recording, GivesLargeAnswersBackToTheByte) {
  Bytes frame(640 * 480);
  for (std::size_t i = 0; i < frame.size(); ++i) {
    frame[i] = static_cast<unsigned char>(i * i >> 3);
  }
  RecordingBuilder builder;
  builder.call(1, kGetOptions, {}, frame).call(1, kGetOptions, {}, {9});
  Recording recording(builder.path());
  Bytes answer;
  recording.read_answer(recording.calls()[1], answer);
  recording.read_answer(recording.calls()[0], answer);
  EXPECT_EQ(answer, frame);
}

TEST(Recording, TellsACallInWords) {
  const Arguments arguments = Arguments().handle(2).number(-4).pointer(nullptr).text("a=\n");
  EXPECT_EQ(in_words(kGetOptions, arguments.encoded()),
            "ftrScanGetOptions(handle 2, -4, null, 'a=?')");
}

TEST(Recording, KeepsALongTextByItsBeginning) {
  Arguments longer;
  Arguments other;
  longer.text((std::string(5000, 'x') + "1").c_str());
  other.text((std::string(5000, 'x') + "2").c_str());
  EXPECT_LE(longer.encoded().size(), Arguments::kLongest);
  EXPECT_NE(longer.encoded(), other.encoded());
}

std::size_t allocated() {
  const struct mallinfo2 memory = ::mallinfo2();
  return memory.uordblks + memory.hblkhd;
}

TEST(Recording, TakesNoMoreMemoryThanItsFileIsLarge) {
  RecordingBuilder builder;
  for (int number = 0; number < 2000; ++number) {
    builder.call(1, kGetOptions, Arguments().number(number).text(std::string(1000, 'x').c_str()));
  }
  const std::size_t before = allocated();
  const Recording recording(builder.path());
  EXPECT_LT(allocated() - before, 2 * std::filesystem::file_size(builder.path()));
}

TEST(Recording, TellsACallThatIsGoneByItsFunction) {
  RecordingBuilder builder;
  builder.call(1, kGetOptions, Arguments().number(7));
  Recording recording(builder.path());
  EXPECT_EQ(recording.in_words(recording.calls()[0]), "ftrScanGetOptions(7)");
  std::filesystem::resize_file(builder.path(), kPrologueSize);
  EXPECT_EQ(recording.in_words(recording.calls()[0]), "ftrScanGetOptions");
}

TEST(Recording, IsReadUpToWhereItIsTorn) {
  RecordingBuilder builder;
  builder.call(1, kGetOptions).call(1, kGetOptions);
  std::filesystem::resize_file(builder.path(), std::filesystem::file_size(builder.path()) - 1);
  const Recording recording(builder.path());
  EXPECT_EQ(recording.calls().size(), 1U);
  EXPECT_TRUE(recording.torn());
}

TEST(Recording, IsRefusedWhereverItIsTornBeforeItsFirstCall) {
  RecordingBuilder builder;
  for (auto size = std::filesystem::file_size(builder.path()); size-- > 0;) {
    std::filesystem::resize_file(builder.path(), size);
    EXPECT_NE(refusal(builder.path()), "") << size;
  }
}

TEST(Recording, IsRefusedForAnyByteThatChanged) {
  RecordingBuilder builder;
  builder.call(1, kGetOptions, Arguments().handle(1), {1});
  std::ifstream file(builder.path(), std::ios::binary);
  const std::string whole(std::istreambuf_iterator<char>(file), {});
  for (std::size_t at = 0; at < whole.size(); ++at) {
    overwrite(builder.path(), static_cast<std::streamoff>(at),
              std::string(1, static_cast<char>(whole[at] ^ 0x10)));
    bool torn = false;  // a block that says that it is longer than the file
    if (const std::string why = refusal(builder.path()); why.empty()) {
      torn = Recording(builder.path()).torn();
    }
    EXPECT_TRUE(torn || !refusal(builder.path()).empty()) << at;
    overwrite(builder.path(), static_cast<std::streamoff>(at), std::string(1, whole[at]));
  }
}

TEST(Recording, TellsWhereItIsDamaged) {
  RecordingBuilder builder;
  overwrite(builder.path(), kPrologueSize + 14, "?");
  EXPECT_THAT(refusal(builder.path()), HasSubstr("is damaged: the block at byte 12"));
}

TEST(Recording, OfAnotherVersionIsRefused) {
  RecordingBuilder builder;
  overwrite(builder.path(), sizeof(kMagic), "\7");
  EXPECT_THAT(refusal(builder.path()), HasSubstr("is a recording of version 7"));
}

TEST(Recording, IsRefusedWithEntriesThatAreNone) {
  for (const Bytes& entry :
       {Bytes{}, Bytes{9}, Bytes{2, 0xFF, 0xFF}, Bytes{1, 1}, Bytes{2, 0, 0, 1, 0, 0, 0}}) {
    RecordingBuilder builder;
    builder.block(entry);
    EXPECT_NE(refusal(builder.path()), "");
  }
}

TEST(Recording, IsRefusedWithArgumentsThatAreNone) {
  for (const Bytes& bytes : {Bytes{99}, Bytes{0, 1}, Bytes{4, 9, 0, 'x'}}) {
    Bytes entry;
    append_call(entry, {kGetOptions, 1, 0, 0}, bytes);
    RecordingBuilder builder;
    builder.block(entry);
    EXPECT_NE(refusal(builder.path()), "");
  }
}

TEST(Recording, TellsWhyItEndedEarly) {
  RecordingBuilder builder;
  builder.end("a full disk");
  EXPECT_EQ(Recording(builder.path()).end(), "a full disk");
}

TEST(Recording, EndsWithNothingThatATerminalObeys) {
  RecordingBuilder builder;
  builder.end("\x1b]0;owned\a\x1b[31m\nX\x9b");
  EXPECT_EQ(Recording(builder.path()).end(), "?]0;owned??[31m?X?");
}

TEST(Recording, TakesNoEntryThatIsTooLarge) {
  RecordingBuilder builder;
  EXPECT_THROW(builder.block(Bytes(kLargestBlock + 1)), std::length_error);
}

TEST(Recording, IsNoOtherFile) {
  const hvk3::test::TemporaryFolder folder;
  std::ofstream(folder.file("text")) << "no recording at all";
  EXPECT_THAT(refusal(folder.file("text")), HasSubstr("is no recording"));
  EXPECT_THAT(refusal(folder.file("absent")), HasSubstr("No such file"));
  EXPECT_THAT(refusal("/dev/null"), HasSubstr("is no file"));
}

}  // namespace
}  // namespace Osv::recorder::test
