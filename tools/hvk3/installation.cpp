#include "hvk3/installation.h"

namespace hvk3 {

std::filesystem::path installation_prefix() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

}  // namespace hvk3
