#include "hvk3/recording/real_libraries.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "hvk3/failure.h"
#include "hvk3/loader_text.h"
#include "hvk3/recording/forwarder_folder.h"

namespace hvk3 {
namespace {

using Osv::recorder::kFunctionCount;
using Osv::recorder::kFunctionNames;
using Osv::recorder::kLibraryCount;
using Osv::recorder::kLibraryNames;
using Osv::recorder::kLibraryOfFunction;

struct Closer {
  void operator()(void* library) const { ::dlclose(library); }
};
using Library = std::unique_ptr<void, Closer>;

/// Opens libraries as the plug-in does. In a folder, what they need and the loader does not find is
/// taken from there too.
class Opener {
 public:
  /// @param folder empty: wherever the loader finds them
  explicit Opener(std::filesystem::path folder) : m_cFolder(std::move(folder)) {}

  /// @return null when it can't be opened, which `failure` tells of
  Library open(const std::string& name) {
    Library library = open_alone(name);
    while (library == nullptr && open_what_is_missing()) {
      library = open_alone(name);
    }
    if (library == nullptr) {
      // Opened, and not found by its name all the same: the program is not to find it either.
      m_cNeeded.erase(missing_file(m_sFailure));
    }
    return library;
  }

  /// What the loader told last.
  const std::string& failure() const { return m_sFailure; }

  /// Whether the failure is another one than that this library is not there.
  bool is_there(const std::string& name) const {
    std::error_code hidden;  // a folder that nobody may search has none
    return m_cFolder.empty() ? missing_file(m_sFailure) != name
                             : std::filesystem::exists(m_cFolder / name, hidden);
  }

  /// What was needed, by name.
  const std::map<std::string, Library>& needed() const { return m_cNeeded; }

 private:
  Library open_alone(const std::string& name) {
    Library library(::dlopen((m_cFolder / name).c_str(), RTLD_NOW));
    const char* const text = library == nullptr ? ::dlerror() : nullptr;
    m_sFailure = text == nullptr ? "" : text;
    return library;
  }

  bool open_what_is_missing() {
    const std::string name = missing_file(m_sFailure);
    if (m_cFolder.empty() || name.empty() || name.find('/') != std::string::npos ||
        !is_there(name) || !m_cNeeded.try_emplace(name).second) {
      return false;
    }
    m_cNeeded[name] = open(name);
    return m_cNeeded[name] != nullptr;
  }

  const std::filesystem::path m_cFolder;
  std::map<std::string, Library> m_cNeeded;
  std::string m_sFailure;
};

std::string path_of(const Library& library) {
  link_map* map = nullptr;
  if (::dlinfo(library.get(), RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) {
    throw Failure(ExitStatus::PluginUnavailable, "a closed library does not tell its path");
  }
  std::string path = std::filesystem::absolute(map->l_name).string();
  if (path.find(':') != std::string::npos) {
    throw Failure(ExitStatus::Usage, "a path with a colon can't be recorded from: " + path);
  }
  if (holds_forwarders(std::filesystem::path(path).parent_path())) {
    throw Failure(ExitStatus::Usage,
                  "this already stands in front of a closed library, give the "
                  "real one's folder with --real-dir: " +
                      path);
  }
  return path;
}

bool is_closed_library(const std::string& name) {
  return std::find(std::begin(kLibraryNames), std::end(kLibraryNames), name) !=
         std::end(kLibraryNames);
}

void look_into(RealLibraries& all, std::size_t number, Opener& opener) {
  const std::string name = kLibraryNames[number];
  const Library library = opener.open(name);
  if (library == nullptr) {
    all.header.failures[number] = opener.is_there(name) ? opener.failure() : "";
    return;
  }
  all.paths[number] = path_of(library);
  all.header.present[number] = true;
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    if (index_of(kLibraryOfFunction[i]) == number) {
      all.header.exported[i] = ::dlsym(library.get(), kFunctionNames[i]) != nullptr;
    }
  }
}

[[noreturn]] void throw_none(const RealLibraries& all, const std::string& folder) {
  std::string text = folder.empty() ? "the loader finds none of the closed libraries"
                                    : "none of the closed libraries can be loaded from " + folder;
  for (const std::string& failure : all.header.failures) {
    text += failure.empty() ? "" : "; " + failure;
  }
  throw Failure(ExitStatus::PluginUnavailable, text);
}

}  // namespace

RealLibraries find_real_libraries(const std::string& folder) {
  RealLibraries all;
  const std::filesystem::path path = folder.empty() ? "" : std::filesystem::absolute(folder);
  Opener opener(path);
  for (std::size_t i = 0; i < kLibraryCount; ++i) {
    look_into(all, i, opener);
    if (!folder.empty() && !all.header.failures[i].empty()) {
      all.others[kLibraryNames[i]] = path / kLibraryNames[i];
    }
  }
  for (const auto& needed : opener.needed()) {
    if (!is_closed_library(needed.first)) {  // else the program's loader finds the forwarder
      all.others[needed.first] = path / needed.first;
    }
  }
  const auto& present = all.header.present;
  if (std::find(present.begin(), present.end(), true) == present.end()) {
    throw_none(all, folder);
  }
  return all;
}

bool loader_finds(const std::string& name) { return Opener("").open(name) != nullptr; }

}  // namespace hvk3
