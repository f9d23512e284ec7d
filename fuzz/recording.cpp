#include "recorder/format/recording.h"

#include <string>

#include "support/recording_writer.h"
#include "support/target.h"

/// @file
/// Files that should be recordings: they are read, up to where they are torn, or refused with a
/// text that tells why.

namespace Osv::fuzz {
namespace {

using recorder::DamagedRecording;
using recorder::Recording;

void read_answers(Recording& recording) {
  recorder::Bytes answer;
  for (const Recording::Call& call : recording.calls()) {
    require(index_of(call.head.function) < recorder::kFunctionCount, "a call has a function");
    require(recording.in_words(call).back() == ')', "a call can be told");
    recording.read_answer(call, answer);
    require(answer.size() <= recorder::kLargestBlock, "an answer has its limits");
  }
}

void read(const std::string& path) {
  try {
    Recording recording(path);
    read_answers(recording);
  } catch (const DamagedRecording& damage) {
    require(*damage.what() != '\0', "a refusal tells why");
  }
}

/// Blocks with good check sums; the entries in them are the input's.
void read_entries(Input input) {
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

}  // namespace

/// The first byte chooses what the others are: a file, or entries.
void run(Input input) {
  if (input.below(2) == 0) {
    const ScratchFile file(input.rest());
    read(file.path());
  } else {
    read_entries(input);
  }
}

}  // namespace Osv::fuzz
