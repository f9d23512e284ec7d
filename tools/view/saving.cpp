#include "view/saving.h"

#include <filesystem>

#include "hvk3/image_file.h"

namespace hvk3::view {

std::string free_path(const std::string& pattern) {
  unsigned int number = 1;
  while (std::filesystem::exists(numbered_path(pattern, number))) {
    ++number;
  }
  return numbered_path(pattern, number);
}

}  // namespace hvk3::view
