#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/functions.h"
#include "faults/scenario.h"

/// @file
/// What a call into a closed library can do wrong.

namespace Osv::faults {

using simulator::eFunction;

/// The words that a library has for its error.
struct Description {
  std::optional<unsigned int> length = {};  ///< nothing: no text at all
};

/// A kind of fault. Of all members but `description` one alone is set, or `answer` with `number`.
struct Effect {
  std::optional<long> fails_with = {};  ///< nothing is done
  std::optional<long> answer = {};      ///< all is done, and this is answered
  std::optional<long> number = {};      ///< the size, length or value that is given out
  bool not_a_number = false;            ///< is given out as the value
  std::optional<std::pair<int, int>> frame_size = {};
  std::optional<std::string> text = {};  ///< the value of a property or option, a serial number
  bool no_text = false;                  ///< all is done but for the value, which is not written
  bool null_handle = false;
  std::optional<Description> description = {};  ///< of every error while the plan stands

  /// The words of the fault plan behind function and calls.
  std::string in_words(eFunction function) const;
};

/// A fault: an effect on some calls of a function.
struct Fault {
  eFunction function = {};
  unsigned int first = 1;
  bool lasting = false;  ///< this call and all behind it
  Effect effect = {};

  bool is_about(eFunction other, unsigned int call) const {
    return function == other && (lasting ? call >= first : call == first);
  }

  /// As the fault plan takes it; also the name of a run.
  std::string in_words() const;
};

using Faults = std::vector<Fault>;

/// The scanner at interface 0 is unplugged behind a call, before all calls, or inside a callback of
/// the first capture.
struct Incident {
  eFunction function = {};
  unsigned int call = 0;  ///< 0: before all calls
  std::optional<unsigned int> callback = {};
  eReturn comes_back = eReturn::Never;
  bool opening = false;  ///< the scanner is not open yet

  /// As the simulator takes it, but for a callback, which is the client's to know.
  std::string in_words() const;
};

std::string in_words(const Faults& faults);

/// Every kind of fault that a call of this function can answer with.
const std::vector<Effect>& kinds_of(eFunction function);

}  // namespace Osv::faults
