#include "faults/unplugging.h"

#include <cstddef>

namespace Osv::faults {
namespace {

constexpr std::size_t kBehind = 7;  // steps behind the capture that was met

bool has(const std::string& line, const std::string& text) {
  return line.find(text) != std::string::npos;
}

/// What the client had: the capture that was met, and the steps behind it.
struct Story {
  explicit Story(const std::vector<std::string>& lines) {
    const std::size_t met = lines.size() - kBehind - 1;
    first = lines[met];
    second = lines[met + 1];
    third = lines[met + 2];
    list = lines[met + 3];
    choice = lines[met + 4];
    chosen = lines[met + 5];
    anew = lines[met + 7];
  }

  std::string first;
  std::string second;
  std::string third;
  std::string list;
  std::string choice;  ///< of an interface without a scanner
  std::string chosen;  ///< the capture behind it
  std::string anew;    ///< the capture of a frame grabber that was got anew
};

/// The whole of a start that meets a scanner which went while nothing looked.
bool is_told_by_preparation(const std::string& capture) {
  return has(capture, ": 0x0 start error(Couldn't read the image size of scanner. error: 2) stop ");
}

bool is_refused_start(const std::string& capture) { return has(capture, ": 0x10000002  '"); }

/// Where the scanner is closed, a start captures if there is one, and is refused if not.
bool is_right_behind_closing(const std::string& capture, eReturn comes_back) {
  return comes_back == eReturn::Never ? is_refused_start(capture) : is_good_capture(capture);
}

/// An opening that the unplugging meets fails, or comes to its end with what it has read before.
bool is_right_behind(const Story& story, const Incident& incident) {
  const bool closed = is_right_behind_closing(story.second, incident.comes_back) &&
                      is_right_behind_closing(story.third, incident.comes_back);
  const bool told_again = is_told_by_preparation(story.second) && story.third == story.second;
  if (incident.opening) {
    return told_again || closed;
  }
  return noticed(story.first) == eNoticed::OnAFrame ? closed : told_again;
}

/// The list behind it. A unit that has moved or was replaced is a ghost where it was.
std::string in_list(eReturn comes_back) {
  switch (comes_back) {
    case eReturn::Never:
      return "0x0  '";
    case eReturn::Here:
      break;
    case eReturn::Elsewhere:
      return "0x0 " + listed_in_words(kElsewhere, serial_of(0)) + " '";
    case eReturn::Another:
      return "0x0 " + listed_in_words(0, kSerialOfAnother) + " '";
  }
  return "0x0 0  '";
}

}  // namespace

bool is_disconnection(const std::string& capture) {
  return has(capture, "error(KR9 scanner is disconnected from the host, error: 2 error: 2) stop ");
}

bool is_good_capture(const std::string& capture) {
  return has(capture, ": 0x0 start ") && (has(capture, " live ") || has(capture, " finger ")) &&
         !has(capture, "error(") && has(capture, "stop ");
}

eNoticed noticed(const std::string& capture) {
  const bool prepares = has(capture, "error(Couldn't read the image size of scanner. error: 2) ") ||
                        has(capture, "error(Capture raw image failed. error: 2) ");
  const bool tells_nothing = is_good_capture(capture) ||
                             has(capture, "error(KR9 scanner. Scanner error: 1460 error: 1460) ");
  return tells_nothing               ? eNoticed::NotYet
         : is_disconnection(capture) ? eNoticed::OnAFrame
         : prepares                  ? eNoticed::InPreparation
                                     : eNoticed::WhileOpening;
}

const std::string& met_capture(const std::vector<std::string>& lines) {
  return lines[lines.size() - kBehind - 1];
}

std::string findings_of_unplugging(const std::vector<std::string>& lines,
                                   const Incident& incident) {
  const Story story(lines);
  const eReturn comes_back = incident.comes_back;
  std::string findings;
  const auto require = [&](bool holds, const char* what, const std::string& line) {
    if (!holds) {
      findings += std::string("  ") + what + ": " + line + "\n";
    }
  };
  require(is_right_behind(story, incident), "the next starts are wrong",
          story.first + "\n" + story.second + "\n" + story.third);
  require(has(story.list, in_list(comes_back)), "the list is wrong", story.list);
  require(has(story.choice, ": 0x1000001b "), "the choice is not refused", story.choice);
  require(is_right_behind_closing(story.chosen, comes_back), "the choice does not help",
          story.chosen);
  require(is_right_behind_closing(story.anew, comes_back), "got anew", story.anew);
  return findings;
}

}  // namespace Osv::faults
