#include "hvk3/image_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "hvk3/atomic_file.h"
#include "hvk3/bmp_file.h"
#include "hvk3/pgm_file.h"
#include "hvk3/png_file.h"

namespace hvk3 {
namespace {

using Writer = bool (*)(const Image& image, const RecordDetails& details, std::FILE* stream);

/// A writer of a form that has no room for the details.
template <bool (*write)(const Image& image, std::FILE* stream)>
bool write_without_details(const Image& image, const RecordDetails& /*details*/,
                           std::FILE* stream) {
  return write(image, stream);
}

std::string extension_of(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return extension;
}

Writer writer_for(const std::string& path) {
  struct Form {
    const char* extension;
    Writer writer;
  };
  static constexpr std::array kForms = {Form{".png", &write_without_details<&write_png>},
                                        Form{".bmp", &write_without_details<&write_bmp>},
                                        Form{".pgm", &write_without_details<&write_pgm>},
                                        Form{".fir", &write_finger_image_record}};
  const auto form = std::find_if(
      kForms.begin(), kForms.end(),
      [extension = extension_of(path)](const Form& each) { return extension == each.extension; });
  return form != kForms.end() ? form->writer : nullptr;
}

void fill(AtomicFile& file, const Image& image, const std::string& path,
          const RecordDetails& details) {
  if (!writer_for(path)(image, details, file.stream())) {
    file.fail();
  }
}

/// A link that leads nowhere is there as well. Why nobody can look is told by whoever writes.
bool is_there(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

}  // namespace

bool is_image_path(const std::string& path) { return writer_for(path) != nullptr; }

bool is_record_path(const std::string& path) { return extension_of(path) == ".fir"; }

std::string numbered_path(const std::string& path, unsigned int number) {
  const std::filesystem::path whole(path);
  const std::string stem = whole.stem().string() + '-' + std::to_string(number);
  return std::filesystem::path(whole).replace_filename(stem + whole.extension().string()).string();
}

void write_image(const Image& image, const std::string& path, const RecordDetails& details) {
  AtomicFile file(path);
  fill(file, image, path, details);
  file.commit();
}

std::string write_numbered_image(const Image& image, const std::string& path) {
  for (unsigned int number = 1;; ++number) {
    const std::string candidate = numbered_path(path, number);
    if (is_there(candidate)) {
      continue;
    }
    AtomicFile file(candidate);
    fill(file, image, candidate, {});
    if (file.commit_new()) {
      return candidate;
    }
  }
}

}  // namespace hvk3
