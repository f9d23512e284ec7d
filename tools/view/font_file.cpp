#include "view/font_file.h"

#include <fontconfig/fontconfig.h>

#include <memory>

#include "hvk3/failure.h"

namespace hvk3::view {
namespace {

/// The library reads its configuration when it is first asked for something.
struct Configuration {
  Configuration() = default;
  ~Configuration() { FcFini(); }
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;
};

struct Destroyer {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, Destroyer>;

}  // namespace

std::string find_font_file() {
  const Configuration configuration;
  const Pattern wanted(FcNameParse(reinterpret_cast<const FcChar8*>("sans:scalable=true")));
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  const Pattern found(FcFontMatch(nullptr, wanted.get(), &result));
  FcChar8* file = nullptr;
  if (!found || FcPatternGetString(found.get(), FC_FILE, 0, &file) != FcResultMatch) {
    throw Failure(ExitStatus::OutputFailed, "no font found: install one, fonts-dejavu-core say");
  }
  return reinterpret_cast<const char*>(file);
}

}  // namespace hvk3::view
