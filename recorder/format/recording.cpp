#include "recorder/format/recording.h"

#include <functional>
#include <string_view>

#include "recorder/format/arguments.h"

namespace Osv::recorder {
namespace {

constexpr std::size_t kHeaderSize = 4096;

/// Whether an answer begins with the status of a success.
bool is_success(ByteReader answer) {
  return answer.rest().size() >= sizeof(std::int32_t) && answer.number<std::int32_t>() != 0;
}

}  // namespace

Recording::Recording(const std::string& path) : m_cFile(path) {
  if (!m_cFile.next(m_vEntry, kHeaderSize)) {
    throw DamagedRecording(path + " ends before its header does");
  }
  ByteReader front(m_vEntry);
  if (take_kind(front) != eEntry::Header) {
    throw DamagedRecording(path + " does not begin with a header");
  }
  m_cHeader = take_header(front);
  std::uint64_t position = m_cFile.position();
  while (m_cFile.next(m_vEntry, kLongestCallHead)) {
    take(ByteReader(m_vEntry), position);
    position = m_cFile.position();
  }
}

void Recording::take(ByteReader reader, std::uint64_t position) {
  switch (take_kind(reader)) {
    case eEntry::Call: {
      const CallHead head = take_call(reader);
      const ByteView arguments = take_arguments(reader);
      arguments_in_words(arguments);  // so that they can be told later
      m_vCalls.push_back({head, hash_of(arguments), position});
      m_nFrames += is_frame(head.function) && is_success(reader) ? 1 : 0;
      break;
    }
    case eEntry::End:
      m_sEnd = take_end(reader);
      break;
    case eEntry::Header:
      throw DamagedRecording("the recording has a second header");
  }
}

/// A call again, from its arguments on.
ByteReader Recording::read(const Call& call) {
  m_cFile.read(call.position, m_vEntry);
  ByteReader reader(m_vEntry);
  take_kind(reader);
  take_call(reader);
  return reader;
}

void Recording::read_answer(const Call& call, Bytes& answer) {
  ByteReader reader = read(call);
  take_arguments(reader);
  answer.assign(reader.rest().begin(), reader.rest().end());
}

std::string Recording::in_words(const Call& call) {
  try {
    ByteReader reader = read(call);
    return recorder::in_words(call.head.function, take_arguments(reader));
  } catch (const DamagedRecording&) {
    return name_of(call.head.function);
  }
}

std::size_t hash_of(ByteView arguments) {
  return std::hash<std::string_view>()(
      {reinterpret_cast<const char*>(arguments.data()), arguments.size()});
}

std::string in_words(eFunction function, ByteView arguments) {
  return std::string(name_of(function)) + '(' + arguments_in_words(arguments) + ')';
}

}  // namespace Osv::recorder
