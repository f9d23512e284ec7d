#pragma once

#include <string>
#include <vector>

/// @file
/// What the doctor says of one thing that it looked at.

namespace hvk3 {

enum class eFinding {
  Good,
  Note,  ///< worth knowing; scanners work all the same
  Bad    ///< keeps a scanner from showing up or from working
};

/// The kind in words, as the JSON output has it.
const char* name_of(eFinding kind);

struct Finding {
  eFinding kind = eFinding::Good;
  std::string subject;
  std::string text;
  std::string remedy;  ///< what to do about it; empty for nothing
};

using Findings = std::vector<Finding>;

}  // namespace hvk3
