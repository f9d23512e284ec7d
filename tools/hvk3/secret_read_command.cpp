#include <cstdio>

#include "hvk3/atomic_file.h"
#include "hvk3/commands.h"
#include "hvk3/scanner.h"
#include "hvk3/secret_record.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 secret read --code code.bin                    only tells whether the code fits\n"
    "  hvk3 secret read --code code.bin --out secret.bin   keeps the bytes, for you alone\n"
    "  pass show scanner | hvk3 secret read --hex --code - --print\n"
    "The code is 7 bytes, or 14 digits with --hex. The bytes are shown with --print only.\n";

using Json = nlohmann::ordered_json;

void write(const SecretBytes& bytes, const std::string& path) {
  AtomicFile file(path);
  if (std::fwrite(bytes.data(), SecretBytes::kSize, 1, file.stream()) != 1) {
    file.fail();
  }
  file.commit();
}

void run(Context& context) {
  const Options& options = context.options();
  SecretReader reader(options.hex);
  const SecretBytes code = reader.read("--code", options.code);
  reader.finish();
  choose_scanner(context.grabber(), options.device);
  const SecretBytes bytes = read_protected(context.plugin(), code);
  if (!options.out.empty()) {
    write(bytes, options.out);
  }
  context.report()["secret"] = {{"bytes", SecretBytes::kSize},
                                {"hex", options.print ? Json(bytes.hex()) : Json()},
                                {"file", options.out.empty() ? Json() : Json(options.out)}};
  const std::string where = options.out.empty() ? "" : ", written to " + options.out;
  context.report().text(options.print ? bytes.hex() + '\n'
                                      : "7 protected bytes read" + where + '\n');
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_code_option(app, options, "authorization code");
  add_secret_output_options(app, options);
}

}  // namespace

const Command kSecretReadCommand = {"secret read", "Read a scanner's protected bytes", kExamples,
                                    &add_options, &run};

}  // namespace hvk3
