#include "hvk3/recording/real_libraries.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "hvk3/failure.h"
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

/// A library as the plug-in opens it, or null.
Library open(const std::string& name) { return Library(::dlopen(name.c_str(), RTLD_NOW)); }

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

void look_into(RealLibraries& all, std::size_t number, const std::string& name) {
  const Library library = open(name);
  if (library == nullptr) {
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

}  // namespace

RealLibraries find_real_libraries(const std::string& folder) {
  RealLibraries all;
  for (std::size_t i = 0; i < kLibraryCount; ++i) {
    const std::filesystem::path name = kLibraryNames[i];
    look_into(all, i,
              folder.empty() ? name.string() : std::filesystem::absolute(folder / name).string());
  }
  const auto& present = all.header.present;
  if (std::find(present.begin(), present.end(), true) == present.end()) {
    throw Failure(ExitStatus::PluginUnavailable,
                  folder.empty() ? "the loader finds none of the closed libraries"
                                 : "none of the closed libraries can be loaded from " + folder);
  }
  return all;
}

bool loader_finds(const std::string& name) { return open(name) != nullptr; }

}  // namespace hvk3
