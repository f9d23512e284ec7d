#include "hvk3/property.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>

#include "hvk3/failure.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

using Words = std::map<std::string, unsigned int>;

std::optional<unsigned int> to_number(const std::string& word) {
  unsigned int number = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

const Words& words_of(ePropertyValues values) {
  static const std::map<ePropertyValues, Words> kWords = {
      {ePropertyValues::Number, {}},
      {ePropertyValues::Switch, {{"off", 0}, {"on", 1}}},
      {ePropertyValues::Security, {{"off", 0}, {"on", 1}, {"level-1", 1}, {"level-2", 2}}}};
  return kWords.at(values);
}

std::string join_words(const Words& words) {
  std::string line = "a number";
  for (const auto& [word, value] : words) {
    line += ", " + word;
  }
  return line;
}

}  // namespace

const std::vector<Property>& known_properties() {
  using enum ePropertyValues;
  static const std::vector<Property> kProperties = {
      {ePropChannelCount, "channels", "number of channels", false, Number},
      {ePropLiveliness, "liveness", "fake finger detection", true, Security},
      {ePropRedLED, "red-led", "red LED", true, Switch},
      {ePropGreenLED, "green-led", "green LED", true, Switch},
      {ePropFakeDetection, "threshold", "score up to which a finger is a fake", true, Number},
      {ePropLowContrastImage, "low-contrast", "images for fingers of low contrast", true, Switch}};
  return kProperties;
}

Property find_property(const std::string& word) {
  const std::optional<unsigned int> number = to_number(word);
  const std::vector<Property>& known = known_properties();
  const auto found = std::find_if(known.begin(), known.end(), [&](const Property& property) {
    return property.name == word || property.id == number;
  });
  if (found != known.end()) {
    return *found;
  }
  if (!number) {
    throw Failure(ExitStatus::Usage, "no property '" + word + "'");
  }
  return {static_cast<ePropertyIDs>(*number), word, "", true, ePropertyValues::Number};
}

unsigned int parse_value(const Property& property, const std::string& word) {
  const Words& words = words_of(property.values);
  if (const auto found = words.find(word); found != words.end()) {
    return found->second;
  }
  if (const std::optional<unsigned int> number = to_number(word)) {
    return *number;
  }
  throw Failure(ExitStatus::Usage,
                "'" + word + "' is no value of " + property.name + ": " + join_words(words));
}

std::string meaning_of(const Property& property, unsigned int value) {
  if (property.values == ePropertyValues::Number) {
    return "";
  }
  return value == 0 ? "off" : "on";
}

unsigned int read_property(Osv::lx::ClFramegrabber& grabber, const Property& property) {
  unsigned int value = 0;
  check(grabber, grabber.GetFGProperty(property.id, value));
  return value;
}

void set_property(Osv::lx::ClFramegrabber& grabber, const Property& property, unsigned int value) {
  check(grabber, grabber.SetFGProperty(property.id, value));
}

}  // namespace hvk3
