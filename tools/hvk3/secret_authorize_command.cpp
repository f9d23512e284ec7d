#include "hvk3/commands.h"
#include "hvk3/scanner.h"
#include "hvk3/secret.h"
#include "ostrevanhvk3/feature.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 secret authorize --code new-code.bin\n"
    "  head -c 7 /dev/urandom | tee code.bin | hvk3 secret authorize --code -\n"
    "From then on the protected bytes open to the new code only. The scanner keeps it: without it\n"
    "they are lost.\n";

void run(Context& context) {
  const Options& options = context.options();
  SecretReader reader(options.hex);
  const SecretBytes code = reader.read("--code", options.code);
  reader.finish();
  choose_scanner(context.grabber(), options.device);
  set_feature_bytes(context.plugin(), eFeatureAuthorizationCode, code.data(), SecretBytes::kSize);
  context.report().text("the authorization code is set\n");
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_code_option(app, options, "new authorization code");
}

}  // namespace

const Command kSecretAuthorizeCommand = {"secret authorize",
                                         "Replace the authorization code of the protected bytes",
                                         kExamples, &add_options, &run};

}  // namespace hvk3
