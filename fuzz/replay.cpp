#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "libraries/scanner_api.h"
#include "recorder/session/session.h"
#include "support/memory.h"
#include "support/recording_writer.h"
#include "support/target.h"

/// @file
/// Answers of any kind, played to a client: each is taken or ends the replay, no more is written
/// than there is room for, and what a call that succeeds fills is filled.

namespace Osv::fuzz {
namespace {

using recorder::Arguments;
using recorder::eFunction;

struct Ended : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class ThrowingEnding : public recorder::Ending {
 public:
  void diverged(const recorder::LastCall& call) override { throw Ended(call.why); }
  void damaged(const recorder::LastCall& call) override { throw Ended(call.why); }
};

/// Memory for an answer, as large as it has to be and no larger, and as it was given out: bytes
/// that the answer does not write show.
class Room {
 public:
  explicit Room(std::size_t size)
      : m_pBytes(std::make_unique_for_overwrite<unsigned char[]>(size + kGuard.size())),
        m_nSize(size) {
    std::copy(kGuard.begin(), kGuard.end(), m_pBytes.get() + size);
  }
  ~Room() noexcept(false) {
    require(std::equal(kGuard.begin(), kGuard.end(), m_pBytes.get() + m_nSize),
            "an answer stays in its memory");
  }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  unsigned char* bytes() { return m_pBytes.get(); }
  char* text() { return reinterpret_cast<char*>(bytes()); }
  template <class Record>
  Record* as() {
    return reinterpret_cast<Record*>(bytes());
  }

 private:
  static constexpr std::array<unsigned char, 8> kGuard = {1, 2, 3, 4, 5, 6, 7, 8};

  std::unique_ptr<unsigned char[]> m_pBytes;
  std::size_t m_nSize;
};

constexpr std::size_t kRoom = 64;
constexpr std::array<unsigned char, 4> kGiven = {1, 2, 3, 4};

/// The client's handles, its word on the size of frames, which is the first that an opening tells
/// whatever it tells later, and what calls that succeeded gave it.
struct Client {
  void* scanner = nullptr;
  void* engine = nullptr;
  void* detector = nullptr;
  std::size_t frame = 0;
  std::vector<unsigned char> outputs = {};

