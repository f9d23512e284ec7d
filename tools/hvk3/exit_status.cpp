#include "hvk3/exit_status.h"

#include <array>

namespace hvk3 {

const char* name_of(ExitStatus status) {
  constexpr std::array<const char*, 10> kNames = {
      "ok",      "internal-error", "usage",     "no-scanner",   "scanner-failed",
      "timeout", "output-failed",  "no-plugin", "defect-found", "diverged"};
  const auto number = static_cast<std::size_t>(status);
  return number < kNames.size() ? kNames[number] : "interrupted";
}

}  // namespace hvk3
