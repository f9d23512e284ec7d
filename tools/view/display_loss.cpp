#include "view/display_loss.h"

#include <X11/Xlib.h>

#include <cstdlib>
#include <utility>

namespace hvk3::view {
namespace {

std::function<int()> s_End;  // NOLINT: the handler gets nothing that could lead to it
XIOErrorHandler s_pfnBefore = nullptr;

/// There is no way back into the library: what it was asked for can't be done any more.
[[noreturn]] int end_process(Display* /*display*/) { std::_Exit(s_End()); }

}  // namespace

DisplayLoss::DisplayLoss(std::function<int()> end) {
  s_End = std::move(end);
  s_pfnBefore = XSetIOErrorHandler(&end_process);
}

DisplayLoss::~DisplayLoss() {
  XSetIOErrorHandler(s_pfnBefore);
  s_End = nullptr;
}

}  // namespace hvk3::view
