#include "hvk3/png_file.h"

#include <png.h>

namespace hvk3 {
namespace {

/// libpng reports a failure by a jump back to `write`, past no object that needs destroying.
void ignore_message(png_structp /*png*/, png_const_charp /*text*/) {}

[[noreturn]] void leave(png_structp png, png_const_charp /*text*/) { png_longjmp(png, 1); }

class PngWriter {
 public:
  PngWriter()
      : m_pPng(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, &leave, &ignore_message)),
        m_pInfo(m_pPng != nullptr ? png_create_info_struct(m_pPng) : nullptr) {}
  ~PngWriter() { png_destroy_write_struct(&m_pPng, &m_pInfo); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  bool write(Osv::lx::ImageView image, std::FILE* stream) {
    if (m_pInfo == nullptr || setjmp(png_jmpbuf(m_pPng)) != 0) {  // NOLINT: libpng's way of failing
      return false;
    }
    png_init_io(m_pPng, stream);
    write_header(image);
    for (std::size_t y = 0; y < image.height(); ++y) {
      png_write_row(m_pPng, image.row_from_top(y));
    }
    png_write_end(m_pPng, m_pInfo);
    return true;
  }

 private:
  void write_header(Osv::lx::ImageView image) {
    constexpr int kBitsPerPixel = 8;
    png_set_IHDR(m_pPng, m_pInfo, static_cast<png_uint_32>(image.width()),
                 static_cast<png_uint_32>(image.height()), kBitsPerPixel, PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(m_pPng, m_pInfo, static_cast<png_uint_32>(image.x_pixels_per_metre()),
                 static_cast<png_uint_32>(image.y_pixels_per_metre()), PNG_RESOLUTION_METER);
    png_write_info(m_pPng, m_pInfo);
  }

  png_structp m_pPng;
  png_infop m_pInfo;
};

}  // namespace

bool write_png(const Image& image, std::FILE* stream) {
  return PngWriter().write(image.view(), stream);
}

}  // namespace hvk3
