#include "foundation/instruction_set.h"

// The header is C; clang knows C's name for bool only there.
#define _Bool bool  // NOLINT(bugprone-reserved-identifier)
#include <sys/platform/x86.h>
#undef _Bool

namespace Osv {

bool is_supported(InstructionSet set) {
  // The C library's word rather than the processor's, so that its tunable glibc.cpu.hwcaps holds
  // back an instruction set here as it does in the library itself.
  return set == InstructionSet::kSse2 || CPU_FEATURE_ACTIVE(AVX2);
}

}  // namespace Osv
