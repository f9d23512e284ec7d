#pragma once

namespace Osv {

/// What a processor may be able to do beside what every one of its kind can.
enum class InstructionSet {
  kSse2,  ///< vectors of 16 bytes; every processor of 64 bits has it
  kAvx2   ///< vectors of 32 bytes
};

/// True when the processor at hand and its operating system can run it.
bool is_supported(InstructionSet set);

}  // namespace Osv
