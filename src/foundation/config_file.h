#pragma once

#include <istream>
#include <map>
#include <ostream>
#include <string>

#include "foundation/config_section.h"

/// @file
/// The configuration file: sections `[name]` of parameter lines `name = value`, with comments from
/// a "#" to the end of the line. A "#" behind the first "[" of a section line belongs to the line.

namespace Osv {

/// The sections of a file, sorted by the byte value of their names. Names are case sensitive. A bad
/// line is ignored without a word; only a mandatory look-up finds out. No lock.
class CXConfigFile : public std::map<std::string, CXConfigSection> {
 public:
  virtual ~CXConfigFile() = default;

  /// Replaces the content with that of a file.
  /// @throws CXConfigFileParsingException -1007 when the file can't be opened
  void Load(const std::string& path);

  /// Replaces the content with the lines of a stream, which ends in a failed state. An error on the
  /// way ends the reading, and what was read stands.
  /// @throws CXConfigFileParsingException -1007 for a stream that has failed already; the content
  ///   stays
  void Load(std::istream& in);

  /// Writes all sections, without comments and without lines whose value is empty.
  void Save(std::ostream& out) const;

  /// The section; a missing one is added, empty.
  CXConfigSection& operator[](const std::string& name);

  /// A copy of the section; an empty one for a missing name.
  CXConfigSection operator[](const std::string& name) const;

  /// The section.
  /// @throws CXConfigFileParsingException -1010 for a missing one
  CXConfigSection& GetMandatory(const std::string& name);
  CXConfigSection GetMandatory(const std::string& name) const;

 private:
  CXConfigSection* Take(const std::string& line, CXConfigSection* current);
};

namespace cfg {

/// Where the configuration file of that name lies.
std::string CfgFileName(const char* name);

}  // namespace cfg
}  // namespace Osv
