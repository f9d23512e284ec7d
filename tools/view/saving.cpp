#include "view/saving.h"

#include <filesystem>
#include <system_error>

#include "hvk3/image_file.h"

namespace hvk3::view {
namespace {

/// A link that leads nowhere is there as well. Why nobody can look is told by whoever writes.
bool is_there(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

}  // namespace

std::string free_path(const std::string& pattern) {
  unsigned int number = 1;
  while (is_there(numbered_path(pattern, number))) {
    ++number;
  }
  return numbered_path(pattern, number);
}

}  // namespace hvk3::view
