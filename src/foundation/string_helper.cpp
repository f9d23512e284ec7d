#include "foundation/string_helper.h"

namespace Osv::stdstring_helper {
namespace {

constexpr char kLeading[] = " \t";
constexpr char kTrailing[] = " \t\r";

}  // namespace

void trim_left(std::string& text) { text.erase(0, text.find_first_not_of(kLeading)); }

void trim_right(std::string& text) {
  // npos + 1 is 0: nothing to keep.
  text.erase(text.find_last_not_of(kTrailing) + 1);
}

void trim_both(std::string& text) {
  const std::size_t first = text.find_first_not_of(kLeading);
  const std::size_t last = text.find_last_not_of(kTrailing);
  if (first == std::string::npos || last == std::string::npos) {
    text.clear();
  } else {
    // The length counts from the start of the untrimmed text, which is too long by `first`.
    text = text.substr(first, last + 1);
  }
}

}  // namespace Osv::stdstring_helper
