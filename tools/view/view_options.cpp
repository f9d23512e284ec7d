#include "view/view_options.h"

#include "hvk3/argument.h"
#include "hvk3/image_file.h"
#include "hvk3/program_options.h"
#include "view/controls.h"

namespace hvk3::view {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  hvk3-view                          the first scanner\n"
    "  hvk3-view --device 2               the one at interface 2\n"
    "  hvk3-view --out ~/thumb.png        saves thumb-1.png, thumb-2.png and so on\n"
    "  hvk3-view --simulate               without a scanner\n"
    "  hvk3-view --simulate --script -    steers the simulated finger in words\n"
    "\n";

constexpr char kExitStatus[] =
    "\n"
    "Exit status: 0 the user has quit, 1 internal error, 2 usage, 4 the user has quit twice, for "
    "the\n"
    "plug-in hung, 6 no display, or it has gone, or standard output can't be written, 7 plug-in "
    "or\n"
    "simulator can't be loaded, 128+N ended by signal N (130 for Ctrl-C).";

std::string footer() {
  constexpr std::size_t kSignWidth = 8;
  std::string text = std::string(kExamples) + "Keys:\n";
  for (const Control& control : controls()) {
    std::string sign = control.sign;
    sign.resize(kSignWidth, ' ');
    text += "  " + sign + control.help + '\n';
  }
  return text + kExitStatus;
}

void add_view_options(CLI::App& app, ViewOptions& options) {
  options.out = "finger.png";
  options.picture = "hvk3-view.png";
  add_plugin_options(app, options.tool);
  app.remove_option(app.get_option("--json"));    // a window has no result
  app.remove_option(app.get_option("--replay"));  // 'hvk3 replay' plays for any program
  add_device_option(app, options.tool);
  add_setting_option(app, options.tool);
  add_level_option(app, options.tool);
  add_settle_option(app, options.tool, "Show the darkest of so many images of a finger");
  const CLI::Validator image_path(
      [](const std::string& path) {
        return is_image_path(path) ? "" : "the file name has no extension of an image";
      },
      "");
  take_only(
      app.add_option("--out", options.out,
                     "Where to save images: -1, -2, ... join the file name, whatever is free"),
      "FILE", image_path)
      ->capture_default_str();
  app.add_option("--window-picture", options.picture, "Where to save pictures of the window")
      ->type_name("FILE")
      ->capture_default_str();
  app.add_flag("--events", options.events, "Print a line for each event on standard output");
  app.footer(footer());
}

}  // namespace

CommandLine::CommandLine() : m_cApp("Shows what an HVK3 fingerprint scanner sees.", "hvk3-view") {
  add_program_options(m_cApp);
  add_view_options(m_cApp, m_cOptions);
}

}  // namespace hvk3::view
