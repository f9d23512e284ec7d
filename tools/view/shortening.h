#pragma once

#include <functional>
#include <string>

/// @file
/// Text that is too long for its place.

namespace hvk3::view {

/// The text itself if it fits. Otherwise dots stand for its middle, for the end of a message says
/// as much as its beginning; no character is cut in two.
/// @param text in UTF-8
/// @param fits whether there is room for a text
std::string shorten(const std::string& text, const std::function<bool(const std::string&)>& fits);

}  // namespace hvk3::view
