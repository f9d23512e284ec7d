#include "session/transcript.h"

#include <algorithm>

#include "boundary/boundary_result.h"
#include "closed_libraries/answers.h"
#include "foundation/bitmap.h"
#include "ostrevanhvk3/errors.h"
#include "support/require.h"

namespace Osv::fuzz {
namespace {

/// Numbers that every operation may end with: opening the scanner, and failures without a number.
constexpr long kEverywhere[] = {
    -1,
    lx::error_number::NotConnected,
    lx::error_number::NoNumber,
    lx::error_number::DeviceIndex,  // a scanner that goes between the list and its choice
    lx::error_number::CalibrationCorrupt,
    lx::error_number::ApiVersion,
    lx::error_number::AuthorizationCode,
};

bool is_documented(long number, Transcript::Numbers documented) {
  return std::find(std::begin(kEverywhere), std::end(kEverywhere), number) !=
             std::end(kEverywhere) ||
         std::find(documented.begin(), documented.end(), number) != documented.end() ||
         answers().told().contains(number);
}

/// A number that has the reported bit itself looks the same with it or without.
bool is_documented_result(unsigned long result, Transcript::Numbers documented) {
  const unsigned long without = result & ~lx::error_number::ReportedBit;
  return is_documented(static_cast<long>(without), documented) ||
         is_documented(static_cast<long>(result), documented);
}

}  // namespace

unsigned long Transcript::result(const char* operation, unsigned long result, Numbers documented) {
  const bool reported = result == 0 || (result & lx::error_number::ReportedBit) != 0;
  require(reported, (std::string("the result is a reported one: ") + operation).c_str());
  return bare_result(operation, result, documented);
}

unsigned long Transcript::bare_result(const char* operation, unsigned long result,
                                      Numbers documented) {
  const std::string line = std::string(operation) + ' ' + std::to_string(result);
  m_text += line + '\n';
  require(result == 0 || is_documented_result(result, documented),
          ("the result is documented: " + line).c_str());
  return result;
}

void Transcript::error(const std::string& text, Numbers documented) {
  constexpr char kBefore[] = " error: ";
  m_text += "error " + text + '\n';
  const std::size_t at = text.rfind(kBefore);
  require(at != std::string::npos, "an error names its number");
  const long number = std::stol(text.substr(at + sizeof(kBefore) - 1));
  require(number == 0 || is_documented(number, documented), text.c_str());
}

void Transcript::output(const void* bytes, std::size_t size) {
  m_text.append(static_cast<const char*>(bytes), size);
}

void Transcript::image(const unsigned char* block) {
  require(block != nullptr, "an image is there");
  output(block,
         utilities::ClSimpleBitmap::FullSize(reinterpret_cast<const tagBITMAPINFOHEADER*>(block)));
}

}  // namespace Osv::fuzz
