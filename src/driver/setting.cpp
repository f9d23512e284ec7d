#include "driver/setting.h"

#include <fstream>

#include "foundation/config_file.h"
#include "foundation/config_section.h"

namespace Osv::lx {

void CXSetting::LoadFromFile(const char* path) {
  std::ifstream stream(path);
  if (!stream.is_open()) {
    return;
  }
  CXConfigFile file;
  file.Load(stream);
  // No key of the section is in use, so the copy goes as it came.
  [[maybe_unused]] const CXConfigSection section = file["SDK"];
}

}  // namespace Osv::lx
