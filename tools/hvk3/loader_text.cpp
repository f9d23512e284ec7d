#include "hvk3/loader_text.h"

namespace hvk3 {

std::string missing_file(const std::string& text) {
  const std::size_t end = text.find(": cannot open shared object file");
  return end == std::string::npos ? "" : text.substr(0, end);
}

bool is_passed_over(const std::string& text) {
  return text.find(": wrong ELF class: ") != std::string::npos ||
         missing_file(text).find('/') != std::string::npos;
}

}  // namespace hvk3
