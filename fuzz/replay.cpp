#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "recorder/session/session.h"
#include "replay/operations.h"
#include "support/memory.h"
#include "support/recording_writer.h"
#include "support/target.h"

/// @file
/// Answers of any kind, played to a client: each is taken or ends the replay, no more is written
/// than there is room for, and what a call that succeeds fills is filled.

namespace Osv::fuzz {
namespace {

using recorder::eFunction;

struct Ended : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class ThrowingEnding : public recorder::Ending {
 public:
  void diverged(const recorder::LastCall& call) override { throw Ended(call.why); }
  void damaged(const recorder::LastCall& call) override { throw Ended(call.why); }
};

/// The number at a place in an answer; the one before where it is not there.
void take_number(Bytes answer, std::size_t place, std::uint32_t& number) {
  if (answer.size() >= place + sizeof(number)) {
    std::memcpy(&number, answer.data() + place, sizeof(number));
  }
}

/// Most answers are short ones.
Bytes any_answer(Input& input) {
  constexpr std::uint8_t kLong = 255;
  const std::size_t size = input.byte();
  return input.bytes(size == kLong ? input.number<std::uint16_t>() : size);
}

/// Records an operation with an answer of the input's.
void record(RecordingWriter& writer, const Operation& operation, Numbers& numbers, Input& input) {
  recorder::Bytes entry;
  const std::uint32_t thread = 1 + input.below(2);
  recorder::append_call(entry, {operation.function, thread, 0, 0},
                        operation.arguments(numbers).encoded());
  const Bytes answer = any_answer(input);
  entry.insert(entry.end(), answer.begin(), answer.end());
  writer.block(entry);
  if (operation.function == eFunction::ftrScanOpenDeviceOnInterface) {
    take_number(answer, 0, numbers.scanner);
  } else if (operation.function == eFunction::CalibrateCreate) {
    take_number(answer, 0, numbers.engine);
  } else if (operation.function == eFunction::FakeFingerDetectionCreateHandle) {
    take_number(answer, sizeof(long), numbers.detector);
  }
}

void play(const std::string& path) {
  recorder::Session::get().play(std::make_unique<recorder::Player>(
      std::make_unique<recorder::Recording>(path), recorder::Player::Milliseconds(0),
      std::make_unique<ThrowingEnding>()));
}

void make(Client& client, const Operation& operation) {
  try {
    operation.make(client);
  } catch (const Ended& end) {
    require(*end.what() != '\0', "an end tells why");
  }
}

/// A whole replay. @return what the client was given
std::vector<unsigned char> replayed(const std::string& path,
                                    const std::vector<std::size_t>& calls) {
  play(path);
  Client client;
  for (const std::size_t operation : calls) {
    make(client, operations()[operation]);
  }
  make(client, operations().front());
  recorder::Session::get().player()->left_over();
  return client.outputs;
}

}  // namespace

/// Whether images are recorded, then operations, each with whether the client does another in its
/// place, its thread and its answer.
void run(Input input) {
  constexpr std::size_t kMostCalls = 40;
  Numbers numbers;
  numbers.pixels = input.below(2) == 0;
  RecordingWriter writer;
  writer.header(numbers.pixels);
  std::vector<std::size_t> calls;
  while (calls.size() < kMostCalls && input.left() != 0) {
    const std::size_t operation = input.below(recorder::kFunctionCount);
    const std::size_t shift = input.below(8) == 7 ? 1 : 0;
    record(writer, operations()[operation], numbers, input);
    calls.push_back((operation + shift) % operations().size());
  }
  written_whole([&] { return replayed(writer.path(), calls); });
}

}  // namespace Osv::fuzz
