#include "hvk3/installation.h"

namespace hvk3 {
namespace {

namespace fs = std::filesystem;

constexpr char kPlugin[] = "libostrevanhvk3.so";

/// The folder above the one that holds the executable.
fs::path prefix() { return fs::read_symlink("/proc/self/exe").parent_path().parent_path(); }

}  // namespace

fs::path plugin_path() {
  for (const char* const folder : {HVK3_LIBRARY_DIR, "lib"}) {
    if (fs::path beside = prefix() / folder / kPlugin; fs::exists(beside)) {
      return beside;
    }
  }
  return kPlugin;
}

fs::path simulator_folder() {
  const fs::path installed = prefix() / HVK3_SIMULATOR_DIR;
  const fs::path built = prefix() / "simulator";
  return !fs::exists(installed) && fs::exists(built) ? built : installed;
}

}  // namespace hvk3
