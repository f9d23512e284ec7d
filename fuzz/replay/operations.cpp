#include "replay/operations.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "libraries/logging_api.h"
#include "libraries/scanner_api.h"
#include "support/memory.h"
#include "support/require.h"

namespace Osv::fuzz {
namespace {

using recorder::Arguments;
using recorder::eFunction;

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

  std::size_t size() const { return m_nSize; }
  void require_untouched() const {
    require(std::all_of(m_pBytes.get(), m_pBytes.get() + m_nSize,
                        [](unsigned char byte) { return byte == filling(); }),
            "a failure leaves memory alone");
  }
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
constexpr std::size_t kSevenBytes = 7;
constexpr std::size_t kSerial = 8;

/// What the client gives in, of which a call takes the front.
using Given = std::array<unsigned char, 10>;
constexpr Given kGiven = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
constexpr std::size_t kImage = 4;

/// Where the client gives a number.
constexpr int kNumber = 4;

/// Takes what a call fills when it succeeds; one that fails leaves it alone.
/// @param call gets the memory, and tells whether it filled it
template <typename Call>
void take_filled(Client& client, std::size_t size, Call call) {
  Room room(size);
  if (call(room.bytes())) {
    client.take(room.bytes(), size);
  } else {
    room.require_untouched();
  }
}

/// The same of a record.
template <typename Record, typename Call>
void take_record(Client& client, Call call) {
  take_filled(client, sizeof(Record),
              [&](unsigned char* room) { return call(reinterpret_cast<Record*>(room)); });
}

/// A status or a code, which a client is given whatever it is.
void take_result(Client& client, long result) { client.take(&result, sizeof(result)); }

/// A text of the library's own.
void take_text(Client& client, const char* text) {
  constexpr std::size_t kLongest = 4096;
  if (text != nullptr) {
    const std::size_t size = std::strlen(text);
    require(size <= kLongest, "a text has an end");
    client.take(text, size);
  }
}

void open(Client& client) {
  client.scanner = ftrScanOpenDeviceOnInterface(kNumber);
  client.frame = 0;
}

void ask_for_size(Client& client) {
  Room room(sizeof(simulator::__FTRSCAN_IMAGE_SIZE));
  auto* const size = room.as<simulator::__FTRSCAN_IMAGE_SIZE>();
  if (ftrScanGetImageSize(client.scanner, size) == 0) {
    return;
  }
  client.take(room.bytes(), sizeof(*size));
  const std::int64_t pixels = std::int64_t{size->width} * size->height;
  constexpr std::int64_t kMost = 1 << 20;
  if (client.frame == 0 && pixels > 0 && size->width > 0 && pixels <= kMost) {
    client.frame = static_cast<std::size_t>(pixels);
  }
}

/// @param call as in `take_filled`
template <typename Call>
void take_frame(Client& client, Call call) {
  if (client.frame != 0) {
    take_filled(client, client.frame, call);
  }
}

/// What is given in, as an image: nobody looks into one that is played to.
tagBITMAPINFOHEADER* image(Given& given) {
  return reinterpret_cast<tagBITMAPINFOHEADER*>(given.data());
}

void calibrate(Client& client) {
  Room out(kRoom);
  unsigned long size = kRoom;
  auto given = kGiven;
  if (Calibrate(client.engine, image(given), kImage, out.as<tagBITMAPINFOHEADER>(), &size) == 0) {
    client.take(out.bytes(), std::min<std::size_t>(size, kRoom));
  } else {
    out.require_untouched();
  }
}

/// A replay has no protected bytes: it changes all seven where they were changed, or none.
void restore_secret(Client& client) {
  Room room(kSevenBytes);
  take_result(client, ftrScanRestoreSecret7Bytes(client.scanner, kGiven.data(), room.bytes()));
  const std::ptrdiff_t as_before = std::count(room.bytes(), room.bytes() + room.size(), filling());
  require(as_before == 0 || as_before == kSevenBytes, "protected bytes are changed whole");
  client.outputs.push_back(as_before == 0 ? 1 : 0);
}

/// A text up to its end, which is that of the room at the latest, and what is told of its length.
void get_option(Client& client) {
  Room room(kRoom);
  unsigned long size = kRoom;
  if (CalibrateGetOption(client.engine, "name", room.text(), &size) == 0) {
    client.take(room.bytes(), std::min(strnlen(room.text(), kRoom) + 1, kRoom));
  } else {
    room.require_untouched();
  }
  client.take(&size, sizeof(size));
}

void get_property(Client& client) {
  Room room(kRoom);
  unsigned long size = kRoom;
  if (FakeFingerDetectionGetPropertyA(client.detector, "name", room.text(), &size) == 0) {
    client.take(room.bytes(), kRoom);
  } else {
    room.require_untouched();
  }
  client.take(&size, sizeof(size));
}

/// The share of contamination, when the engine tells it.
void look_for_contamination(Client& client) {
  auto given = kGiven;
  take_record<double>(client, [&](double* percent) {
    return ContaminationDetection(client.engine, image(given), kImage, percent) == 0;
  });
}

/// A score, which there is with the codes of a state too.
void evaluate(Client& client) {
  constexpr long kFirstState = -799;
  constexpr long kLastState = -768;
  take_record<double>(client, [&](double* score) {
    const long code = FakeFingerDetectionEvaluateLiveliness(client.detector, score);
    return code == 0 || (code >= kFirstState && code <= kLastState);
  });
}

// The arguments of calls.

Arguments nothing(const Numbers& /*numbers*/) { return {}; }

Arguments of_number(const Numbers& /*numbers*/) { return Arguments().number(kNumber); }

Arguments of_buffer(const Numbers& /*numbers*/) { return Arguments().pointer(&kGiven); }

Arguments of_scanner(const Numbers& numbers) { return Arguments().handle(numbers.scanner); }

Arguments of_engine(const Numbers& numbers) { return Arguments().handle(numbers.engine); }

Arguments of_detector(const Numbers& numbers) { return Arguments().handle(numbers.detector); }

Arguments of_scanner_and_buffer(const Numbers& numbers) {
  return of_scanner(numbers).pointer(&kGiven);
}

Arguments of_scanner_and_two_buffers(const Numbers& numbers) {
  return of_scanner_and_buffer(numbers).pointer(&kGiven);
}

Arguments of_scanner_and_two_numbers(const Numbers& numbers) {
  return of_scanner(numbers).number(kNumber).number(kNumber);
}

Arguments with_image(Arguments arguments, const Numbers& numbers) {
  return numbers.pixels ? arguments.data(kGiven.data(), kImage)
                        : arguments.pointer(kGiven.data()).data_of_size(kImage);
}

Arguments with_text_and_room(Arguments arguments) {
  return arguments.text("name").pointer(&kGiven).number(kRoom);
}

// Seeds know them by their places.
const std::array kOperations = {
    Operation{eFunction::ftrScanOpenDeviceOnInterface, &of_number, &open},
    Operation{eFunction::ftrScanGetImageSize, &of_scanner_and_buffer, &ask_for_size},
    Operation{eFunction::ftrScanGetImageByVariableDose,
              [](const Numbers& numbers) {
                return of_scanner(numbers).number(kNumber).pointer(&kGiven);
              },
              [](Client& client) {
                take_frame(client, [&](void* frame) {
                  return ftrScanGetImageByVariableDose(client.scanner, kNumber, frame) != 0;
                });
              }},
    Operation{eFunction::ftrScanRestoreExtMemory,
              [](const Numbers& numbers) {
                return of_scanner_and_buffer(numbers).number(0).number(kRoom);
              },
              [](Client& client) {
                take_filled(client, kRoom, [&](void* room) {
                  return ftrScanRestoreExtMemory(client.scanner, room, 0, kRoom) != 0;
                });
              }},
    Operation{eFunction::ftrScanGetSerialNumber, &of_scanner_and_buffer,
              [](Client& client) {
                take_filled(client, kSerial, [&](void* serial) {
                  return ftrScanGetSerialNumber(client.scanner, serial) != 0;
                });
              }},
    Operation{eFunction::ftrScanRestoreSecret7Bytes, &of_scanner_and_two_buffers, &restore_secret},
    Operation{eFunction::ftrScanCloseDevice, &of_scanner,
              [](Client& client) { ftrScanCloseDevice(client.scanner); }},
    Operation{eFunction::CalibrateCreate, &nothing,
              [](Client& client) { client.engine = CalibrateCreate(); }},
    Operation{eFunction::Calibrate,
              [](const Numbers& numbers) {
                return with_image(of_engine(numbers), numbers)
                    .pointer(&kGiven)
                    .pointer(&kGiven)
                    .number(kRoom);
              },
              &calibrate},
    Operation{eFunction::CalibrateGetOption,
              [](const Numbers& numbers) { return with_text_and_room(of_engine(numbers)); },
              &get_option},
    Operation{eFunction::CalibrateGetErrorDescription, &of_number,
              [](Client& client) { take_text(client, CalibrateGetErrorDescription(kNumber)); }},
    Operation{eFunction::CalibrateDelete, &of_engine,
              [](Client& client) { CalibrateDelete(&client.engine); }},
    Operation{eFunction::FakeFingerDetectionCreateHandle, &of_buffer,
              [](Client& client) {
                take_result(client, FakeFingerDetectionCreateHandle(&client.detector));
              }},
    Operation{
        eFunction::FakeFingerDetectionEvaluateLiveliness,
        [](const Numbers& numbers) { return of_detector(numbers).pointer(&kGiven); }, &evaluate},
    Operation{eFunction::FakeFingerDetectionGetPropertyA,
              [](const Numbers& numbers) { return with_text_and_room(of_detector(numbers)); },
              &get_property},
    Operation{eFunction::FakeFingerDetectionDestroyHandle, &of_detector,
              [](Client& client) {
                take_result(client, FakeFingerDetectionDestroyHandle(&client.detector));
              }},
    // The scanner library's others.
    Operation{eFunction::ftrScanSetOptions, &of_scanner_and_two_numbers,
              [](Client& client) {
                take_result(client, ftrScanSetOptions(client.scanner, kNumber, kNumber));
              }},
    Operation{eFunction::ftrScanGetOptions, &of_scanner_and_buffer,
              [](Client& client) {
                take_record<std::uint32_t>(client, [&](std::uint32_t* flags) {
                  return ftrScanGetOptions(client.scanner, flags) != 0;
                });
              }},
    Operation{eFunction::ftrScanGetDeviceInfo, &of_scanner_and_buffer,
              [](Client& client) {
                take_record<simulator::ftrScanDeviceInfoRecord>(client, [&](auto* info) {
                  return ftrScanGetDeviceInfo(client.scanner, info) != 0;
                });
              }},
    Operation{
        eFunction::ftrScanGetFrame,
        [](const Numbers& numbers) { return of_scanner_and_buffer(numbers).pointer(nullptr); },
        [](Client& client) {
          take_frame(client, [&](void* frame) {
            return ftrScanGetFrame(client.scanner, frame, nullptr) != 0;
          });
        }},
    Operation{eFunction::ftrScanGetBacklightImage, &of_scanner_and_buffer,
              [](Client& client) {
                take_frame(client, [&](void* frame) {
                  return ftrScanGetBacklightImage(client.scanner, frame) != 0;
                });
              }},
    Operation{eFunction::ftrScanGetDarkImage, &of_scanner_and_buffer,
              [](Client& client) {
                take_frame(client, [&](void* frame) {
                  return ftrScanGetDarkImage(client.scanner, frame) != 0;
                });
              }},
    Operation{
        eFunction::ftrScanIsFingerPresent,
        [](const Numbers& numbers) { return of_scanner(numbers).pointer(nullptr); },
        [](Client& client) { take_result(client, ftrScanIsFingerPresent(client.scanner, nullptr)); }},
    Operation{
        eFunction::ftrScanSave7Bytes,
        [](const Numbers& numbers) { return of_scanner(numbers).data(kGiven.data(), kSevenBytes); },
        [](Client& client) { take_result(client, ftrScanSave7Bytes(client.scanner, &kGiven)); }},
    Operation{eFunction::ftrScanRestore7ControlBytes, &of_scanner_and_buffer,
              [](Client& client) {
                take_filled(client, kSevenBytes, [&](void* bytes) {
                  return ftrScanRestore7ControlBytes(client.scanner, bytes) != 0;
                });
              }},
    Operation{eFunction::ftrScanSetDiodesStatus, &of_scanner_and_two_numbers,
              [](Client& client) {
                take_result(client, ftrScanSetDiodesStatus(client.scanner, kNumber, kNumber));
              }},
    Operation{eFunction::ftrScanGetInterfaces, &of_buffer,
              [](Client& client) {
                take_record<simulator::ftrScanInterfaceList>(
                    client, [&](auto* list) { return ftrScanGetInterfaces(list) != 0; });
              }},
    Operation{eFunction::ftrSetBaseInterface, &of_number,
              [](Client& client) { take_result(client, ftrSetBaseInterface(kNumber)); }},
    Operation{
        eFunction::ftrScanSaveSerialNumber,
        [](const Numbers& numbers) {
          return of_scanner(numbers).data(kGiven.data(), kGiven.size());
        },
        [](Client& client) { take_result(client, ftrScanSaveSerialNumber(client.scanner, &kGiven)); }},
    Operation{eFunction::ftrScanGetLastError, &nothing,
              [](Client& client) { take_result(client, ftrScanGetLastError()); }},
    Operation{eFunction::ftrScanSetLastError, &of_number,
              [](Client& /*client*/) { ftrScanSetLastError(kNumber); }},
    Operation{eFunction::ftrScanGetExtMemorySize, &of_scanner_and_buffer,
              [](Client& client) {
                take_record<std::int32_t>(client, [&](std::int32_t* size) {
                  return ftrScanGetExtMemorySize(client.scanner, size) != 0;
                });
              }},
    Operation{eFunction::ftrScanSaveExtMemory,
              [](const Numbers& numbers) {
                return of_scanner(numbers).data(kGiven.data(), kGiven.size()).number(0);
              },
              [](Client& client) {
                take_result(client,
                            ftrScanSaveExtMemory(client.scanner, &kGiven, 0, kGiven.size()));
              }},
    Operation{eFunction::ftrScanGetVersion, &of_scanner_and_buffer,
              [](Client& client) {
                take_record<simulator::ftrScanVersionRecord>(client, [&](auto* version) {
                  return ftrScanGetVersion(client.scanner, version) != 0;
                });
              }},
    Operation{eFunction::ftrScanSetNewAuthorizationCode, &of_scanner_and_buffer,
              [](Client& client) {
                take_result(client, ftrScanSetNewAuthorizationCode(client.scanner, &kGiven));
              }},
    Operation{eFunction::ftrScanSaveSecret7Bytes, &of_scanner_and_two_buffers,
              [](Client& client) {
                take_result(client, ftrScanSaveSecret7Bytes(client.scanner, &kGiven, &kGiven));
              }},
    // Those of which nobody knows the outputs: their answers can't be played.
    Operation{eFunction::ftrScanGetImage, &nothing,
              [](Client& client) { ftrScanGetImage(client.scanner, kNumber, nullptr); }},
    Operation{eFunction::ftrScanGetImage2, &nothing,
              [](Client& client) { ftrScanGetImage2(client.scanner, kNumber, nullptr); }},
    Operation{eFunction::ftrScanGetDiodesStatus, &nothing,
              [](Client& client) { ftrScanGetDiodesStatus(client.scanner, nullptr, nullptr); }},
    Operation{eFunction::ftrGetBaseInterfaceNumber, &nothing,
              [](Client& /*client*/) { ftrGetBaseInterfaceNumber(); }},
    Operation{eFunction::ftrScanGlobalSetOptions, &nothing,
              [](Client& /*client*/) { ftrScanGlobalSetOptions(kNumber, kNumber); }},
    // The engine's.
    Operation{
        eFunction::CalibrateSetData,
        [](const Numbers& numbers) {
          return of_engine(numbers).data(kGiven.data(), kGiven.size());
        },
        [](Client& client) {
          take_result(client, CalibrateSetData(client.engine, kGiven.data(), kGiven.size()));
        }},
    Operation{eFunction::ContaminationDetection,
              [](const Numbers& numbers) {
                return with_image(of_engine(numbers), numbers).pointer(&kGiven);
              },
              &look_for_contamination},
    Operation{eFunction::CalibrateSetOption,
              [](const Numbers& numbers) { return of_engine(numbers).text("name"); },
              [](Client& client) { take_result(client, CalibrateSetOption(client.engine, "name")); }},
    // The detector's.
    Operation{eFunction::FakeFingerDetectionInitialize,
              [](const Numbers& /*numbers*/) { return Arguments().pointer(nullptr); },
              [](Client& client) { take_result(client, FakeFingerDetectionInitialize(nullptr)); }},
    Operation{eFunction::FakeFingerDetectionUninitialize, &nothing,
              [](Client& client) { take_result(client, FakeFingerDetectionUninitialize()); }},
    Operation{
        eFunction::FakeFingerDetectionReset, &of_detector,
        [](Client& client) { take_result(client, FakeFingerDetectionReset(client.detector)); }},
    Operation{
        eFunction::FakeFingerDetectionSetImage,
        [](const Numbers& numbers) { return with_image(of_detector(numbers).number(kNumber), numbers); },
        [](Client& client) {
          auto given = kGiven;
          take_result(client, FakeFingerDetectionSetImage(client.detector, kNumber, image(given),
                                                          kImage));
        }},
    Operation{eFunction::FakeFingerDetectionSetPropertyA,
              [](const Numbers& numbers) { return of_detector(numbers).text("name").text("1"); },
              [](Client& client) {
                take_result(client, FakeFingerDetectionSetPropertyA(client.detector, "name", "1"));
              }},
    Operation{eFunction::FakeFingerDetectionGetErrorDescriptionA, &of_number,
              [](Client& client) {
                take_text(client, FakeFingerDetectionGetErrorDescriptionA(kNumber));
              }},
    // Lines to the log, which are no part of a replay.
    Operation{eFunction::OsvLFLog,
              [](const Numbers& /*numbers*/) { return Arguments().number(kNumber).text("%d"); },
              [](Client& /*client*/) { OsvLFLog(kNumber, "%d", kNumber); }},
    Operation{eFunction::OsvLFFlush, &nothing, [](Client& /*client*/) { OsvLFFlush(); }}};
static_assert(kOperations.size() == recorder::kFunctionCount);

}  // namespace

std::span<const Operation> operations() { return kOperations; }

}  // namespace Osv::fuzz
