#pragma once

#include <functional>

#include "hvk3/context.h"
#include "hvk3/image.h"

/// @file
/// A capture from its start to its end.

namespace hvk3 {

/// What a command does with a capture.
struct CaptureTask {
  eCaptureModeIDs mode = eCaptureLive;

  /// Gets each image in turn, on the main thread. @return true when there are enough
  std::function<bool(Image image)> take;

  /// Runs for each live image before it is an image to take, on the plug-in's worker thread and
  /// inside its callback. May be empty.
  std::function<void(const unsigned char* image)> observe = {};

  /// Makes a frame grabber that was got anew ready for capture. With it the options may ask to keep
  /// going: when the scanner was unplugged, capture begins again as soon as it is back. May be
  /// empty.
  std::function<void()> prepare_again = {};
};

/// Captures until the task has enough, and adds to the report what came in. The frame grabber may
/// be another one behind it.
/// @throws Failure also for the end of the time that the options give, and for a signal; capture
///   has stopped then
void run_capture(Context& context, const CaptureTask& task);

}  // namespace hvk3
