#include "hvk3/doctor/closed_library.h"

#include <dlfcn.h>
#include <link.h>

#include <array>
#include <filesystem>

#include "foundation/dynamic_library.h"
#include "foundation/exceptions.h"
#include "hvk3/doctor/closed_library_symbols.h"
#include "hvk3/loader_text.h"

namespace hvk3 {
namespace {

/// A library that tells where it came from.
class MappedLibrary : public Osv::CXDynamicLibrary {
 public:
  std::string path() const {
    link_map* map = nullptr;
    if (::dlinfo(m_hLibrary, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) {
      return "unknown";
    }
    std::error_code failed;
    const std::filesystem::path real = std::filesystem::canonical(map->l_name, failed);
    return failed ? map->l_name : real.string();
  }

  bool has(const char* symbol) {
    try {
      GetSymbol(symbol);
      return true;
    } catch (const Osv::CXOtherException&) {
      return false;
    }
  }
};

std::string join(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : ", ") + word;
  }
  return line;
}

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

bool is_itself_missing(const LibraryFindings& findings) {
  return std::filesystem::path(missing_file(findings.error)).filename() == findings.library->name;
}

std::string remedy_for_loading(const LibraryFindings& findings) {
  if (is_itself_missing(findings)) {
    return std::string("Install ") + findings.library->name +
           " where the loader looks, such as /usr/local/lib, and run ldconfig; or name its folder "
           "in LD_LIBRARY_PATH.";
  }
  if (!missing_file(findings.error).empty()) {
    return "The library is there, one that it depends on is not: install that one.";
  }
  if (contains(findings.error, "undefined symbol")) {
    return "A library that it depends on is of another version: install the one that it was made "
           "for.";
  }
  return "Install the library anew, built for this kind of machine.";
}

}  // namespace

std::span<const ClosedLibrary> closed_libraries() {
  static constexpr std::array kLibraries = {
      ClosedLibrary{"libKR9ScanAPI.so", true, "reaching scanners", kSymbolsOfKR9ScanAPI},
      ClosedLibrary{"libostrevancalibratesdk.so", true, "correcting images",
                    kSymbolsOfostrevancalibratesdk},
      ClosedLibrary{"libostrevanfakefingerdetection.so", false, "fake finger detection",
                    kSymbolsOfostrevanfakefingerdetection},
      ClosedLibrary{"libostrevanlf.so", false, "the plug-in's log", kSymbolsOfostrevanlf}};
  return kLibraries;
}

LibraryFindings examine(const ClosedLibrary& library) {
  LibraryFindings findings;
  findings.library = &library;
  MappedLibrary opened;
  try {
    opened.Open(library.name);
  } catch (const Osv::CXOtherException& failure) {
    findings.error = failure.GetDescription();
    return findings;
  }
  findings.path = opened.path();
  for (const char* const symbol : library.symbols) {
    if (!opened.has(symbol)) {
      findings.missing.emplace_back(symbol);
    }
  }
  return findings;
}

Finding judge(const LibraryFindings& findings) {
  const ClosedLibrary& library = *findings.library;
  const eFinding bad = library.needed ? eFinding::Bad : eFinding::Note;
  if (findings.path.empty()) {
    const std::string only =
        library.needed ? "" : std::string("; only ") + library.purpose + " needs it";
    return {bad, library.name, "can't be loaded: " + findings.error + only,
            remedy_for_loading(findings)};
  }
  if (!findings.missing.empty()) {
    return {bad, library.name, findings.path + " lacks " + join(findings.missing),
            std::string("Install a version that has them: ") + library.purpose + " needs them."};
  }
  return {eFinding::Good, library.name, findings.path, ""};
}

}  // namespace hvk3
