#include "hvk3/installation.h"

namespace hvk3 {
namespace {

namespace fs = std::filesystem;

constexpr char kPlugin[] = "libostrevanhvk3.so";

/// The folder above the one that holds the executable.
fs::path prefix() { return fs::read_symlink("/proc/self/exe").parent_path().parent_path(); }

fs::path folder(const char* where_installed, const char* where_built) {
  const fs::path installed = prefix() / where_installed;
  const fs::path built = prefix() / where_built;
  return !fs::exists(installed) && fs::exists(built) ? built : installed;
}

}  // namespace

fs::path plugin_path() {
  for (const char* const folder : {HVK3_LIBRARY_DIR, "lib"}) {
    if (fs::path beside = prefix() / folder / kPlugin; fs::exists(beside)) {
      return beside;
    }
  }
  return kPlugin;
}

fs::path simulator_folder() { return folder(HVK3_SIMULATOR_DIR, "simulator"); }

fs::path recorder_folder() { return folder(HVK3_RECORDER_DIR, "recorder"); }

}  // namespace hvk3
