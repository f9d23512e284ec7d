#include "foundation/config_file.h"

#include <fstream>

#include "foundation/exceptions.h"
#include "foundation/string_helper.h"

namespace Osv {
namespace {

constexpr int kUnreadable = -1007;
constexpr int kSectionMissing = -1010;

[[noreturn]] void throw_unreadable() {
  throw CXConfigFileParsingException(kUnreadable, nullptr, nullptr, nullptr);
}

[[noreturn]] void throw_missing(const std::string& section) {
  throw CXConfigFileParsingException(kSectionMissing, section.c_str(), nullptr, nullptr);
}

}  // namespace

void CXConfigFile::Load(const std::string& path) {
  std::ifstream in(path);
  if (!in.is_open()) {
    throw_unreadable();
  }
  Load(in);
}

void CXConfigFile::Load(std::istream& in) {
  if (in.fail()) {
    throw_unreadable();
  }
  clear();
  CXConfigSection* current = nullptr;
  std::string line;
  while (std::getline(in, line)) {
    current = Take(line, current);
  }
}

/// Takes one line; the result is the section that the next one belongs to.
CXConfigSection* CXConfigFile::Take(const std::string& line, CXConfigSection* current) {
  const std::size_t left = line.find('[');
  if (left == std::string::npos || line.find('#') < left) {
    if (current != nullptr) {
      current->ParseString1(line);
    }
    return current;
  }
  const std::size_t right = line.find(']');
  if (right < left) {
    return current;
  }
  // The length is right only for a "[" at the start of the line; one further in takes the "]"
  // along, and is to go on doing so.
  std::string name = line.substr(left + 1, right - 1);
  stdstring_helper::trim_both(name);
  return &(*this)[name];
}

void CXConfigFile::Save(std::ostream& out) const {
  for (const auto& [name, section] : *this) {
    out << '[' << name << "]\n";
    section.Save(out);
  }
}

CXConfigSection& CXConfigFile::operator[](const std::string& name) {
  return try_emplace(name, name).first->second;
}

CXConfigSection CXConfigFile::operator[](const std::string& name) const {
  const auto section = find(name);
  return section == end() ? CXConfigSection(name) : section->second;
}

CXConfigSection& CXConfigFile::GetMandatory(const std::string& name) {
  const auto section = find(name);
  if (section == end()) {
    throw_missing(name);
  }
  return section->second;
}

CXConfigSection CXConfigFile::GetMandatory(const std::string& name) const {
  const auto section = find(name);
  if (section == end()) {
    throw_missing(name);
  }
  return section->second;
}

namespace cfg {

std::string CfgFileName(const char* name) { return std::string("/etc/") + name + ".cfg"; }

}  // namespace cfg
}  // namespace Osv
