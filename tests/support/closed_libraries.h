#pragma once

#include <string>
#include <vector>

/// @file
/// Which file a test executable gets for the name of a closed library.
///
/// The executable has a `dlopen` of its own, which the plug-in's code calls in place of the
/// loader's. For the four closed libraries it opens the file that the test has chosen, at first the
/// plain stand-in, so that no test ever loads a real one of the machine. Everything else it passes
/// on.

namespace Osv::simulator {

/// One call of `dlopen`.
struct LibraryOpening {
  std::string name;
  int mode = 0;
};

/// The choices of one test, taken back when it ends. At most one object at a time.
class ClosedLibraries {
 public:
  ClosedLibraries();
  ~ClosedLibraries();
  ClosedLibraries(const ClosedLibraries&) = delete;
  ClosedLibraries& operator=(const ClosedLibraries&) = delete;

  /// The library is not on this machine: opening it fails as the loader fails.
  /// @param name as in "libKR9ScanAPI.so"
  void make_absent(const std::string& name);

  /// The stand-in that lacks one symbol.
  void leave_out(const std::string& name, const std::string& symbol);

  /// Any other file.
  void use_file(const std::string& name, const std::string& path);

  /// The plain stand-in again.
  void use_plain(const std::string& name);

  /// Every closed library that was asked for since this object was made, found or not.
  std::vector<LibraryOpening> openings() const;

  /// Frees the memory of `openings`.
  static void forget_openings();

  /// The path of a plain stand-in.
  static std::string plain_path(const std::string& name);
};

}  // namespace Osv::simulator
