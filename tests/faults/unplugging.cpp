#include "faults/unplugging.h"

#include <cstddef>

namespace Osv::faults {
namespace {

bool has(const std::string& line, const char* text) { return line.find(text) != std::string::npos; }

/// What the client had: the capture that was met, and the steps behind it.
struct Story {
  explicit Story(const std::vector<std::string>& lines) {
    constexpr std::size_t kBehind = 7;
    const std::size_t met = lines.size() - kBehind - 1;
    first = lines[met];
    second = lines[met + 1];
    third = lines[met + 2];
    list = lines[met + 3];
    chosen = lines[met + 5];
    anew = lines[met + 7];
  }

  std::string first;
  std::string second;
  std::string third;
  std::string list;
  std::string chosen;  ///< the capture behind the choice of another interface
  std::string anew;    ///< the capture of a frame grabber that was got anew
};

/// Noticed by the preparation: told at each start.
bool is_told_again(const Story& story) {
  return has(story.second, "Couldn't read the image size of scanner. error: 2") &&
         story.third == story.second;
}

const char* in_list(eReturn comes_back) {
  switch (comes_back) {
    case eReturn::Never:
      return "0x0  '";
    case eReturn::Here:
      return "0x0 0  '";
    case eReturn::Elsewhere:
      break;
  }
  return "0x0 3  '";
}

}  // namespace

bool is_disconnection(const std::string& capture) {
  return has(capture, "error(KR9 scanner is disconnected from the host, error: 2 error: 2) stop ");
}

bool is_good_capture(const std::string& capture) {
  return has(capture, " live ") && !has(capture, "error(") && has(capture, "stop ");
}

std::string findings_of_unplugging(const std::vector<std::string>& lines, eReturn comes_back) {
  const Story story(lines);
  std::string findings;
  const auto require = [&](bool holds, const char* what, const std::string& line) {
    if (!holds) {
      findings += std::string("  ") + what + ": " + line + "\n";
    }
  };
  const bool back = comes_back == eReturn::Here;
  if (back && is_disconnection(story.first)) {
    require(is_good_capture(story.second), "the next start does not capture", story.second);
  }
  if (back && has(story.first, "Capture raw image failed. error: 2")) {
    require(is_told_again(story), "the next starts do not tell it", story.second + story.third);
  }
  if (back) {
    require(is_good_capture(story.chosen), "a choice does not help", story.chosen);
  }
  require(has(story.list, in_list(comes_back)), "the list is wrong", story.list);
  require(is_good_capture(story.anew) == (comes_back != eReturn::Never), "got anew", story.anew);
  return findings;
}

}  // namespace Osv::faults
