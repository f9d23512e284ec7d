#include "view/shortening.h"

#include <vector>

namespace hvk3::view {
namespace {

/// Where the characters begin, and the end of the last one.
std::vector<std::size_t> find_characters(const std::string& text) {
  constexpr unsigned char kContinuation = 0x80;
  constexpr unsigned char kContinuationMask = 0xC0;
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 0 || (static_cast<unsigned char>(text[i]) & kContinuationMask) != kContinuation) {
      places.push_back(i);
    }
  }
  places.push_back(text.size());
  return places;
}

}  // namespace

std::string shorten(const std::string& text, const std::function<bool(const std::string&)>& fits) {
  if (fits(text)) {
    return text;
  }
  const std::vector<std::size_t> places = find_characters(text);
  const auto keep = [&](std::size_t count) {
    const std::size_t tail = count / 2;
    return text.substr(0, places[count - tail]) + "..." +
           text.substr(places[places.size() - 1 - tail]);
  };
  std::size_t good = 0;
  std::size_t bad = places.size() - 1;
  while (good + 1 < bad) {
    const std::size_t middle = (good + bad) / 2;
    (fits(keep(middle)) ? good : bad) = middle;
  }
  return keep(good);
}

}  // namespace hvk3::view
