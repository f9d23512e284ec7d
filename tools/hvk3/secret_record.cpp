#include "hvk3/secret_record.h"

#include <cstring>

#include <algorithm>
#include <optional>

#include "hvk3/failure.h"
#include "ostrevanhvk3/feature.h"

namespace hvk3 {
namespace {

/// Code and bytes as the feature carries them, wiped when they go.
class Record {
 public:
  Record(const SecretBytes& code, const SecretBytes& bytes) {
    std::copy_n(code.data(), SecretBytes::kSize, m_aBytes.data());
    std::copy_n(bytes.data(), SecretBytes::kSize, m_aBytes.data() + SecretBytes::kSize);
  }
  ~Record() { ::explicit_bzero(m_aBytes.data(), m_aBytes.size()); }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;

  unsigned char* data() { return m_aBytes.data(); }
  std::size_t size() const { return m_aBytes.size(); }

  SecretBytes bytes() const {
    SecretBytes result;
    std::copy_n(m_aBytes.data() + SecretBytes::kSize, SecretBytes::kSize, result.data());
    return result;
  }

 private:
  std::array<unsigned char, 2 * SecretBytes::kSize> m_aBytes = {};
};

/// What the scanner makes of a buffer filled with one value, none if it leaves it alone.
std::optional<SecretBytes> read_over(Plugin& plugin, const SecretBytes& code, unsigned char fill) {
  SecretBytes before;
  std::fill_n(before.data(), SecretBytes::kSize, fill);
  Record record(code, before);
  read_feature_bytes(plugin, eFeatureSecretBytes, record.data(), record.size());
  const SecretBytes after = record.bytes();
  const bool same = std::equal(after.data(), after.data() + SecretBytes::kSize, before.data());
  return same ? std::nullopt : std::optional(after);
}

}  // namespace

SecretBytes read_protected(Plugin& plugin, const SecretBytes& code) {
  // A library that fails without a reason lets the call succeed and leaves the buffer alone; bytes
  // that look like one filling differ from the other.
  constexpr unsigned char kOtherFill = 0xFF;
  if (const auto bytes = read_over(plugin, code, 0)) {
    return *bytes;
  }
  if (const auto bytes = read_over(plugin, code, kOtherFill)) {
    return *bytes;
  }
  throw Failure(ExitStatus::ScannerFailed, "the scanner gives no protected bytes");
}

void write_protected(Plugin& plugin, const SecretBytes& code, const SecretBytes& bytes) {
  Record record(code, bytes);
  set_feature_bytes(plugin, eFeatureSecretBytes, record.data(), record.size());
}

}  // namespace hvk3
