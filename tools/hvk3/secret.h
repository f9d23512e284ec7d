#pragma once

#include <array>
#include <string>
#include <string_view>

#include "hvk3/feature.h"

/// @file
/// The protected bytes of a scanner and their authorization code. They come from files or standard
/// input, never from the command line, which everybody on the machine can read.

namespace hvk3 {

/// Seven bytes that are wiped when they go.
class SecretBytes {
 public:
  static constexpr std::size_t kSize = 7;

  SecretBytes() = default;
  ~SecretBytes();
  SecretBytes(const SecretBytes&) = default;
  SecretBytes& operator=(const SecretBytes&) = default;

  unsigned char* data() { return m_aBytes.data(); }
  const unsigned char* data() const { return m_aBytes.data(); }

  /// 14 hexadecimal digits.
  std::string hex() const;

 private:
  std::array<unsigned char, kSize> m_aBytes = {};
};

/// Takes secrets out of files and standard input.
class SecretReader {
 public:
  /// @param hex each secret is written as 14 hexadecimal digits; blanks and line ends don't count
  explicit SecretReader(bool hex) : m_bHex(hex) {}

  /// The only secret of a file, or the next one of standard input for "-".
  /// @param option names the source in a failure: somebody may have given the bytes for the path
  /// @throws Failure `Usage`
  SecretBytes read(const char* option, const std::string& path);

  /// @throws Failure `Usage` when standard input holds more than was taken
  void finish() const;

 private:
  SecretBytes take(std::string& content, const std::string& source) const;

  const bool m_bHex;
  bool m_bInputRead = false;
  std::string m_sInput;  // of standard input, what is left
};

/// @throws Failure `Usage` for a feature that carries secrets, whatever it is named for
void refuse_secret(const FeatureDescription& feature);

}  // namespace hvk3
