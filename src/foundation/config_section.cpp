#include "foundation/config_section.h"

#include <algorithm>
#include <cctype>

#include "foundation/exceptions.h"
#include "foundation/string_helper.h"

namespace Osv {
namespace {

constexpr int kParameterMissing = -1011;
constexpr int kNoBoolean = -1012;

struct Word {
  const char* text;
  bool value;
};

constexpr Word kBooleans[] = {{"true", true},   {"1", true},  {"y", true},  {"on", true},
                              {"false", false}, {"0", false}, {"n", false}, {"off", false}};

/// Where a line is cut that is taken without trimming.
struct UntrimmedLine {
  explicit UntrimmedLine(const std::string& line)
      : comment(line.find('#')), equals(line.find('=')) {}

  bool is_parameter() const { return equals != std::string::npos && comment > equals; }

  /// The length is the comment's position, so the value runs into the comment.
  std::string value(const std::string& line) const { return line.substr(equals + 1, comment); }

  std::size_t comment;
  std::size_t equals;
};

std::string trimmed(std::string text) {
  stdstring_helper::trim_both(text);
  return text;
}

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

}  // namespace

bool CXConfigSection::ParseString1(const std::string& line) {
  const std::string text = trimmed(line.substr(0, line.find('#')));
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) {
    return false;
  }
  m_mapLines[trimmed(text.substr(0, equals))] = trimmed(text.substr(equals + 1));
  return true;
}

bool CXConfigSection::ParseString(const std::string& line) {
  const UntrimmedLine parts(line);
  if (!parts.is_parameter()) {
    return false;
  }
  m_mapLines[line.substr(0, parts.equals)] = parts.value(line);
  return true;
}

std::istream& CXConfigSection::Load(std::istream& in) {
  std::string line;
  while (std::getline(in, line)) {
    const UntrimmedLine parts(line);
    if (parts.is_parameter()) {
      // With the "=" in front there is no character to drop: the whole line becomes the name.
      m_mapLines.try_emplace(line.substr(0, parts.equals - 1), parts.value(line));
    }
  }
  return in;
}

void CXConfigSection::Save(std::ostream& out) const {
  for (const auto& [name, value] : m_mapLines) {
    if (!value.empty()) {
      out << name << "\t=\t" << value << '\n';
    }
  }
}

std::string CXConfigSection::operator[](const std::string& name) const {
  const auto line = m_mapLines.find(name);
  return line == m_mapLines.end() ? std::string() : line->second;
}

const std::string& CXConfigSection::Mandatory(const std::string& name) const {
  const auto line = m_mapLines.find(name);
  if (line == m_mapLines.end()) {
    throw CXConfigFileParsingException(kParameterMissing, m_sName.c_str(), name.c_str(), nullptr);
  }
  return line->second;
}

void CXConfigSection::Convert(const std::string& /*name*/, const std::string& value,
                              std::string& out) const {
  out = value;
}

void CXConfigSection::Convert(const std::string& name, const std::string& value, bool& out) const {
  const std::string text = lowered(value);
  const Word* const word = std::find_if(std::begin(kBooleans), std::end(kBooleans),
                                        [&](const Word& known) { return text == known.text; });
  if (word == std::end(kBooleans)) {
    throw CXConfigFileParsingException(kNoBoolean, m_sName.c_str(), name.c_str(), value.c_str());
  }
  out = word->value;
}

}  // namespace Osv
