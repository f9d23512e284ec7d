#pragma once

#include <string>
#include <vector>

/// @file
/// The search for bytes that a text gives away.

namespace Osv::privacy {

using Bytes = std::vector<unsigned char>;

/// Every text that shows a run of these bytes: as they are, in hexadecimal and in decimal, one by
/// one with what may stand between them, or four at a time.
class Leaks {
 public:
  /// Bytes of the shortest run that is found.
  static constexpr std::size_t kRun = 3;

  /// Adds what must not be seen.
  void add(const Bytes& secret);

  /// The part of a text that gives a run away; empty if none does.
  std::string in(const std::string& text) const;

  /// How each run is searched for, letters small.
  const std::vector<std::string>& renderings() const { return m_vRenderings; }

 private:
  void add_run(const Bytes& run);
  void add_word(const Bytes& word);

  std::vector<std::string> m_vRaw;         // searched for as they are
  std::vector<std::string> m_vRenderings;  // searched for in small letters
};

}  // namespace Osv::privacy
