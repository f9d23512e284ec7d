#pragma once

#include <deque>
#include <mutex>

#include "hvk3/plugin.h"

/// @file
/// What fake finger detection says of each frame.

namespace hvk3 {

enum class eVerdict { NoFinger, Live, Fake };

/// The verdict in words, as the JSON output has it.
const char* name_of(eVerdict verdict);

struct Judgement {
  double score = 0.0;
  int state = 0;  ///< the detector's own
  eVerdict verdict = eVerdict::NoFinger;
};

/// What detection says of the frame whose live image is being delivered; inside that callback only.
/// @param fake whether the event of a fake came in front of it
/// @param threshold the score up to which a finger is a fake
Judgement judge_frame(Osv::lx::CurrentFrameInfoFunction frame_info, bool fake, double threshold);

/// Gathers the judgements of a capture. The plug-in tells of a frame inside its callbacks only: the
/// event of a fake first, score and state with the live image. So this object gets its word there
/// and the main thread takes it from here.
class Judge {
 public:
  /// Switches the events on. @param threshold the score up to which a finger is a fake
  /// @throws Failure
  Judge(Plugin& plugin, double threshold);

  /// Switches the events off; capture has stopped.
  ~Judge();
  Judge(const Judge&) = delete;
  Judge& operator=(const Judge&) = delete;

  /// Inside the callback of each live image.
  void observe();

  /// The earliest judgement that was not taken; only after the image that it belongs to.
  Judgement take();

 private:
  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user);

  Osv::lx::ClFramegrabber& m_cGrabber;
  const Osv::lx::CurrentFrameInfoFunction m_pfnFrameInfo;
  const double m_dThreshold;
  bool m_bFake = false;  // the plug-in's worker thread only

  std::mutex m_cLock;  // guards everything below
  std::deque<Judgement> m_cJudgements;
};

}  // namespace hvk3
