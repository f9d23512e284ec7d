#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "hvk3/command_line.h"
#include "hvk3/failure.h"
#include "hvk3/image_file.h"
#include "hvk3/secret.h"
#include "support/scratch_file.h"
#include "support/target.h"

/// @file
/// The tool's command line, and the files with secrets that it names: whatever they hold, the tool
/// refuses them as a wrong usage, or keeps what it promises of its options.

namespace Osv::fuzz {
namespace {

constexpr std::size_t kMostWords = 40;

/// Words that are separated by line ends, behind the program's name.
std::vector<std::string> read_words(Input& input) {
  std::vector<std::string> words = {"hvk3"};
  const Bytes text = input.rest();
  std::string word;
  for (const std::uint8_t letter : text) {
    if (letter == '\n' && words.size() < kMostWords) {
      words.push_back(word);
      word.clear();
    } else if (letter != 0) {  // ends an argument of a program
      word += static_cast<char>(letter);
    }
  }
  if (!word.empty()) {
    words.push_back(word);
  }
  return words;
}

void require_ranges(const hvk3::Options& options) {
  constexpr unsigned int kMost = 1000000;
  constexpr unsigned int kInterfaces = 128;
  require(options.count >= 1 && options.count <= kMost, "a count lies within its limits");
  require(options.settle >= 1 && options.settle <= kMost, "the settling lies within its limits");
  require(options.timeout >= 0 && options.timeout <= kMost, "a timeout lies within its limits");
  require(options.hold >= 0 && options.hold <= kMost, "a time lies within its limits");
  require(options.level == 1 || options.level == 2, "a level is one of two");
  require(options.device.value_or(0) < kInterfaces, "an interface is there");
  require(options.record.quality.value_or(0) <= 100, "a quality lies within its limits");
  require(options.record.device_id <= 65535, "an identifier has two bytes");
  require(options.scene.scanners <= kInterfaces, "the scanners have interfaces");
  require(options.scene.pace <= 1000, "a pace lies within its limits");
}

void require_choices(const hvk3::Command& command, const hvk3::Options& options) {
  const bool is_secret = std::string(command.name).starts_with("secret");
  require(is_secret || options.out.empty() || hvk3::is_image_path(options.out),
          "an image has a format");
  require(!options.show || !options.json, "a picture is not part of an object");
  require(options.scene.faults.empty() || options.simulate, "a scene belongs to a simulation");
  for (const hvk3::Setting& setting : options.settings) {
    require(!setting.property.name.empty(), "a setting has a property");
  }
}

/// The tool's own way to deal with a line, but for what the command does.
void parse(const std::vector<std::string>& words) {
  hvk3::CommandLine line;
  try {
    line.parse(words);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream problem;
    const int status = line.app().exit(error, out, problem);
    require((status == 0) == problem.str().empty(), "what is wrong is told");
    return;
  }
  const hvk3::CommandLine::Choice choice = line.choice();
  require_ranges(choice.options);
  require_choices(choice.command, choice.options);
  require(choice.command.takes_program == !choice.options.recording.program.empty(),
          "a program is where one is taken");
}

int digit_in(unsigned char letter) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::size_t place = kDigits.find(static_cast<char>(std::tolower(letter)));
  return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

/// Seven bytes, or pairs of digits with any space between; nothing for what is no secret.
std::optional<std::vector<unsigned char>> secret_in(Bytes content, bool hex) {
  constexpr std::size_t kMostRead = 4096;
  std::vector<unsigned char> bytes(
      content.begin(),
      content.begin() + static_cast<std::ptrdiff_t>(std::min(content.size(), kMostRead)));
  if (hex) {
    std::erase_if(bytes, [](unsigned char letter) { return std::isspace(letter) != 0; });
    if (bytes.size() % 2 != 0 || std::any_of(bytes.begin(), bytes.end(), [](unsigned char letter) {
          return digit_in(letter) < 0;
        })) {
      return std::nullopt;
    }
    for (std::size_t i = 0; i < bytes.size() / 2; ++i) {
      bytes[i] =
          static_cast<unsigned char>(16 * digit_in(bytes[2 * i]) + digit_in(bytes[2 * i + 1]));
    }
    bytes.resize(bytes.size() / 2);
  }
  return bytes.size() == hvk3::SecretBytes::kSize ? std::optional(bytes) : std::nullopt;
}

void read_secret(Input& input) {
  const bool hex = input.below(2) != 0;
  const Bytes content = input.rest();
  const ScratchFile file(content);
  hvk3::SecretReader reader(hex);
  try {
    const hvk3::SecretBytes secret = reader.read("--code", file.path());
    const std::vector<unsigned char> bytes(secret.data(), secret.data() + hvk3::SecretBytes::kSize);
    require(bytes == secret_in(content, hex), "a secret is what the file holds");
    require(secret.hex().size() == 2 * bytes.size(), "and is told whole");
    reader.finish();
  } catch (const hvk3::Failure& failure) {
    require(failure.status() == hvk3::ExitStatus::Usage, "a bad secret is a wrong usage");
    require(!secret_in(content, hex).has_value(), "a good one is none");
  }
}

}  // namespace

/// The first byte chooses: arguments, one a line, or the content of a file with a secret.
void run(Input input) {
  if (input.byte() % 4 == 3) {
    read_secret(input);
  } else {
    parse(read_words(input));
  }
}

}  // namespace Osv::fuzz
