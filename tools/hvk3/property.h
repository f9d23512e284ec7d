#pragma once

#include <string>
#include <vector>

#include "ostrevanhvk3/framegrabber.h"

/// @file
/// The scanner's properties, by name as well as by number.

namespace hvk3 {

/// What the values of a property mean.
enum class ePropertyValues {
  Number,   ///< themselves
  Switch,   ///< 0 off, others on
  Security  ///< 0 off, 2 level 2, others level 1; a read one tells no level
};

struct Property {
  ePropertyIDs id;
  std::string name;
  const char* description;
  bool writable;
  ePropertyValues values;
};

/// The properties that the scanners of this family have.
const std::vector<Property>& known_properties();

/// The property of this name or number. Numbers that have no name are for the plug-in to judge.
/// @throws Failure `Usage` for any other word
Property find_property(const std::string& word);

/// A value as the user writes it: a number or one of the property's words.
/// @throws Failure `Usage`
unsigned int parse_value(const Property& property, const std::string& word);

/// The word for a value that was read; empty for a plain number.
std::string meaning_of(const Property& property, unsigned int value);

/// @throws Failure
unsigned int read_property(Osv::lx::ClFramegrabber& grabber, const Property& property);

/// @throws Failure
void set_property(Osv::lx::ClFramegrabber& grabber, const Property& property, unsigned int value);

}  // namespace hvk3
