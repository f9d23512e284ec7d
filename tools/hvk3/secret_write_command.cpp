#include "hvk3/commands.h"
#include "hvk3/scanner.h"
#include "hvk3/secret_record.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 secret write --code code.bin --secret secret.bin\n"
    "  cat code.bin secret.bin | hvk3 secret write --code - --secret -\n"
    "Each is 7 bytes, or 14 digits with --hex. Nothing of them is ever printed.\n";

void run(Context& context) {
  const Options& options = context.options();
  SecretReader reader(options.hex);
  const SecretBytes code = reader.read("--code", options.code);
  const SecretBytes bytes = reader.read("--secret", options.secret);
  reader.finish();
  choose_scanner(context.grabber(), options.device);
  write_protected(context.plugin(), code, bytes);
  context.report()["secret"] = {{"bytes", SecretBytes::kSize}};
  context.report().text("7 protected bytes written\n");
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_code_option(app, options, "authorization code");
  add_secret_option(app, options);
}

}  // namespace

const Command kSecretWriteCommand = {"secret write", "Write a scanner's protected bytes", kExamples,
                                     &add_options, &run};

}  // namespace hvk3
