#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hvk3/plugin.h"

/// @file
/// The numbered features, through the plug-in's functions for them.

namespace hvk3 {

/// A feature by its schema.
struct FeatureDescription {
  unsigned int number = 0;
  std::string name;
  std::string description;
  unsigned int width = 0;  ///< bytes of a value with a minimum and a maximum, 0 without these
  std::optional<std::uint64_t> minimum;
  std::optional<std::uint64_t> maximum;

  /// The name as the command line takes it: small letters and digits with hyphens between.
  std::string word() const;
};

/// All features that the interface knows; no scanner is needed. Values are taken as unsigned, for
/// a description does not tell a sign.
std::vector<FeatureDescription> list_features(Plugin& plugin);

/// The feature of this number or word. Numbers that no description has are for the scanner to
/// judge.
/// @throws Failure `Usage` for any other word
FeatureDescription find_feature(Plugin& plugin, const std::string& word);

/// @name On the scanner that was chosen
/// @throws Failure with the plug-in's number
/// @{
unsigned int read_feature(Plugin& plugin, unsigned int number);

/// @param width bytes of the number: 1, 2 or 4
void set_feature(Plugin& plugin, unsigned int number, std::uint32_t value, unsigned int width);

/// Fills in and keeps `count` single bytes.
void read_feature_bytes(Plugin& plugin, unsigned int number, unsigned char* bytes,
                        std::size_t count);
void set_feature_bytes(Plugin& plugin, unsigned int number, const unsigned char* bytes,
                       std::size_t count);
/// @}

}  // namespace hvk3
