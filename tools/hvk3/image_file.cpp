#include "hvk3/image_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "hvk3/atomic_file.h"
#include "hvk3/bmp_file.h"
#include "hvk3/png_file.h"

namespace hvk3 {
namespace {

using Writer = bool (*)(const Image& image, std::FILE* stream);

Writer writer_for(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  if (extension == ".png") {
    return &write_png;
  }
  return extension == ".bmp" ? &write_bmp : nullptr;
}

}  // namespace

bool is_image_path(const std::string& path) { return writer_for(path) != nullptr; }

void write_image(const Image& image, const std::string& path) {
  AtomicFile file(path);
  if (!writer_for(path)(image, file.stream())) {
    file.fail();
  }
  file.commit();
}

}  // namespace hvk3
