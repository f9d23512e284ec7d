#pragma once

#include <functional>

/// @file
/// A display that goes while its window is open.

namespace hvk3::view {

/// As long as it lives, the loss of the display ends the process in good order. One at a time.
class DisplayLoss {
 public:
  /// @param end brings everything to its end and gives the exit status; runs on the window's
  /// thread,
  ///   inside a call into the display's library, and must not use the window
  explicit DisplayLoss(std::function<int()> end);
  ~DisplayLoss();
  DisplayLoss(const DisplayLoss&) = delete;
  DisplayLoss& operator=(const DisplayLoss&) = delete;
};

}  // namespace hvk3::view
