#include "session/transcript.h"

#include <algorithm>

#include "boundary/boundary_result.h"
#include "closed_libraries/answers.h"
#include "foundation/bitmap.h"
#include "ostrevanhvk3/errors.h"
#include "support/require.h"

namespace Osv::fuzz {
namespace {

namespace error_number = lx::error_number;

/// Numbers that every operation may end with that opens the scanner, which may fail without one.
constexpr long kOpening[] = {
    -1,
    error_number::NotConnected,
    error_number::NoNumber,
    error_number::DeviceIndex,  // a scanner that goes between the list and its choice
    error_number::CalibrationCorrupt,
    error_number::ApiVersion,
};

constexpr long kFailureOfFamily = 1;

bool contains(Transcript::Numbers numbers, long number) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

bool is_told(long number) { return answers().told().contains(number); }

/// Of an operation or a capture that opens the scanner.
bool is_of_opening(long number) {
  return std::find(std::begin(kOpening), std::end(kOpening), number) != std::end(kOpening) ||
         is_told(number);
}

/// The form in which results have it: a refused code is another number there.
bool is_result_of_scanner(long number) {
  if (number == error_number::ScannerAuthorization) {
    return false;
  }
  return is_of_opening(number) ||
         (number == error_number::AuthorizationCode && is_told(error_number::ScannerAuthorization));
}

/// Whether the number behind a reported result is one of those. One that has the reported bit
/// itself looks the same with it or without.
template <typename Is>
bool is_reported(unsigned long result, Is is) {
  const unsigned long without = result & ~error_number::ReportedBit;
  return without != result && (is(static_cast<long>(without)) || is(static_cast<long>(result)));
}

}  // namespace

unsigned long Transcript::note(const char* operation, unsigned long result, bool is_documented) {
  const std::string line = std::string(operation) + ' ' + std::to_string(result);
  m_text += line + '\n';
  require(is_documented, ("the result is documented: " + line).c_str());
  return result;
}

unsigned long Transcript::result(const char* operation, unsigned long result, Numbers documented) {
  const auto is_own = [&](long number) { return contains(documented, number); };
  return note(operation, result, result == 0 || is_reported(result, is_own));
}

unsigned long Transcript::scanner_result(const char* operation, unsigned long result,
                                         Numbers documented) {
  const auto is_known = [&](long number) {
    return contains(documented, number) || is_result_of_scanner(number);
  };
  return note(operation, result, result == 0 || is_reported(result, is_known));
}

unsigned long Transcript::feature_result(const char* operation, unsigned long result,
                                         Numbers documented) {
  const long bare = static_cast<long>(result);
  return note(operation, result,
              result == 0 || bare == error_number::NotConnected || contains(documented, bare) ||
                  is_told(bare) || is_reported(result, is_result_of_scanner));
}

void Transcript::refusal(const char* operation, unsigned long result, unsigned long documented) {
  note(operation, result, result == documented);
}

void Transcript::error(const std::string& text) {
  constexpr char kBefore[] = " error: ";
  m_text += "error " + text + '\n';
  const std::size_t at = text.rfind(kBefore);
  require(at != std::string::npos, "an error names its number");
  const long number = std::stol(text.substr(at + sizeof(kBefore) - 1));
  require(number == 0 || number == kFailureOfFamily || is_of_opening(number), text.c_str());
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
