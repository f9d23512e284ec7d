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
/// the exceptions of `CLiveDetectionLib` through. Any thread may call them: one mutex lets one
/// operation into the detector at a time, the whole walk of the first `GetFakeScore` too, and a
/// detector that `Uninit` has given up lives until the operation that is in it has come back. The
/// images of one series are kept apart from others by the caller.
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
  /// rejects. A result of 0 is not remembered, and a threshold that is set meanwhile counts.
  double GetFakeScore() const;

 private:
  class Instance;

  /// Makes calls into the detector that belong together.
  template <typename Call>
  auto Ask(Call call) const;

  boost::shared_ptr<Instance> Running() const;

  // Held for one operation in the detector, with nothing below it but the instance's lock.
  // Recursive, and before the instance, since that locks it when it goes.
  mutable std::recursive_mutex m_cDetectorLock;
  mutable std::mutex m_cInstanceLock;           // leaf, held to copy or exchange the pointer
  boost::shared_ptr<Instance> m_pDetectionLib;  ///< null while idle

  mutable TXRelaxed<double> m_dFakeScore;  ///< 0 while the threshold isn't known
};

}  // namespace Osv::lx
