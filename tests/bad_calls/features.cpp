#include "bad_calls/bad_call.h"

/// @file
/// The feature functions. A record's `count` is what the client says that it has room for.

namespace Osv::bad_calls {
namespace {

namespace error_text = lx::error_text;
using namespace lx::error_number;

constexpr unsigned int kAllBits = 0xFFFFFFFF;
constexpr unsigned long kHuge = ~0UL;
constexpr unsigned long kCode = 7;          // elements of the authorization code
constexpr unsigned long kBoth = kCode + 7;  // and of the protected bytes behind it

/// A record of one feature in front of what the client has room for.
struct Record {
  unsigned int id;
  unsigned long width = 1;
  bool null = false;
};

osvlx3_feature record_of(const Record& record, Hands& hands) {
  return {record.id, 0, hands.size, record.width, record.null ? nullptr : hands.room.data()};
}

std::function<unsigned long(Hands&)> reading(const Record& record, unsigned int channel) {
  return [=](Hands& hands) {
    osvlx3_feature feature = record_of(record, hands);
    const unsigned long result =
        answered([&] { return hands.plugin.get_feature()(channel, &feature); });
    hands.size = feature.count;
    return result;
  };
}

std::function<unsigned long(Hands&)> writing(const Record& record, unsigned int channel) {
  return [=](Hands& hands) {
    const osvlx3_feature feature = record_of(record, hands);
    const unsigned long result =
        answered([&] { return hands.plugin.set_feature()(channel, &feature); });
    hands.size = feature.count;
    return result;
  };
}

/// What is refused behind the opening.
BadCall behind_opening(std::string what, std::function<unsigned long(Hands&)> call,
                       const Answer& answer, unsigned long count) {
  return {std::move(what), std::move(call), answer, count, 1, true, bare(NotConnected)};
}

std::string described(const char* what, const Record& record, unsigned long count) {
  return what + std::to_string(record.id) + ", " + std::to_string(count) + " elements of " +
         std::to_string(record.width) + (record.null ? " at nothing" : "");
}

BadCall read_row(const Record& record, unsigned long count, const Answer& answer) {
  return behind_opening(described("reading ", record, count), reading(record, kChannel), answer,
                        count);
}

BadCall write_row(const Record& record, unsigned long count, const Answer& answer) {
  return behind_opening(described("writing ", record, count), writing(record, kChannel), answer,
                        count);
}

/// Refused in front of everything else.
template <typename Access>
void add_channels(BadCalls& calls, Access access) {
  for (const unsigned int channel : {0U, 2U, kAllBits}) {
    for (const unsigned int id : {53U, 54U, 55U, 99U}) {
      calls.push_back({"feature " + std::to_string(id) + " of channel " + std::to_string(channel),
                       access(Record{id}, channel), bare(NotConnected), kBoth});
    }
  }
}

/// These functions are all exported ones.
BadCalls exported(BadCalls calls, const char* symbol) {
  for (BadCall& call : calls) {
    call.without_frame_grabber = kNoFrameGrabber;
    call.symbol = symbol;
  }
  return calls;
}

/// Every number that is no feature of the scanner, among them all that the interface knows.
template <typename Row>
void add_unknown(BadCalls& calls, Row row) {
  constexpr unsigned int kBeyondAll = 57;
  for (unsigned int id = 0; id < kBeyondAll; ++id) {
    if (id < 53 || id > 55) {
      calls.push_back(row(Record{id}, 1, bare(IncorrectProperty)));
    }
  }
  calls.push_back(row(Record{kAllBits}, 1, bare(IncorrectProperty)));
  calls.push_back(row(Record{99, 0, true}, kHuge, bare(IncorrectProperty)));
}

Answer counts(unsigned long number) { return {number, kTextStays, kBoth}; }

void add_written_bytes(BadCalls& calls, unsigned int id, unsigned long count) {
  for (const unsigned long width : {0UL, 2UL, 4UL, kHuge}) {
    calls.push_back(write_row({id, width}, count, bare(ElementSize)));
    calls.push_back(write_row({id, width, true}, count + 1, bare(ElementSize)));
  }
  for (const unsigned long small : {0UL, 1UL, count - 1}) {
    calls.push_back(write_row({id}, small, bare(BufferTooSmall)));
    calls.push_back(write_row({id, 1, true}, small, bare(BufferTooSmall)));
  }
  for (const unsigned long large : {count + 1, 2 * count, kHuge}) {
    calls.push_back(write_row({id}, large, bare(OutOfRange)));
  }
  calls.push_back(write_row({id, 1, true}, count, bare(NullPointer)));
}

/// A format that is written from elements of a width, all of which hold 0xA5.
void add_written_formats(BadCalls& calls) {
  for (const unsigned long width : {1UL, 2UL, 4UL}) {
    for (const unsigned long count : {0UL, 1UL, kHuge}) {
      calls.push_back(write_row({55, width}, count, throws(OutOfRange)));
    }
    calls.push_back(write_row({55, width, true}, 1, throws(NullPointer)));
  }
  for (const unsigned long width : {0UL, 3UL, 8UL, kHuge}) {
    calls.push_back(write_row({55, width}, 1, throws(ElementSize)));
  }
}

/// A record that is as it should be, with another code than the scanner's: 0xA5 seven times.
BadCall with_wrong_code(BadCall row, const char* asked) {
  row.answer = reported(AuthorizationCode, error_text::ScannerAuthorization);
  row.with_dead_handle = reported(NotConnected, asked);
  return row;
}

/// A read that allocates the element, which goes back by the exported function.
unsigned long read_into_new_memory(Hands& hands) {
  osvlx3_feature feature = {55, 0, 0, 0, nullptr};
  const unsigned long result = hands.plugin.get_feature()(kChannel, &feature);
  hands.plugin.free()(feature.data);
  hands.size = feature.count;
  return result;
}

}  // namespace

BadCalls feature_reads() {
  BadCalls calls;
  calls.push_back({"reading no record",
                   [](Hands& hands) { return hands.plugin.get_feature()(kChannel, nullptr); },
                   reported(NullPointer, error_text::NullFeature)});
  calls.push_back({"reading no record of channel 2",
                   [](Hands& hands) { return hands.plugin.get_feature()(2, nullptr); },
                   bare(NotConnected)});
  add_channels(calls, &reading);
  add_unknown(calls, &read_row);
  for (const unsigned long count : {0UL, 7UL, 14UL, kHuge}) {
    calls.push_back(read_row({53}, count, bare(WriteOnly)));
    calls.push_back(read_row({53, 2, true}, count, bare(WriteOnly)));
  }
  for (const bool null : {false, true}) {
    for (const unsigned long small : {0UL, 1UL, 13UL}) {
      calls.push_back(read_row({54, 1, null}, small, counts(BufferTooSmall)));
    }
    for (const unsigned long large : {15UL, 28UL, kHuge}) {
      calls.push_back(read_row({54, 1, null}, large, counts(OutOfRange)));
    }
  }
  calls.push_back(read_row({54, 1, true}, kBoth, reported(NullPointer, error_text::NullData)));
  calls.push_back(with_wrong_code(read_row({54}, kBoth, {}), "RestoreSecret7Bytes"));
  for (const unsigned long width : {0UL, 2UL, 4UL, kHuge}) {
    calls.push_back(read_row({55, width}, 1, throws(ElementSize)));
    calls.push_back(read_row({55, width, true}, kHuge, throws(ElementSize)));
  }
  calls.push_back(read_row({55, 1, true}, 1, throws(NullPointer)));
  calls.push_back(read_row({55}, 1, writes(1)));
  calls.push_back(read_row({55}, kHuge, writes(1)));
  calls.push_back(behind_opening("reading 55 with no room", &read_into_new_memory, writes(1), 0));
  return exported(calls, lx::symbol::GetFeature);
}

BadCalls feature_writes() {
  BadCalls calls;
  calls.push_back({"writing no record",
                   [](Hands& hands) { return hands.plugin.set_feature()(kChannel, nullptr); },
                   reported(NullPointer, error_text::NullFeature), 0, 1, true, bare(NotConnected)});
  calls.push_back({"writing no record of channel 2",
                   [](Hands& hands) { return hands.plugin.set_feature()(2, nullptr); },
                   bare(NotConnected)});
  add_channels(calls, &writing);
  add_unknown(calls, &write_row);
  add_written_bytes(calls, 53, kCode);
  add_written_bytes(calls, 54, kBoth);
  calls.push_back(with_wrong_code(write_row({54}, kBoth, {}), "SaveSecret7Bytes"));
  add_written_formats(calls);
  return exported(calls, lx::symbol::SetFeature);
}

}  // namespace Osv::bad_calls