  void take(const void* bytes, std::size_t size) {
    const auto* const first = static_cast<const unsigned char*>(bytes);
    outputs.insert(outputs.end(), first, first + size);
  }
  void take(Room& room, std::size_t size) { take(room.bytes(), size); }
};

/// The numbers that the handles are going to have, and whether images are recorded.
struct Numbers {
  std::uint32_t scanner = 0;
  std::uint32_t engine = 0;
  std::uint32_t detector = 0;
  bool pixels = true;
};

void open(Client& client) {
  client.scanner = ftrScanOpenDeviceOnInterface(0);
  client.frame = 0;
}

void ask_for_size(Client& client) {
  Room room(sizeof(simulator::__FTRSCAN_IMAGE_SIZE));
  auto* const size = room.as<simulator::__FTRSCAN_IMAGE_SIZE>();
  if (ftrScanGetImageSize(client.scanner, size) == 0) {
    return;
  }
  client.take(room, sizeof(*size));
  const std::int64_t pixels = std::int64_t{size->width} * size->height;
  constexpr std::int64_t kMost = 1 << 20;
  if (client.frame == 0 && pixels > 0 && size->width > 0 && pixels <= kMost) {
    client.frame = static_cast<std::size_t>(pixels);
  }
}

void take_frame(Client& client) {
  if (client.frame != 0) {
    Room frame(client.frame);
    if (ftrScanGetImageByVariableDose(client.scanner, 60, frame.bytes()) != 0) {
      client.take(frame, client.frame);
    }
  }
}

void calibrate(Client& client) {
  Room out(kRoom);
  unsigned long size = kRoom;
  auto given = kGiven;
  if (Calibrate(client.engine, reinterpret_cast<tagBITMAPINFOHEADER*>(given.data()), given.size(),
                out.as<tagBITMAPINFOHEADER>(), &size) == 0) {
    client.take(out, std::min<std::size_t>(size, kRoom));
  }
}

/// A replay has no protected bytes: it changes all seven where they were changed, or none.
void restore_secret(Client& client) {
  constexpr std::ptrdiff_t kSecret = 7;
  Room room(kSecret);
  ftrScanRestoreSecret7Bytes(client.scanner, kGiven.data(), room.bytes());
  const std::ptrdiff_t as_before = std::count(room.bytes(), room.bytes() + kSecret, filling());
  require(as_before == 0 || as_before == kSecret, "protected bytes are changed whole");
  client.outputs.push_back(as_before == 0 ? 1 : 0);
}

/// A text up to its end, which is that of the room at the latest, and what is told of its length.
void get_option(Client& client) {
  Room room(kRoom);
  unsigned long size = kRoom;
  if (CalibrateGetOption(client.engine, "name", room.text(), &size) == 0) {
    client.take(room, std::min(strnlen(room.text(), kRoom) + 1, kRoom));
  }
  client.take(&size, sizeof(size));
}

void get_property(Client& client) {
  Room room(kRoom);
  unsigned long size = kRoom;
  if (FakeFingerDetectionGetPropertyA(client.detector, "name", room.text(), &size) == 0) {
    client.take(room, kRoom);
  }
  client.take(&size, sizeof(size));
}

Arguments calibrate_arguments(const Numbers& numbers) {
  Arguments arguments;
  arguments.handle(numbers.engine);
  if (numbers.pixels) {
    arguments.data(kGiven.data(), kGiven.size());
  } else {
    arguments.pointer(kGiven.data()).data_of_size(kGiven.size());
  }
  return arguments.pointer(&numbers).pointer(&numbers).number(kRoom);
}

/// A call, and the arguments with which it is recorded.
struct Operation {
  eFunction function;
  Arguments (*arguments)(const Numbers& numbers);
  void (*make)(Client& client);
};

const std::array kOperations = {
    Operation{eFunction::ftrScanOpenDeviceOnInterface,
              [](const Numbers&) { return Arguments().number(0); }, &open},
    Operation{
        eFunction::ftrScanGetImageSize,
        [](const Numbers& numbers) { return Arguments().handle(numbers.scanner).pointer(&kGiven); },
        &ask_for_size},
    Operation{eFunction::ftrScanGetImageByVariableDose,
              [](const Numbers& numbers) {
                return Arguments().handle(numbers.scanner).number(60).pointer(&kGiven);
              },
              &take_frame},
    Operation{eFunction::ftrScanRestoreExtMemory,
              [](const Numbers& numbers) {
                return Arguments().handle(numbers.scanner).pointer(&kGiven).number(0).number(kRoom);
              },
              [](Client& client) {
                Room room(kRoom);
                if (ftrScanRestoreExtMemory(client.scanner, room.bytes(), 0, kRoom) != 0) {
                  client.take(room, kRoom);
                }
              }},
    Operation{
        eFunction::ftrScanGetSerialNumber,
        [](const Numbers& numbers) { return Arguments().handle(numbers.scanner).pointer(&kGiven); },
        [](Client& client) {
          constexpr std::size_t kSerial = 8;
          Room room(kSerial);
          if (ftrScanGetSerialNumber(client.scanner, room.bytes()) != 0) {
            client.take(room, kSerial);
          }
        }},
    Operation{eFunction::ftrScanRestoreSecret7Bytes,
              [](const Numbers& numbers) {
                return Arguments().handle(numbers.scanner).pointer(&kGiven).pointer(&kGiven);
              },
              &restore_secret},
    Operation{eFunction::ftrScanCloseDevice,
              [](const Numbers& numbers) { return Arguments().handle(numbers.scanner); },
              [](Client& client) { ftrScanCloseDevice(client.scanner); }},
    Operation{eFunction::CalibrateCreate, [](const Numbers&) { return Arguments(); },
              [](Client& client) { client.engine = CalibrateCreate(); }},
    Operation{eFunction::Calibrate, &calibrate_arguments, &calibrate},
    Operation{
        eFunction::CalibrateGetOption,
        [](const Numbers& numbers) {
          return Arguments().handle(numbers.engine).text("name").pointer(&kGiven).number(kRoom);
        },
        &get_option},
    Operation{eFunction::CalibrateGetErrorDescription,
              [](const Numbers&) { return Arguments().number(-3); },
              [](Client&) {
                const char* const text = CalibrateGetErrorDescription(-3);
                require(text == nullptr || std::string(text).size() <= 4096, "a text has an end");
              }},
    Operation{eFunction::CalibrateDelete,
              [](const Numbers& numbers) { return Arguments().handle(numbers.engine); },
              [](Client& client) { CalibrateDelete(&client.engine); }},
    Operation{eFunction::FakeFingerDetectionCreateHandle,
              [](const Numbers&) { return Arguments().pointer(&kGiven); },
              [](Client& client) { FakeFingerDetectionCreateHandle(&client.detector); }},
    Operation{eFunction::FakeFingerDetectionEvaluateLiveliness,
              [](const Numbers& numbers) {
                return Arguments().handle(numbers.detector).pointer(&kGiven);
              },
              [](Client& client) {
                Room room(sizeof(double));
                if (FakeFingerDetectionEvaluateLiveliness(client.detector, room.as<double>()) ==
                    0) {
                  client.take(room, sizeof(double));
                }
              }},
    Operation{
        eFunction::FakeFingerDetectionGetPropertyA,
        [](const Numbers& numbers) {
          return Arguments().handle(numbers.detector).text("name").pointer(&kGiven).number(kRoom);
        },
        &get_property},
    Operation{eFunction::FakeFingerDetectionDestroyHandle,
              [](const Numbers& numbers) { return Arguments().handle(numbers.detector); },
              [](Client& client) { FakeFingerDetectionDestroyHandle(&client.detector); }}};

/// The number at a place in an answer; the one before where it is not there.
void take_number(Bytes answer, std::size_t place, std::uint32_t& number) {
  if (answer.size() >= place + sizeof(number)) {
    std::memcpy(&number, answer.data() + place, sizeof(number));
  }
}

/// Records an operation with an answer of the input's.
void record(RecordingWriter& writer, const Operation& operation, Numbers& numbers, Input& input) {
  recorder::Bytes entry;
  const std::uint32_t thread = 1 + input.below(2);
  recorder::append_call(entry, {operation.function, thread, 0, 0},
                        operation.arguments(numbers).encoded());
  const std::size_t size = input.byte();
  const Bytes answer = input.bytes(size);
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
                                    const std::vector<std::size_t>& operations) {
  play(path);
  Client client;
  for (const std::size_t operation : operations) {
    make(client, kOperations[operation]);
  }
  make(client, kOperations.front());
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
  std::vector<std::size_t> operations;
  while (operations.size() < kMostCalls && input.left() != 0) {
    const std::size_t operation = input.below(kOperations.size());
    const std::size_t shift = input.below(8) == 7 ? 1 : 0;
    record(writer, kOperations[operation], numbers, input);
    operations.push_back((operation + shift) % kOperations.size());
  }
  written_whole([&] { return replayed(writer.path(), operations); });
}

}  // namespace Osv::fuzz
