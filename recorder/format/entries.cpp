#include "recorder/format/entries.h"

#include <algorithm>

#include "recorder/format/arguments.h"

namespace Osv::recorder {
namespace {

static_assert(kLongestCallHead >= Arguments::kLongest + 2 * sizeof(std::uint64_t) +
                                      sizeof(std::uint32_t) + 2 * sizeof(std::uint16_t) +
                                      sizeof(eEntry));

constexpr std::size_t kLongestEnd = 500;
constexpr std::size_t kLongestFailure = 500;

void append_kind(Bytes& target, eEntry kind) { target.push_back(static_cast<unsigned char>(kind)); }

void append_failure(Bytes& target, const std::string& failure) {
  const std::size_t size = std::min(failure.size(), kLongestFailure);
  append_number(target, static_cast<std::uint16_t>(size));
  append(target, failure.data(), size);
}

std::string take_failure(ByteReader& reader) {
  const auto size = reader.number<std::uint16_t>();
  if (size > kLongestFailure) {
    throw DamagedRecording("the recording's header has a text that is too long");
  }
  return printable(reader.take(size));
}

bool take_flag(ByteReader& reader) {
  const auto flag = reader.number<std::uint8_t>();
  if (flag > 1) {
    throw DamagedRecording("the recording's header has a flag that is neither yes nor no");
  }
  return flag == 1;
}

}  // namespace

void append_header(Bytes& target, const Header& header) {
  append_kind(target, eEntry::Header);
  append_number(target, static_cast<std::uint8_t>(header.pixels));
  append_number(target, header.seconds);
  for (const bool present : header.present) {
    append_number(target, static_cast<std::uint8_t>(present));
  }
  for (const bool exported : header.exported) {
    append_number(target, static_cast<std::uint8_t>(exported));
  }
  for (const std::string& failure : header.failures) {
    append_failure(target, failure);
  }
}

void append_call(Bytes& target, const CallHead& head, const Bytes& arguments) {
  append_kind(target, eEntry::Call);
  append_number(target, static_cast<std::uint16_t>(head.function));
  append_number(target, head.thread);
  append_number(target, head.begin);
  append_number(target, head.duration);
  append_number(target, static_cast<std::uint16_t>(arguments.size()));
  append(target, arguments.data(), arguments.size());
}

void append_end(Bytes& target, const std::string& why) {
  append_kind(target, eEntry::End);
  append(target, why.data(), std::min(why.size(), kLongestEnd));
}

eEntry take_kind(ByteReader& reader) {
  const auto kind = static_cast<eEntry>(reader.number<std::uint8_t>());
  if (kind < eEntry::Header || kind > eEntry::End) {
    throw DamagedRecording("an entry of the recording is of no known kind");
  }
  return kind;
}

Header take_header(ByteReader& reader) {
  Header header;
  header.pixels = take_flag(reader);
  header.seconds = reader.number<std::int64_t>();
  for (bool& present : header.present) {
    present = take_flag(reader);
  }
  for (bool& exported : header.exported) {
    exported = take_flag(reader);
  }
  if (!reader.rest().empty()) {  // an earlier recorder ended here
    for (std::string& failure : header.failures) {
      failure = take_failure(reader);
    }
  }
  return header;
}

CallHead take_call(ByteReader& reader) {
  CallHead head;
  const auto function = reader.number<std::uint16_t>();
  if (function >= kFunctionCount) {
    throw DamagedRecording("the recording has a call of function " + std::to_string(function) +
                           ", which there is not");
  }
  head.function = static_cast<eFunction>(function);
  head.thread = reader.number<std::uint32_t>();
  head.begin = reader.number<std::uint64_t>();
  head.duration = reader.number<std::uint64_t>();
  return head;
}

ByteView take_arguments(ByteReader& reader) {
  const auto size = reader.number<std::uint16_t>();
  if (size > Arguments::kLongest) {
    throw DamagedRecording("a call in the recording has arguments that are too long");
  }
  return reader.take(size);
}

std::string take_end(ByteReader& reader) {
  return printable(reader.rest().first(std::min(reader.rest().size(), kLongestEnd)));
}

}  // namespace Osv::recorder
