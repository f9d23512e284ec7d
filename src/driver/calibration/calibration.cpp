#include "driver/calibration/calibration.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "driver/calibration/calibration_header.h"
#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "foundation/file.h"
#include "foundation/image_functions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr long kBufferTooSmall = -21;
constexpr long kOptionUnknown = -37;
constexpr int kNoSize = -1;
constexpr unsigned long kFilePreamble = 100;
constexpr unsigned long kOptionLength = 10;
constexpr int kDeepest = 32;  // bits per pixel

/// Far above any scanner's memory: a scanner that reports more is not to be believed.
constexpr int kLargestMemory = 64 << 20;

[[noreturn]] void throw_corrupt() {
  OSV_LOG(OsvLFError, error_text::CalibrationIsCorrupt);
  throw ClLXException(error_text::CalibrationIsCorrupt, error_number::CalibrationCorrupt);
}

[[noreturn]] void throw_no_size() {
  throw ClLXException("The Calibrate methode return the output bitmap size 0", kNoSize);
}

/// True when the block that the engine wrote lies within the `size` bytes that it had, by both ways
/// of counting its palette, and each pixel has a byte of its row at least. The first conditions
/// keep its size from overflowing.
bool fits(const tagBITMAPINFOHEADER* block, unsigned long size) {
  return size >= sizeof(tagBITMAPINFOHEADER) && block->biWidth >= 0 && block->biHeight >= 0 &&
         block->biBitCount <= kDeepest && block->biClrUsed <= size &&
         img::bmp_size(block) <= size && utilities::ClSimpleBitmap::FullSize(block) <= size &&
         static_cast<unsigned long>(block->biWidth) <= img::bmp_bpr(block);
}

unsigned long memory_size(ClFutronicBaseSDK& scanner) {
  int size = 0;
  if (!scanner.GetEPROMSize(&size)) {
    const unsigned long error = scanner.GetLastError();
    OSV_LOG(OsvLFError, "Reading of the KR9 scanner memory failed. Error number: 0x%x",
            static_cast<unsigned int>(error));
    throw ClLXException("Read the scanner memory size failed.", static_cast<int>(error));
  }
  if (size < 0 || size > kLargestMemory) {
    throw_corrupt();
  }
  return static_cast<unsigned long>(size);
}

}  // namespace

CXCalibration::CXCalibration(ClFutronicBaseSDK& scanner)
    : m_pCalLib(std::make_unique<CXCalDynamicLib>()) {
  OSV_LOG(OsvLFTrace, "Reading of the calibration data from KR9 scanner.");
  auto engine = std::make_unique<CXCalibrationHandle>(*m_pCalLib);
  ClKR9CalibrationHeader header;
  if (!scanner.IsKR9Scanner(nullptr)) {
    throw_corrupt();
  }
  const unsigned long size = memory_size(scanner);
  unsigned char* data = nullptr;
  unsigned int dataSize = 0;
  header.ReadFromStream(&scanner, size, &data, dataSize);
  if (dataSize == 0 || data == nullptr) {
    throw_corrupt();
  }
  m_sRevision = header.RevisionString();
  GiveData(std::move(engine), data, dataSize);
}

CXCalibration::CXCalibration(const char* fileName)
    : m_pCalLib(std::make_unique<CXCalDynamicLib>()) {
  auto engine = std::make_unique<CXCalibrationHandle>(*m_pCalLib);
  std::vector<unsigned char> content;
  file::ReadBinary(fileName, content);
  if (content.size() < kFilePreamble) {
    throw_corrupt();
  }
  GiveData(std::move(engine), content.data() + kFilePreamble, content.size() - kFilePreamble);
}

void CXCalibration::GiveData(std::unique_ptr<CXCalibrationHandle> engine, const unsigned char* data,
                             unsigned long size) {
  CheckCalibrateError(CXCalDynamicLib::Alone(
      [&] { return m_pCalLib->CalibrateSetData(engine->get(), data, size); }));
  m_pCalHandle = std::move(engine);
}

