#pragma once

#include "bad_calls/bad_call.h"
#include "bad_calls/situations.h"

/// @file
/// The client that makes the calls of a table.

namespace Osv::bad_calls {

class MakingBadCalls : public InSituation {
 protected:
  /// Makes calls in a situation, which is entered anew behind one that ends it, and looks at all
  /// that they answer and at all that they leave alone.
  void make_all(const BadCalls& calls, const Situation& situation, bool end_events = false);

  /// What the client holds out to a call of a frame grabber.
  Hands hands_for(const BadCall& call, lx::ClFramegrabber& receiver) const;

  /// Only the first bytes of the room were written to.
  static void expect_untouched(const Hands& hands, std::size_t written);

  /// Nothing came but frames, where there is capture, and its end, where it has ended.
  void expect_callbacks(bool frames, bool end = false);

 private:
  void make(const BadCall& call, const Situation& situation);

  /// The capture that was under way goes on, or stays frozen.
  void expect_to_go_on(const Situation& situation);

  void expect_state(State before, const BadCall& call, const Situation& situation);
};

}  // namespace Osv::bad_calls
