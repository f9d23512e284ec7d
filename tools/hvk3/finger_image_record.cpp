#include "hvk3/finger_image_record.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "hvk3/failure.h"
#include "hvk3/gray_rows.h"
#include "hvk3/png_file.h"

namespace hvk3 {
namespace {

/// The fields of a header, one behind the other, numbers with their highest byte first.
class Fields {
 public:
  void text(std::string_view characters) { m_sBytes += characters; }

  void number(std::uint64_t value, unsigned int bytes) {
    constexpr unsigned int kBits = 8;
    if (value >> (kBits * bytes) != 0) {
      throw Failure(ExitStatus::OutputFailed, "the image is too large for a finger image record");
    }
    for (unsigned int byte = bytes; byte-- > 0;) {
      m_sBytes += static_cast<char>(value >> (kBits * byte));
    }
  }

  const std::string& bytes() const { return m_sBytes; }

 private:
  std::string m_sBytes;
};

std::uint64_t pixels_per_centimetre(int pixels_per_metre) {
  constexpr double kCentimetres = 100.0;
  return static_cast<std::uint64_t>(std::lround(std::max(pixels_per_metre, 0) / kCentimetres));
}

/// The highest level whose resolution the image has, with 8 bits per pixel. Not 31 or 41: these
/// are for devices that were certified.
unsigned int acquisition_level(std::uint64_t pixels_per_centimetre) {
  struct Level {
    unsigned int pixels_per_centimetre;
    unsigned int number;
  };
  constexpr std::array kLevels = {Level{394, 40}, Level{295, 35}, Level{197, 30}, Level{98, 20}};
  const auto reached = std::find_if(kLevels.begin(), kLevels.end(), [&](const Level& level) {
    return pixels_per_centimetre >= level.pixels_per_centimetre;
  });
  constexpr unsigned int kLowest = 10;
  return reached != kLevels.end() ? reached->number : kLowest;
}

/// The bytes of the image as they stand in the record; empty when there is no memory for them.
std::string encoded(const Image& image, eRecordCompression compression) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = ::open_memstream(&bytes, &size);
  if (stream == nullptr) {
    return {};
  }
  const bool written = compression == eRecordCompression::Png
                           ? write_png(image, stream)
                           : write_gray_rows(image.view(), stream);
  const bool closed = std::fclose(stream) == 0;
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  return written && closed ? std::string(bytes, size) : std::string();
}

void put_resolution(Fields& fields, Osv::lx::ImageView image) {
  fields.number(pixels_per_centimetre(image.x_pixels_per_metre()), 2);
  fields.number(pixels_per_centimetre(image.y_pixels_per_metre()), 2);
}

Fields record_header(const Image& image, const RecordDetails& details, std::size_t record_length) {
  constexpr unsigned int kFingers = 1;
  constexpr unsigned int kPerCentimetre = 2;
  constexpr unsigned int kBitsPerPixel = 8;
  const Osv::lx::ImageView view = image.view();
  Fields fields;
  fields.text(
      std::string_view("FIR\0"
                       "010\0",
                       8));
  fields.number(record_length, 6);
  fields.number(details.device_id, 2);
  fields.number(acquisition_level(pixels_per_centimetre(
                    std::min(view.x_pixels_per_metre(), view.y_pixels_per_metre()))),
                2);
  fields.number(kFingers, 1);
  fields.number(kPerCentimetre, 1);
  put_resolution(fields, view);  // of the scan
  put_resolution(fields, view);  // of the image
  fields.number(kBitsPerPixel, 1);
  fields.number(static_cast<unsigned char>(details.compression), 1);
  fields.number(0, 2);
  return fields;
}

void put_finger_header(Fields& fields, const Image& image, const RecordDetails& details,
                       std::size_t finger_length) {
  constexpr unsigned int kViews = 1;
  constexpr unsigned int kView = 1;
  constexpr unsigned int kUndetermined = 254;
  fields.number(finger_length, 4);
  fields.number(static_cast<unsigned char>(details.position), 1);
  fields.number(kViews, 1);
  fields.number(kView, 1);
  fields.number(details.quality.value_or(kUndetermined), 1);
  fields.number(static_cast<unsigned char>(details.impression), 1);
  fields.number(image.view().width(), 2);
  fields.number(image.view().height(), 2);
  fields.number(0, 1);
}

}  // namespace

bool write_finger_image_record(const Image& image, const RecordDetails& details,
                               std::FILE* stream) {
  constexpr std::size_t kRecordHeader = 32;
  constexpr std::size_t kFingerHeader = 14;
  const std::string pixels = encoded(image, details.compression);
  Fields fields = record_header(image, details, kRecordHeader + kFingerHeader + pixels.size());
  put_finger_header(fields, image, details, kFingerHeader + pixels.size());
  const std::string& headers = fields.bytes();
  return !pixels.empty() && std::fwrite(headers.data(), headers.size(), 1, stream) == 1 &&
         std::fwrite(pixels.data(), pixels.size(), 1, stream) == 1;
}

}  // namespace hvk3
