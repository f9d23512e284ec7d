#pragma once

#include <array>

#include "hvk3/context.h"

/// @file
/// The commands. Each returns when it has filled the report, or throws a `Failure`.

namespace CLI {
class App;
}

namespace hvk3 {

struct Command {
  const char* name;
  const char* description;
  void (*add_options)(CLI::App& app, Options& options);
  void (*run)(Context& context);
};

extern const Command kListCommand;     ///< the attached scanners
extern const Command kInfoCommand;     ///< one scanner's description
extern const Command kSnapCommand;     ///< one image, at once
extern const Command kCaptureCommand;  ///< live frames or settled finger images

}  // namespace hvk3
