#pragma once

#include <span>
#include <string>
#include <vector>

#include "hvk3/doctor/finding.h"

/// @file
/// The closed libraries that the plug-in opens at run time, as the loader finds them.

namespace hvk3 {

struct ClosedLibrary {
  const char* name;
  bool needed;          ///< without it no scanner works
  const char* purpose;  ///< what fails without it
  std::span<const char* const> symbols;
};

/// All four, the scanner library first.
std::span<const ClosedLibrary> closed_libraries();

struct LibraryFindings {
  const ClosedLibrary* library = nullptr;
  std::string path;                  ///< as it is mapped; empty if it can't be loaded
  std::string error;                 ///< the loader's text, if it can't be loaded
  std::vector<std::string> missing;  ///< functions that it lacks
};

/// Loads the library as the plug-in does, looks up all its functions and closes it again.
LibraryFindings examine(const ClosedLibrary& library);

/// What the findings mean. Which of the scanner library's functions it can do without is told by
/// what becomes of it: see `judge_api_level`.
Finding judge(const LibraryFindings& findings);

}  // namespace hvk3
