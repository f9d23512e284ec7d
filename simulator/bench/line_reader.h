#pragma once

#include <optional>
#include <string>

#include "bench/vocabulary.h"

/// @file
/// Lines of words, held against the vocabulary.

namespace Osv::simulator {

/// Reads a line. Nothing for one without words.
/// @throws std::invalid_argument for a line that is not understood
std::optional<Step> read_line(const std::string& line);

}  // namespace Osv::simulator
