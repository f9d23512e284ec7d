#include "driver/calibration/calibration_header.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <ctime>

#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

namespace Osv {
namespace {

constexpr unsigned char kVersion = 1;
constexpr unsigned long kDatePosition = 1;
constexpr unsigned long kRevisionPosition = 4;
constexpr unsigned long kLengthPosition = 20;
constexpr unsigned long kDescriptionPosition = 21;
constexpr unsigned long kFixedSize = 25;
constexpr unsigned long kLongestDescription = 255;
constexpr int kFormatError = -1;

[[noreturn]] void throw_corrupt() {
  throw ClHeaderFormatException(lx::error_text::CalibrationIsCorrupt, kFormatError);
}

}  // namespace

const bool SXEndian::m_fIsLittleEndianMachine = std::endian::native == std::endian::little;

void ClKR9CalibrationHeader::ReadFromStream(CXStream* stream, unsigned long size,
                                            unsigned char** data, unsigned int& dataSize) {
  if (size == 0) {
    return;
  }
  m_vBlock.resize(size);
  stream->ReadRaw(m_vBlock.data(), size);
  if (m_vBlock[0] != kVersion) {
    throw ClHeaderFormatException(lx::error_text::CalibrationAreCorrupt, kFormatError);
  }
  if (size < kFixedSize) {
    throw_corrupt();
  }
  const unsigned long position = kDescriptionPosition + m_vBlock[kLengthPosition];
  std::uint32_t found = 0;
  if (position + sizeof(found) > size) {
    throw_corrupt();
  }
  std::memcpy(&found, m_vBlock.data() + position, sizeof(found));
  if (found > size - position - sizeof(found)) {
    throw_corrupt();
  }
  dataSize = found;
  *data = found == 0 ? nullptr : m_vBlock.data() + position + sizeof(found);
}

void ClKR9CalibrationHeader::PutCalibrationData(const unsigned char* data, unsigned int dataSize,
                                                const unsigned char* revision,
                                                const char* description) {
  const unsigned int size = CalculateSize(dataSize, description);
  if (size < dataSize || size < kFixedSize) {
    throw CXMemoryAllocException();  // the block would be longer than its 32-bit size can tell
  }
  m_vBlock.resize(size);
  m_vBlock[0] = kVersion;
  unsigned long position = kDatePosition;
  SetDate(m_vBlock, position);
  std::memcpy(m_vBlock.data() + kRevisionPosition, revision, kRevisionSize);
  position = kLengthPosition;
  if (description != nullptr) {
    const unsigned long length = std::strlen(description);
    if (length > kLongestDescription) {
      throw ClCHeaderDesrcTooLongException("The description is too long.", kFormatError);
    }
    m_vBlock[position++] = static_cast<unsigned char>(length);
    std::memcpy(m_vBlock.data() + position, description, length);
    position += length;
  }
  std::memcpy(m_vBlock.data() + position, &dataSize, sizeof(dataSize));
  if (dataSize != 0) {
    std::memcpy(m_vBlock.data() + position + sizeof(dataSize), data, dataSize);
  }
}

unsigned int ClKR9CalibrationHeader::CalculateSize(unsigned int dataSize,
                                                   const char* description) const {
  const unsigned long length = description == nullptr ? 0 : std::strlen(description);
  return static_cast<unsigned int>(dataSize + kFixedSize + length);
}

void ClKR9CalibrationHeader::SetDate(std::vector<unsigned char>& block,
                                     unsigned long& position) const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  block[position++] = static_cast<unsigned char>(local.tm_mday);
  block[position++] = static_cast<unsigned char>(local.tm_mon + 1);
  block[position++] = static_cast<unsigned char>(local.tm_year);
}

std::string ClKR9CalibrationHeader::GetHeaderVersion() const { return std::to_string(m_vBlock[0]); }

std::string ClKR9CalibrationHeader::Date() const {
  constexpr int kFirstYear = 1900;
  return std::to_string(m_vBlock[kDatePosition]) + '/' +
         std::to_string(m_vBlock[kDatePosition + 1]) + '/' +
         std::to_string(m_vBlock[kDatePosition + 2] + kFirstYear);
}

std::string ClKR9CalibrationHeader::RevisionString() const {
  return {reinterpret_cast<const char*>(m_vBlock.data()) + kRevisionPosition, kRevisionSize};
}

std::string ClKR9CalibrationHeader::Description() const {
  return {reinterpret_cast<const char*>(m_vBlock.data()) + kDescriptionPosition,
          m_vBlock[kLengthPosition]};
}

}  // namespace Osv
