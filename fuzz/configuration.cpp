#include <cctype>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "driver/setting.h"
#include "foundation/config_file.h"
#include "foundation/file.h"
#include "support/failure.h"
#include "support/scratch_file.h"
#include "support/target.h"

/// @file
/// The configuration file: whatever it holds, it is read as a literal reader of its format reads
/// it, and refused with the parser's own numbers only.

namespace Osv::fuzz {
namespace {

using Parameters = std::map<std::string, std::string>;
using Sections = std::map<std::string, Parameters>;
using Failures = std::optional<Failure>;

constexpr int kUnreadable = -1007;
constexpr int kSectionMissing = -1010;
constexpr int kParameterMissing = -1011;
constexpr int kNoBoolean = -1012;
constexpr std::size_t kNowhere = std::string::npos;

// The format, as plainly as it can be said.

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t");
  const std::size_t last = text.find_last_not_of(" \t\r");
  return first == kNowhere || last == kNowhere ? "" : text.substr(first, last + 1);
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

void read_content_line(const std::string& line, Parameters& parameters) {
  const std::string text = trimmed(line.substr(0, line.find('#')));
  const std::size_t equals = text.find('=');
  if (equals != kNowhere) {
    parameters[trimmed(text.substr(0, equals))] = trimmed(text.substr(equals + 1));
  }
}

Sections read_literally(const std::string& text) {
  Sections sections;
  Parameters* current = nullptr;
  for (const std::string& line : lines_of(text)) {
    const std::size_t left = line.find('[');
    if (left == kNowhere || line.find('#') < left) {
      if (current != nullptr) {
        read_content_line(line, *current);
      }
    } else if (const std::size_t right = line.find(']'); left < right) {
      current = &sections[trimmed(line.substr(left + 1, right - 1))];
    }
  }
  return sections;
}

std::string saved_literally(const Parameters& parameters) {
  std::string text;
  for (const auto& [name, value] : parameters) {
    if (!value.empty()) {
      text.append(name).append("\t=\t").append(value).append("\n");
    }
  }
  return text;
}

std::string saved_literally(const Sections& sections) {
  std::string text;
  for (const auto& [name, parameters] : sections) {
    text += "[" + name + "]\n" + saved_literally(parameters);
  }
  return text;
}

/// A line that is taken without trimming; nothing for any other.
std::optional<std::pair<std::size_t, std::string>> untrimmed(const std::string& line) {
  const std::size_t hash = line.find('#');
  const std::size_t equals = line.find('=');
  if (equals == kNowhere || hash <= equals) {
    return std::nullopt;
  }
  return std::pair(equals, line.substr(equals + 1, hash));
}

std::optional<bool> boolean_of(std::string word) {
  static const std::map<std::string, bool> kWords = {{"true", true}, {"1", true},      {"y", true},
                                                     {"on", true},   {"false", false}, {"0", false},
                                                     {"n", false},   {"off", false}};
  for (char& letter : word) {
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  const auto found = kWords.find(word);
  return found == kWords.end() ? std::nullopt : std::optional(found->second);
}

// The comparison.

std::string saved(const CXConfigFile& file) {
  std::ostringstream out;
  file.Save(out);
  return out.str();
}

std::string saved(const CXConfigSection& section) {
  std::ostringstream out;
  section.Save(out);
  return out.str();
}

/// The number with which an action is refused, 0 when it isn't.
template <typename Action>
int refusal(Action action) {
  const Failures failure = failure_of<CXConfigFileParsingException>(action);
  require(!failure || failure->text.size() <= CXOtherException::kMaxText, "a text is cut");
  return failure ? failure->number : 0;
}

void compare_value(const CXConfigSection& section, const std::string& name,
                   const std::string& value) {
  require(section[name] == value, "a value is the one in the file");
  std::string text;
  require(refusal([&] { section.ReadValue(name, text); }) == 0 && text == value, "it reads so");
  bool is_on = false;
  const int number = refusal([&] { section.ReadValue(name, is_on, true); });
  const std::optional<bool> expected = boolean_of(value);
  require(number == (expected ? 0 : kNoBoolean), "only a boolean reads as one");
  require(is_on == expected.value_or(false), "a boolean is what its word says");
}

void compare_absent(const CXConfigFile& file, const Sections& expected) {
  const std::string absent = "no such name\n";  // no line can name it
  require(!expected.contains(absent) && file[absent][absent].empty(), "it is not there");
  require(refusal([&] { (void)file.GetMandatory(absent); }) == kSectionMissing, "it is missed");
  CXConfigFile grown = file;
  require(refusal([&] { grown.GetMandatory(absent); }) == kSectionMissing, "it is missed");
  require(grown[absent][absent].empty() && saved(grown.GetMandatory(absent)).empty(), "it is made");
  std::string text;
  const CXConfigSection section(absent);
  require(refusal([&] { section.ReadValue(absent, text); }) == kParameterMissing, "it is missed");
  section.ReadValue(absent, text, "fallback");
  require(text == "fallback", "a missing value has its fallback");
}

void compare(const CXConfigFile& file, const Sections& expected) {
  require(file.size() == expected.size(), "the sections are those of the file");
  for (const auto& [name, parameters] : expected) {
    const CXConfigSection section = file.GetMandatory(name);
    for (const auto& [parameter, value] : parameters) {
      compare_value(section, parameter, value);
    }
  }
  require(saved(file) == saved_literally(expected), "what is saved is what was read");
  compare_absent(file, expected);
}

CXConfigFile load(const std::string& text) {
  std::istringstream in(text);
  CXConfigFile file;
  file.Load(in);
  require(refusal([&] { file.Load(in); }) == kUnreadable, "a failed stream is refused");
  return file;
}

void read_as_file(Bytes bytes, const std::string& expected) {
  const ScratchFile scratch(bytes);
  CXConfigFile file;
  file.Load(scratch.path());
  require(saved(file) == expected, "a path gives what a stream does");
  lx::CXSetting setting;
  setting.LoadFromFile(scratch.path().c_str());
  setting.LoadFromFile("/nonexistent/file");
  std::vector<unsigned char> content;
  file::ReadBinary(scratch.path().c_str(), content);
  require(std::equal(content.begin(), content.end(), bytes.begin(), bytes.end()),
          "a file is read whole");
  require(refusal([&] { file.Load("/nonexistent/file"); }) == kUnreadable, "it can't be opened");
}

/// The forms without trimming, which no file of the plug-in's own uses.
void read_untrimmed(const std::string& text) {
  CXConfigSection parsed("section");
  Parameters expected;
  Parameters first;
  for (const std::string& line : lines_of(text)) {
    const auto parts = untrimmed(line);
    require(parsed.ParseString(line) == parts.has_value(), "a line is taken or refused");
    if (parts) {
      expected[line.substr(0, parts->first)] = parts->second;
      first.try_emplace(line.substr(0, parts->first - 1), parts->second);
    }
  }
  CXConfigSection loaded("section");
  std::istringstream in(text);
  loaded.Load(in);
  require(saved(parsed) == saved_literally(expected), "lines are taken as they are");
  require(saved(loaded) == saved_literally(first), "a name keeps its first value");
}

}  // namespace

void run(Input input) {
  const Bytes bytes = input.rest();
  const std::string text(bytes.begin(), bytes.end());
  compare(load(text), read_literally(text));
  read_as_file(bytes, saved_literally(read_literally(text)));
  read_untrimmed(text);
}

}  // namespace Osv::fuzz
