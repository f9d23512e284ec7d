#pragma once

#include <boost/shared_ptr.hpp>
#include <mutex>
#include <string>

#include "foundation/relaxed.h"

/// @file
/// The fake finger session of the driver.

namespace Osv::lx {

/// A session with the fake finger detector, idle until `Init`. It finds the decision threshold on
/// the detector's error curves and remembers it.
///
/// Operations that reach the detector throw `ClLXException` 58 while the session is idle, and let
/// the exceptions of `CLiveDetectionLib` through. Any thread may call them: one leaf mutex lets one
/// call into the detector at a time, and a detector that `Uninit` has given up lives until the call
/// that is in it has come back. Calls that belong together, as the images of one series or the
/// first `GetFakeScore`, are kept apart from others by the caller.
class CLiveDetection {
 public:
  /// Loads the detector and makes a handle. A detector that was there before goes; after a failure
  /// the session is as it was.
  void Init();

  /// Ends the session at once; nothing on an idle one. The handle is destroyed and the detector
  /// unloaded here, or by the thread that is in the detector when it comes back. The threshold
  /// stays.
  void Uninit();

  bool IsInit() const;

  /// The next images begin a new series.
  void Reset();

  /// @param kind an `EImage`
  /// @param block a whole image block of `size` bytes
  void PushImage(int kind, const unsigned char* block, unsigned long size);

  /// The score of the images since `Reset`; see `CLiveDetectionLib::EvalLifeness` for `state`.
  double Lifeness(int* state);

  void SetProperty(const char* name, const char* value) const;
  [[nodiscard]] std::string GetProperty(const char* name) const;
  [[nodiscard]] std::string Version() const;

  /// Changes the detector's curves, but a threshold that is known stays, and is to stay.
  void SetSecurityLevel(unsigned int level);

  /// 0 when the detector gives no number.
  unsigned int GetSecurityLevel() const;

  /// Sets the threshold, also of an idle session. 0 and not-a-number are stored as 1.
  void SetFakeScore(double score);

  /// The threshold: a finger counts as live when its score is greater. The first call walks the
  /// detector's curves and takes the last whole score before false accepts become rarer than false
  /// rejects. A result of 0 is not remembered.
  double GetFakeScore() const;

 private:
  class Instance;

  /// Makes one call into the detector.
  template <typename Call>
  auto Ask(Call call) const;

  // Leaf, held for one call into the detector. Before the instance, which locks it when it goes.
  std::mutex m_cDetectorLock;
  mutable std::mutex m_cInstanceLock;           // leaf, held to copy or exchange the pointer
  boost::shared_ptr<Instance> m_pDetectionLib;  ///< null while idle

  mutable TXRelaxed<double> m_dFakeScore;  ///< 0 while the threshold isn't known
};

}  // namespace Osv::lx
