#include "hvk3/exit_status.h"

#include <array>

namespace hvk3 {

const char* name_of(ExitStatus status) {
  constexpr std::array<const char*, 9> kNames = {
      "ok",      "internal-error", "usage",     "no-scanner",  "scanner-failed",
      "timeout", "output-failed",  "no-plugin", "defect-found"};
  const auto number = static_cast<std::size_t>(status);
  return number < kNames.size() ? kNames[number] : "interrupted";
}

}  // namespace hvk3
