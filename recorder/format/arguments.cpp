#include "recorder/format/arguments.h"

#include <algorithm>

#include "recorder/format/check_sum.h"

namespace Osv::recorder {
namespace {

/// What an argument is, in front of it.
enum class eKind : std::uint8_t { Handle, Number, Null, Pointer, Text, CutText, Data, DataOfSize };

constexpr std::size_t kLongestText = 1000;

void append_kind(Bytes& target, eKind kind) { target.push_back(static_cast<unsigned char>(kind)); }

void append_text(Bytes& target, const char* text, std::size_t size) {
  append_number(target, static_cast<std::uint16_t>(size));
  append(target, text, size);
}

std::string text_in_words(ByteReader& reader) {
  const auto size = reader.number<std::uint16_t>();
  return "'" + printable(reader.take(size)) + "'";
}

std::string cut_text_in_words(ByteReader& reader) {
  const std::string begin = text_in_words(reader);
  reader.number<std::uint32_t>();
  return begin + "...";
}

std::string handle_in_words(std::uint32_t number) {
  if (number == kUnknownHandle) {
    return "unknown handle";
  }
  return number == 0 ? "null handle" : "handle " + std::to_string(number);
}

std::string data_in_words(ByteReader& reader) {
  const auto size = reader.number<std::uint64_t>();
  constexpr std::uint32_t kDigits = 100000;
  return std::to_string(size) + " bytes of sum " +
         std::to_string(reader.number<std::uint32_t>() % kDigits);
}

std::string argument_in_words(ByteReader& reader) {
  switch (static_cast<eKind>(reader.number<std::uint8_t>())) {
    case eKind::Handle:
      return handle_in_words(reader.number<std::uint32_t>());
    case eKind::Number:
      return std::to_string(reader.number<std::int64_t>());
    case eKind::Null:
      return "null";
    case eKind::Pointer:
      return "buffer";
    case eKind::Text:
      return text_in_words(reader);
    case eKind::CutText:
      return cut_text_in_words(reader);
    case eKind::Data:
      return data_in_words(reader);
    case eKind::DataOfSize:
      return std::to_string(reader.number<std::uint64_t>()) + " bytes";
  }
  throw DamagedRecording("an argument in the recording is of no known kind");
}

}  // namespace

Arguments& Arguments::handle(std::uint32_t number) {
  append_kind(m_vEncoded, eKind::Handle);
  append_number(m_vEncoded, number);
  return *this;
}

Arguments& Arguments::number(std::int64_t number) {
  append_kind(m_vEncoded, eKind::Number);
  append_number(m_vEncoded, number);
  return *this;
}

Arguments& Arguments::pointer(const void* pointer) {
  append_kind(m_vEncoded, pointer == nullptr ? eKind::Null : eKind::Pointer);
  return *this;
}

Arguments& Arguments::text(const char* text) {
  if (text == nullptr) {
    return pointer(text);
  }
  const std::size_t size = std::strlen(text);
  append_kind(m_vEncoded, size > kLongestText ? eKind::CutText : eKind::Text);
  append_text(m_vEncoded, text, std::min(size, kLongestText));
  if (size > kLongestText) {
    append_number(m_vEncoded, check_sum(text, size));
  }
  return *this;
}

Arguments& Arguments::data(const void* bytes, std::size_t size) {
  if (bytes == nullptr) {
    return pointer(bytes).data_of_size(size);
  }
  append_kind(m_vEncoded, eKind::Data);
  append_number(m_vEncoded, std::uint64_t{size});
  append_number(m_vEncoded, check_sum(bytes, size));
  return *this;
}

Arguments& Arguments::data_of_size(std::size_t size) {
  append_kind(m_vEncoded, eKind::DataOfSize);
  append_number(m_vEncoded, std::uint64_t{size});
  return *this;
}

std::string printable(ByteView text) {
  std::string printable;
  for (const unsigned char letter : text) {
    constexpr unsigned char kBlank = 0x20;
    constexpr unsigned char kDelete = 0x7F;
    printable += letter < kBlank || letter >= kDelete ? '?' : static_cast<char>(letter);
  }
  return printable;
}

std::string arguments_in_words(ByteView encoded) {
  ByteReader reader(encoded);
  std::string words;
  while (!reader.rest().empty()) {
    words += (words.empty() ? "" : ", ") + argument_in_words(reader);
  }
  return words;
}

}  // namespace Osv::recorder
