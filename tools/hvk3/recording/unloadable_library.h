#pragma once

#include <filesystem>
#include <string>

/// @file
/// Files in place of libraries that could not be loaded.

namespace hvk3 {

/// Makes a file that the loader refuses in the same words, but for the folder.
/// @param failure what it told of the library
/// @return false without a file, when there is none for these words
/// @throws Failure `OutputFailed`
bool write_unloadable_library(const std::filesystem::path& path, const std::string& failure);

}  // namespace hvk3
