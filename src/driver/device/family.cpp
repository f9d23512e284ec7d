#include "driver/device/family.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Osv {
namespace {

constexpr std::array<unsigned char, 8> kSignature = {'C', 'A', 'L', 0, 'G', 'E', 'O', 0};
constexpr std::uint32_t kFirstRead = 46;
constexpr unsigned char kBlockVersion = 1;
constexpr std::size_t kLengthPosition = 20;
constexpr std::int64_t kSignaturePosition = 25;
constexpr std::int64_t kLongestDescription = 127;

/// The beginning of the extended memory. The length byte is signed here, and only here. A negative
/// one moves the comparison to other bytes of the block or before it, so the block has zero bytes
/// in front.
class BlockStart {
 public:
  [[nodiscard]] bool read(ClKR9APILib& api, ScannerHandle handle, std::uint32_t size) {
    return api.ftrScanRestoreExtMemory(handle, block(), 0, size) != 0;
  }

  unsigned char version() const { return m_aMemory[kSignature.size()]; }
  int description_length() const {
    return static_cast<std::int8_t>(m_aMemory[kSignature.size() + kLengthPosition]);
  }
  /// @param length of the description, as the first read gave it: a scanner that answers the second
  ///   one differently must not move the comparison out of the buffer
  bool has_signature(int length) {
    return std::equal(kSignature.begin(), kSignature.end(), block() + length + kSignaturePosition);
  }

 private:
  unsigned char* block() { return m_aMemory.data() + kSignature.size(); }

  std::array<unsigned char,
             kSignature.size() + kSignaturePosition + kLongestDescription + kSignature.size()>
      m_aMemory{};
};

eFamily test_model(ClKR9APILib& api, ScannerHandle handle, FamilyFindings& findings) {
  ftrScanDeviceInfoRecord info{};
  info.nSize = sizeof(info);
  if (api.ftrScanGetDeviceInfo(handle, &info) == 0) {
    return eFamily::NoModel;
  }
  findings.model = info.nModel;
  if (info.nModel != 1 && info.nModel != 4) {
    return eFamily::OtherModel;
  }
  return api.m_nApiLevel == 0 ? eFamily::BaseApi : eFamily::Member;
}

eFamily test_memory_size(ClKR9APILib& api, ScannerHandle handle, FamilyFindings& findings) {
  std::int32_t size = 0;
  if (api.ftrScanGetExtMemorySize(handle, &size) == 0) {
    return eFamily::NoMemorySize;
  }
  findings.memorySize = size;
  return size <= 0 ? eFamily::NoMemory : eFamily::Member;
}

eFamily test_block(ClKR9APILib& api, ScannerHandle handle, FamilyFindings& findings) {
  BlockStart start;
  if (!start.read(api, handle, kFirstRead)) {
    return eFamily::MemoryUnreadable;
  }
  findings.blockVersion = start.version();
  if (start.version() != kBlockVersion) {
    return eFamily::OtherBlockVersion;
  }
  findings.descriptionLength = start.description_length();
  const auto end = static_cast<std::uint64_t>(*findings.descriptionLength + kSignaturePosition +
                                              std::int64_t{kSignature.size()});
  if (end >= static_cast<std::uint64_t>(*findings.memorySize)) {
    return eFamily::BlockTooLong;
  }
  if (end > kFirstRead && !start.read(api, handle, static_cast<std::uint32_t>(end))) {
    return eFamily::BlockUnreadable;
  }
  return start.has_signature(*findings.descriptionLength) ? eFamily::Member : eFamily::NoSignature;
}

}  // namespace

FamilyFindings TestFamily(ClKR9APILib& api, ScannerHandle handle) {
  FamilyFindings findings;
  for (const auto step : {&test_model, &test_memory_size, &test_block}) {
    findings.result = step(api, handle, findings);
    if (findings.result != eFamily::Member) {
      break;
    }
  }
  return findings;
}

}  // namespace Osv
