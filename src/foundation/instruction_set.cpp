#include "foundation/instruction_set.h"

namespace Osv {

bool is_supported(InstructionSet set) {
  __builtin_cpu_init();
  return set == InstructionSet::kSse2 || __builtin_cpu_supports("avx2") != 0;
}

}  // namespace Osv
