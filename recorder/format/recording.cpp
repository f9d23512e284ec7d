#include "recorder/format/recording.h"

#include "recorder/format/arguments.h"

namespace Osv::recorder {
namespace {

// Arguments differ by the check sums of images, or by nothing. So many bytes of them are months.
constexpr std::size_t kMostArgumentBytes = std::size_t{256} * 1024 * 1024;

constexpr std::size_t kHeaderSize = 1024;

}  // namespace

Recording::Recording(const std::string& path) : m_cFile(path) {
  Bytes entry;
  if (!m_cFile.next(entry, kHeaderSize)) {
    throw DamagedRecording(path + " ends before its header does");
  }
  ByteReader front(entry);
  if (take_kind(front) != eEntry::Header) {
    throw DamagedRecording(path + " does not begin with a header");
  }
  m_cHeader = take_header(front);
  std::uint64_t position = m_cFile.position();
  while (m_cFile.next(entry, kLongestCallHead)) {
    take(ByteReader(entry), position);
    position = m_cFile.position();
  }
}

void Recording::take(ByteReader reader, std::uint64_t position) {
  switch (take_kind(reader)) {
    case eEntry::Call: {
      const CallHead head = take_call(reader);
      m_vCalls.push_back({head, keep(take_arguments(reader)), position});
      break;
    }
    case eEntry::End:
      m_sEnd = take_end(reader);
      break;
    case eEntry::Header:
      throw DamagedRecording("the recording has a second header");
  }
}

const std::string* Recording::keep(ByteView arguments) {
  const auto [kept, is_new] = m_cArguments.emplace(arguments.begin(), arguments.end());
  if (is_new) {
    arguments_in_words(arguments);  // so that they can be told later
    m_nArgumentBytes += arguments.size();
    if (m_nArgumentBytes > kMostArgumentBytes) {
      throw DamagedRecording("the recording has too many arguments");
    }
  }
  return &*kept;
}

void Recording::read_answer(const Call& call, Bytes& answer) {
  Bytes entry;
  m_cFile.read(call.position, entry);
  ByteReader reader(entry);
  take_kind(reader);
  take_call(reader);
  take_arguments(reader);
  answer.assign(reader.rest().begin(), reader.rest().end());
}

std::string in_words(eFunction function, ByteView arguments) {
  return std::string(name_of(function)) + '(' + arguments_in_words(arguments) + ')';
}

}  // namespace Osv::recorder
