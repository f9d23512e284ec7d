#pragma once

#include <string>
#include <vector>

#include "bench/functions.h"
#include "faults/driver_model.h"
#include "support/closed_libraries.h"
#include "support/temporary_folder.h"

/// @file
/// What can be wrong with the file of a closed library.

namespace Osv::loader {

enum class eHow {
  Lacks,  ///< a function
  Absent,
  Empty,
  Text,
  OtherMachine,  ///< made for another processor
  OtherClass     ///< made for 32 bits
};

struct Breakage {
  std::string library;  ///< as in "libKR9ScanAPI.so"
  eHow how = {};
  simulator::eFunction function = {};  ///< that is lacking

  /// As in "without ftrScanGetFrame".
  std::string in_words() const;
};

std::vector<std::string> all_libraries();

/// The library without each of its functions, and as each kind of file that is none.
std::vector<Breakage> breakages_of(const std::string& library);

/// The library whose lack is noticed by nobody.
bool is_log(const std::string& library);

/// Whether the library can be opened and used, with fewer functions.
bool is_usable(const Breakage& breakage);

/// Puts the broken library in place of the whole one.
void break_library(const Breakage& breakage, simulator::ClosedLibraries& libraries,
                   const hvk3::test::TemporaryFolder& folder);

/// What the loader says of a library that is in its place now, or of the function that it lacks.
std::string loader_text(const Breakage& breakage);

/// Whether anybody has the library open that is in its place now.
bool is_open(const std::string& library);

/// Has the model go without what is broken.
void break_model(const Breakage& breakage, const std::string& loader_text,
                 faults::DriverModel& model);

}  // namespace Osv::loader
