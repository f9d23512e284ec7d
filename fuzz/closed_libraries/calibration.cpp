#include "libraries/calibration_api.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"
#include "support/input.h"
#include "support/require.h"

/// @file
/// The calibration engine. It looks at every byte that it is given, and writes every byte of what
/// it says that it has written.

namespace Osv::fuzz {
namespace {

constexpr long kGood = 0;
constexpr long kSmallBuffer = -21;
constexpr long kNoOption = -37;
constexpr unsigned long kHeaderSize = sizeof(tagBITMAPINFOHEADER);
constexpr unsigned long kPaletteSize = 1024;

/// What a call answers for a fault other than an odd one; 0 without.
long code_of(const Fault& fault) {
  return fault.kind == eFault::Fails ? answers().tell(Answers::code(fault.value)) : kGood;
}

/// A sum over a whole input, so that a sanitizer sees each byte of it read. Rows that are no
/// multiple of 4 bytes have padding that no scanner fills: they make no difference.
unsigned int digest(const tagBITMAPINFOHEADER* bitmap, unsigned long size) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(bitmap);
  unsigned int sum = 0;
  for (unsigned long i = 0; i < size; ++i) {
    sum = sum * 31 + bytes[i];
  }
  return bitmap->biWidth % 4 == 0 ? sum : 0;
}

tagBITMAPINFOHEADER corrected_header(const tagBITMAPINFOHEADER& raw) {
  tagBITMAPINFOHEADER bi = raw;
  bi.biWidth = std::max(raw.biWidth - 3, 1);
  bi.biHeight = std::max(raw.biHeight - 2, 1);
  bi.biXPelsPerMeter = 19685;
  bi.biYPelsPerMeter = 19685;
  return bi;
}

unsigned long size_of(const tagBITMAPINFOHEADER& bi) {
  const auto stride = (static_cast<unsigned long>(bi.biWidth) + 3) / 4 * 4;
  return kHeaderSize + kPaletteSize + stride * static_cast<unsigned long>(bi.biHeight);
}

void write(tagBITMAPINFOHEADER* output, unsigned long size, const tagBITMAPINFOHEADER& bi,
           unsigned int fill) {
  std::memset(output, static_cast<int>(fill % 256), size);
  std::memcpy(output, &bi, std::min(size, kHeaderSize));
}

/// A header that is not what the buffer holds, but for where its value happens to fit.
tagBITMAPINFOHEADER odd_header(tagBITMAPINFOHEADER bi, std::uint32_t value) {
  const auto number = static_cast<std::int32_t>(value >> 3);
  switch (value % 8) {
    case 0:
      bi.biWidth = number;
      break;
    case 1:
      bi.biHeight = number;
      break;
    case 2:
      bi.biBitCount = static_cast<std::uint16_t>(number);
      break;
    case 3:
      bi.biClrUsed = static_cast<std::uint32_t>(number) % 2048;
      break;
    case 4:
      bi.biCompression = 3;
      bi.biBitCount = static_cast<std::uint16_t>(number % 40);
      bi.biClrUsed = static_cast<std::uint32_t>(number) >> 8;
      break;
    case 5:
      bi.biWidth = -number;
      bi.biHeight = -number;
      break;
    case 6:
      bi.biYPelsPerMeter = number;
      bi.biHeight = number % 200;
      break;
    default:
      bi.biClrUsed = value;
  }
  return bi;
}

/// Writes the whole buffer with a header of its own, and says what it likes about the size.
long odd_image(const tagBITMAPINFOHEADER& raw, tagBITMAPINFOHEADER* output, unsigned long* size,
               std::uint32_t value) {
  if (output != nullptr) {
    write(output, *size, odd_header(corrected_header(raw), value), value);
  }
  if (value % 16 >= 8) {
    *size = std::uint64_t{value} << (value % 33);
  }
  return kGood;
}

/// A text of each length that somebody may cut at, or none.
const char* odd_text(std::uint32_t value) {
  constexpr std::array<std::size_t, 4> kLengths = {0, 1023, 1024, 5000};
  static std::string text;
  const std::uint32_t choice = value % (kLengths.size() + 1);
  if (choice == kLengths.size()) {
    return nullptr;
  }
  text.assign(kLengths[choice], '%');
  return text.c_str();
}

}  // namespace
}  // namespace Osv::fuzz

using namespace Osv::fuzz;

void* CalibrateCreate() {
  const Fault fault = answers().next(__func__);
  return fault.kind == eFault::None ? scene().create_engine() : nullptr;
}

void CalibrateDelete(void** engine) {
  answers().next(__func__);
  scene().destroy_engine(*engine);
  *engine = nullptr;
}

long Calibrate(void* engine, tagBITMAPINFOHEADER* input, unsigned long input_size,
               tagBITMAPINFOHEADER* output, unsigned long* output_size) {
  const Fault fault = answers().next(__func__);
  scene().require_engine(engine);
  const unsigned int fill = digest(input, input_size);
  if (fault.kind == eFault::Fails) {
    return code_of(fault);
  }
  if (fault.kind == eFault::Odd) {
    return odd_image(*input, output, output_size, fault.value);
  }
  const tagBITMAPINFOHEADER bi = corrected_header(*input);
  const bool fits = output != nullptr && *output_size >= size_of(bi);
  *output_size = size_of(bi);
  if (!fits) {
    return answers().tell(kSmallBuffer);
  }
  write(output, *output_size, bi, fill);
  return kGood;
}

long CalibrateSetData(void* engine, const unsigned char* data, unsigned long size) {
  const Fault fault = answers().next(__func__);
  scene().require_engine(engine);
  const std::string copy(data, data + size);
  return code_of(fault);
}

const char* CalibrateGetErrorDescription(long) {
  const Fault fault = answers().next(__func__);
  return fault.kind == eFault::None ? "the engine refuses" : odd_text(fault.value);
}

long ContaminationDetection(void* engine, tagBITMAPINFOHEADER* bitmap, unsigned long size,
                            double* percent) {
  const Fault fault = answers().next(__func__);
  scene().require_engine(engine);
  *percent = fault.kind == eFault::Odd ? std::nan("") : digest(bitmap, size) % 100;
  return code_of(fault);
}

long CalibrateSetOption(void* engine, const char*) {
  const Fault fault = answers().next(__func__);
  scene().require_engine(engine);
  return code_of(fault);
}

/// An odd one fills the whole buffer, with no zero behind it.
long CalibrateGetOption(void* engine, const char*, char* value, unsigned long* length) {
  constexpr char kEnabled[] = "Enabled";
  const Fault fault = answers().next(__func__);
  scene().require_engine(engine);
  if (fault.kind == eFault::Odd) {
    std::memset(value, 'E', *length);
    *length = std::uint64_t{fault.value} << 16;
    return fault.value % 2 == 0 ? kGood : answers().tell(kNoOption);
  }
  std::memcpy(value, kEnabled, sizeof(kEnabled));
  *length = sizeof(kEnabled);
  return code_of(fault);
}
