#include "recorder/format/recording.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "recorder/format/arguments.h"
#include "recorder/format/check_sum.h"
#include "support/memory.h"
#include "support/recording_writer.h"
#include "support/target.h"

/// @file
/// Files that should be recordings: they are read, up to where they are torn, or refused with a
/// text that tells why. What is written of any calls is read as it was.

namespace Osv::fuzz {
namespace {

using recorder::Arguments;
using recorder::CallHead;
using recorder::DamagedRecording;
using recorder::eFunction;
using recorder::Header;
using recorder::Recording;

/// All that a recording gives, or why it gives no more.
std::string content_of(const std::string& path) {
  std::string content;
  try {
    Recording recording(path);
    recorder::Bytes answer;
    for (const Recording::Call& call : recording.calls()) {
      require(index_of(call.head.function) < recorder::kFunctionCount, "a call has a function");
      const std::string words = recording.in_words(call);
      require(words.back() == ')', "a call can be told");
      recording.read_answer(call, answer);
      require(answer.size() <= recorder::kLargestBlock, "an answer has its limits");
      content += words + std::to_string(call.head.thread) + std::to_string(call.head.begin);
      content.append(answer.begin(), answer.end());
    }
    content += recording.end();
  } catch (const DamagedRecording& damage) {
    require(*damage.what() != '\0', "a refusal tells why");
    content += damage.what();
  }
  return content;
}

void read(const std::string& path) {
  written_whole([&] { return content_of(path); });
}

void read_file(Input& input) {
  const ScratchFile file(input.rest());
  read(file.path());
}

/// Blocks with good check sums; the entries in them are the input's.
void read_entries(Input& input) {
  RecordingWriter writer;
  if (input.below(2) == 0) {
    writer.header(true);
  }
  while (input.left() != 0) {
    const std::size_t size = input.byte();
    const Bytes content = input.bytes(size);
    writer.block({content.begin(), content.end()});
  }
  read(writer.path());
}

// What is written and read again.

/// A text of at most so many times 16 characters, without a zero.
std::string any_text(Input& input, unsigned int most) {
  std::string text = input.text(std::size_t{16} * input.below(most));
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

/// A text as it may be shown, as far as there is room.
std::string printed(const std::string& text, std::size_t most) {
  std::string printed = text.substr(0, most);
  for (char& letter : printed) {
    letter = letter >= ' ' && letter <= '~' ? letter : '?';
  }
  return printed;
}

Header any_header(Input& input) {
  Header header;
  header.pixels = input.below(2) == 0;
  header.seconds = input.number<std::int64_t>();
  const auto flags = input.number<std::uint64_t>();
  for (std::size_t i = 0; i < header.present.size(); ++i) {
    header.present[i] = (flags >> i & 1) != 0;
  }
  for (std::size_t i = 0; i < header.exported.size(); ++i) {
    header.exported[i] = (flags >> i % 7 & 1) != 0;
  }
  for (std::string& failure : header.failures) {
    failure = any_text(input, 40);
  }
  return header;
}

/// A call as it is given to a recorder.
struct Written {
  CallHead head;
  recorder::Bytes arguments;
  std::string words;
  recorder::Bytes answer;
};

// Each adds an argument, and returns what is told of it.

std::string add_handle(Arguments& arguments, Input& input) {
  constexpr std::uint8_t kUnknown = 255;
  const std::uint8_t number = input.byte();
  arguments.handle(number == kUnknown ? recorder::kUnknownHandle : number);
  return number == kUnknown ? "unknown handle"
         : number == 0      ? "null handle"
                            : "handle " + std::to_string(number);
}

std::string add_number(Arguments& arguments, Input& input) {
  const auto number = input.number<std::int64_t>();
  arguments.number(number);
  return std::to_string(number);
}

std::string add_pointer(Arguments& arguments, Input& input) {
  const bool is_null = input.below(2) != 0;
  arguments.pointer(is_null ? nullptr : &input);
  return is_null ? "null" : "buffer";
}

std::string add_text(Arguments& arguments, Input& input) {
  constexpr std::size_t kLongest = 1000;
  const std::string text = any_text(input, 80);
  arguments.text(text.c_str());
  return "'" + printed(text, kLongest) + (text.size() > kLongest ? "'..." : "'");
}

std::string add_no_text(Arguments& arguments, Input& /*input*/) {
  arguments.text(nullptr);
  return "null";
}

std::string add_data(Arguments& arguments, Input& input) {
  const std::string bytes = input.text(input.byte());
  arguments.data(bytes.data(), bytes.size());
  const std::uint32_t sum = recorder::check_sum(bytes.data(), bytes.size());
  return std::to_string(bytes.size()) + " bytes of sum " + std::to_string(sum % 100000);
}

std::string add_no_data(Arguments& arguments, Input& input) {
  const std::uint8_t size = input.byte();
  arguments.data(nullptr, size);
  return "null, " + std::to_string(size) + " bytes";
}

std::string any_argument(Arguments& arguments, Input& input) {
  constexpr std::array kKinds = {&add_handle,  &add_number, &add_pointer, &add_text,
                                 &add_no_text, &add_data,   &add_no_data};
  return kKinds[input.below(kKinds.size())](arguments, input);
}

Written any_call(Input& input) {
  constexpr unsigned int kMostArguments = 4;  // which leaves room for as many of the longest texts
  Written call;
  call.head.function = static_cast<eFunction>(input.byte() % recorder::kFunctionCount);
  call.head.thread = input.number<std::uint32_t>();
  call.head.begin = input.number<std::uint64_t>();
  call.head.duration = input.number<std::uint64_t>();
  Arguments arguments;
  for (unsigned int i = input.below(kMostArguments + 1); i != 0; --i) {
    call.words += (call.words.empty() ? "" : ", ") + any_argument(arguments, input);
  }
  call.words = std::string(name_of(call.head.function)) + "(" + call.words + ")";
  call.arguments = arguments.encoded();
  const Bytes answer = input.bytes(input.byte());
  call.answer.assign(answer.begin(), answer.end());
  return call;
}

void write(RecordingWriter& writer, const Written& call) {
  recorder::Bytes entry;
  recorder::append_call(entry, call.head, call.arguments);
  entry.insert(entry.end(), call.answer.begin(), call.answer.end());
  writer.block(entry);
}

void require_same(const Header& header, const Header& read) {
  constexpr std::size_t kLongestFailure = 500;
  require(header.pixels == read.pixels && header.seconds == read.seconds &&
              header.present == read.present && header.exported == read.exported,
          "a header is read as it was written");
  for (std::size_t i = 0; i < header.failures.size(); ++i) {
    require(read.failures[i] == printed(header.failures[i], kLongestFailure),
            "a failure is told as far as there is room");
  }
}

void require_same(const Written& written, Recording& recording, const Recording::Call& read) {
  require(written.head.function == read.head.function && written.head.thread == read.head.thread &&
              written.head.begin == read.head.begin && written.head.duration == read.head.duration,
          "a call is read as it was written");
  require(recorder::hash_of(written.arguments) == read.arguments, "and so are its arguments");
  require(recording.in_words(read) == written.words, "which are told by what they are");
  recorder::Bytes answer;
  recording.read_answer(read, answer);
  require(written.answer == answer, "and its answer");
}

void write_and_read(Input& input) {
  RecordingWriter writer;
  const Header header = any_header(input);
  recorder::Bytes entry;
  recorder::append_header(entry, header);
  writer.block(entry);
  std::vector<Written> calls;
  while (input.left() > 1) {
    calls.push_back(any_call(input));
    write(writer, calls.back());
  }
  const std::string why(input.byte(), 'w');
  entry.clear();
  recorder::append_end(entry, why);
  writer.block(entry);

  Recording recording(writer.path());
  require_same(header, recording.header());
  require(recording.calls().size() == calls.size(), "no call is missing");
  for (std::size_t i = 0; i < calls.size(); ++i) {
    require_same(calls[i], recording, recording.calls()[i]);
  }
  require(recording.end() == why && !recording.torn(), "the end is that which was written");
}

/// What is larger than any entry is refused before it is written.
void write_too_much(Input& input) {
  RecordingWriter writer;
  writer.header(true);
  const std::size_t size = recorder::kLargestBlock + 1 + input.byte();
  try {
    writer.block(recorder::Bytes(size));
    require(false, "an entry has its limits");
  } catch (const std::length_error&) {
    require(Recording(writer.path()).calls().empty(), "and nothing of it is written");
  }
}

}  // namespace

/// The first byte chooses what the others are.
void run(Input input) {
  constexpr unsigned int kRare = 255;  // 8 MiB at a time
  const std::uint8_t form = input.byte();
  if (form == kRare) {
    write_too_much(input);
    return;
  }
  constexpr std::array kSubjects = {&read_file, &read_entries, &write_and_read};
  kSubjects[form % kSubjects.size()](input);
}

}  // namespace Osv::fuzz
