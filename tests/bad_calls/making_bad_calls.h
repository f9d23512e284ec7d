#pragma once

#include "bad_calls/bad_call.h"
#include "bad_calls/situations.h"

/// @file
/// The client that makes the calls of a table.

namespace Osv::bad_calls {

class MakingBadCalls : public InSituation {
 protected:
  /// Makes calls in a situation, one after the other or in a new one each, and looks at all that
  /// they answer and at all that they leave alone.
  void make_all(const BadCalls& calls, const Situation& situation);

  /// What the client holds out to a call of a frame grabber.
  Hands hands_for(const BadCall& call, lx::ClFramegrabber& receiver) const;

  /// Only the first bytes of the room were written to.
  static void expect_untouched(const Hands& hands, std::size_t written);

  /// Nothing came but frames, where there is capture.
  void expect_callbacks(bool frames);

 private:
  void make(const BadCall& call, const Situation& situation);
  void expect_state(State before, bool opens);
};

}  // namespace Osv::bad_calls