unsigned long CXCalibration::ResultImageSize(tagBITMAPINFOHEADER* input, unsigned long inputSize) {
  unsigned long outputSize = 0;
  const long code = CXCalDynamicLib::Alone([&] {
    return m_pCalLib->Calibrate(m_pCalHandle->get(), input, inputSize, nullptr, &outputSize);
  });
  if (code != kBufferTooSmall) {
    CheckCalibrateError(code);
  }
  if (outputSize == 0) {
    OSV_LOG(OsvLFError, "KR9 scanner. The calibrate methode returns bitmap size zero.");
    throw_no_size();
  }
  return outputSize;
}

void CXCalibration::CalibrateBitmap(tagBITMAPINFOHEADER* input, unsigned long inputSize,
                                    tagBITMAPINFOHEADER* output, unsigned long* outputSize) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calibrate, a image size: %d", static_cast<int>(inputSize));
  const unsigned long capacity = *outputSize;
  const long code = CXCalDynamicLib::Alone([&] {
    return m_pCalLib->Calibrate(m_pCalHandle->get(), input, inputSize, output, outputSize);
  });
  // The engine's word on a size that it needs must not become the size of this buffer.
  *outputSize = std::min(*outputSize, capacity);
  CheckCalibrateError(code);
  if (!fits(output, capacity)) {
    throw_no_size();
  }
}

bool CXCalibration::IsSensitiveMode() {
  constexpr std::array<char, 8> kEnabled = {'E', 'n', 'a', 'b', 'l', 'e', 'd', '\0'};
  std::array<char, 64> value{};  // longer than the engine is told
  unsigned long length = kOptionLength;
  const long code = CXCalDynamicLib::Alone([&] {
    return m_pCalLib->CalibrateGetOption(m_pCalHandle->get(), "SensitiveMode", value.data(),
                                         &length);
  });
  if (code == kOptionUnknown) {
    return false;
  }
  CheckCalibrateError(code);
  return std::equal(kEnabled.begin(), kEnabled.end(), value.begin());
}

void CXCalibration::EnableSensitiveMode(bool enable) {
  SetOption(enable ? "SensitiveMode=true" : "SensitiveMode=false");
}

void CXCalibration::EnableDynCalibration(bool enable) {
  // The blanks belong to this option and are not in the other one.
  SetOption(enable ? "DynamicFingerMask = true" : "DynamicFingerMask = false");
}

void CXCalibration::SetOption(const char* option) {
  CheckCalibrateError(CXCalDynamicLib::Alone(
      [&] { return m_pCalLib->CalibrateSetOption(m_pCalHandle->get(), option); }));
}

double CXCalibration::ContaminationDetection(tagBITMAPINFOHEADER* bitmap) {
  double level = 0.0;
  CheckCalibrateError(CXCalDynamicLib::Alone([&] {
    return m_pCalLib->ContaminationDetection(m_pCalHandle->get(), bitmap, img::bmp_size(bitmap),
                                             &level);
  }));
  return level;
}

void CXCalibration::CheckCalibrateError(long code) const {
  if (code == 0) {
    return;
  }
  std::string description;
  std::string message;
  CXCalDynamicLib::Alone([&] {
    // Without a text the whole message stays empty, the code included.
    if (const char* const text = m_pCalLib->CalibrateGetErrorDescription(code); text != nullptr) {
      description = text;
      message = description + " Error domain [ CAL ]. Error code [ " + std::to_string(code) + " ]";
    }
  });
  OSV_LOG(OsvLFError, "KR9 scanner. Calibration error. Number: 0x%x, Description: %s ",
          static_cast<unsigned int>(code), description.c_str());
  throw ClLXException(message.c_str(), static_cast<int>(code));
}

}  // namespace Osv::lx
