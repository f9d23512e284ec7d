#pragma once

#include "bench/recorded_call.h"

/// @file
/// Calls that answer with a code, as those of engine and detector do.

namespace Osv::simulator {

/// Does the work of a function, which gives a code, as far as the fault plan lets it.
template <class Work>
long code_of(const RecordedCall& call, Work work) {
  const Effects& effects = call.effects();
  if (effects.fails_with.has_value()) {
    return *effects.fails_with;
  }
  const long code = work();
  return effects.answer.value_or(code);
}

/// As `code_of`, with the code in words.
template <class Work>
long answer(RecordedCall& call, Work work) {
  const long code = code_of(call, work);
  call.result("%ld", code);
  return code;
}

}  // namespace Osv::simulator
