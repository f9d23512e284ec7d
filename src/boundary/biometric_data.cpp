#include <array>
#include <cstring>
#include <limits>
#include <new>

#include "foundation/image_functions.h"
#include "foundation/malloc_pointer.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3/module_exception.h"

namespace Osv::lx {
namespace {

struct VersionText {
  unsigned short version;
  const char* text;
};

constexpr std::array<VersionText, 2> kVersions = {{{0x0101, "1.0"}, {0x0201, "2.0"}}};

/// Refuses a header that no block can answer to. What passes doesn't overflow: a row of 32 bits,
/// which is also the width of its field, and a height of 31.
void check(const tagBITMAPINFOHEADER& bi) {
  constexpr unsigned long kLongestRow = std::numeric_limits<std::uint32_t>::max();
  if (bi.biWidth < 0 || bi.biHeight < 0 || img::bmp_bpr(&bi) > kLongestRow) {
    throw std::bad_alloc();
  }
}

osvlx3_biometric_image describe(const tagBITMAPINFOHEADER& bi) {
  return {.width = bi.biWidth,
          .height = bi.biHeight,
          .bytes_per_row = static_cast<std::uint32_t>(img::bmp_bpr(&bi)),
          .bits_per_pixel = static_cast<std::uint8_t>(bi.biBitCount),
          .reserved = {},
          .x_pels_per_meter = bi.biXPelsPerMeter,
          .y_pels_per_meter = bi.biYPelsPerMeter,
          .pixel_size = img::bmp_pixel_size(static_cast<unsigned long>(bi.biWidth),
                                            static_cast<unsigned long>(bi.biHeight), bi.biBitCount),
          .count = 1,
          .pixels = nullptr};
}

}  // namespace

void image2biodata(const unsigned char* bitmap, osvlx3_biometric_data* target) {
  const auto* const bi = reinterpret_cast<const tagBITMAPINFOHEADER*>(bitmap);
  check(*bi);
  osvlx3_biometric_image image = describe(*bi);
  const unsigned long size = image.pixel_size + sizeof(image);
  MAllocPointer block(size);
  image.pixels = static_cast<unsigned char*>(block.get()) + sizeof(image);
  std::memcpy(block.get(), &image, sizeof(image));
  std::memcpy(image.pixels, img::bmp_pixel(bi), image.pixel_size);
  target->tag1 = 1;
  target->tag2 = 1;
  target->tag3 = 0;
  target->size = size;
  target->count = 1;
  target->data = block.detach();
}

const char* infver2str(unsigned short version) {
  for (const VersionText& known : kVersions) {
    if (known.version == version) {
      return known.text;
    }
  }
  throw CLX3ModuleException(error_number::UnknownVersion);
}

}  // namespace Osv::lx
