#ifndef OSTREVANHVK3_IMAGE_BLOCK_H
#define OSTREVANHVK3_IMAGE_BLOCK_H

/// @file
/// The image block that callbacks and `GetImage` deliver.
///
/// One contiguous block: the header below, a palette of 4-byte entries (blue, green, red, 0), then
/// the pixel rows. This plug-in delivers 8 bits per pixel with 256 palette entries, the identity
/// ramp: a pixel byte is its gray level, 0 black, 255 white; ridges are dark. Each row is padded to
/// a multiple of 4 bytes. Row 0 in memory is the *lowest* row of the picture.

#include <cstddef>
#include <cstdint>

/// The header at the start of a block. 40 bytes, little-endian.
struct tagBITMAPINFOHEADER {
  std::uint32_t biSize;          ///< always 40
  std::int32_t biWidth;          ///< pixels
  std::int32_t biHeight;         ///< rows, always positive
  std::uint16_t biPlanes;        ///< always 1
  std::uint16_t biBitCount;      ///< bits per pixel; 8 in every delivered image
  std::uint32_t biCompression;   ///< 0 plain, 3 colour masks in place of a palette
  std::uint32_t biSizeImage;     ///< row stride times height
  std::int32_t biXPelsPerMeter;  ///< horizontal resolution, pixels per metre
  std::int32_t biYPelsPerMeter;  ///< vertical resolution, pixels per metre
  std::uint32_t biClrUsed;       ///< palette entries, 0 for the full palette of the depth
  std::uint32_t biClrImportant;  ///< 0
};

static_assert(sizeof(tagBITMAPINFOHEADER) == 40, "the header is a binary contract");
static_assert(offsetof(tagBITMAPINFOHEADER, biClrImportant) == 36,
              "the header is a binary contract");

namespace Osv {
namespace lx {

/// A read-only view of an 8-bit image block. It owns nothing: it lives as long as the block does,
/// inside a callback until the callback returns.
class ImageView {
 public:
  /// `block` is what a callback or `GetImage` delivered, not null.
  explicit ImageView(const unsigned char* block)
      : m_pHeader(reinterpret_cast<const tagBITMAPINFOHEADER*>(block)) {}

  /// Pixels in a row, without padding.
  std::size_t width() const { return static_cast<std::size_t>(m_pHeader->biWidth); }

  /// Number of rows.
  std::size_t height() const { return static_cast<std::size_t>(m_pHeader->biHeight); }

  /// Bytes from one row to the next: the width rounded up to a multiple of 4.
  std::size_t stride() const { return (width() + 3) / 4 * 4; }

  /// Pixels per metre, horizontally and vertically; 19685 is 500 dots per inch.
  /// @{
  int x_pixels_per_metre() const { return m_pHeader->biXPelsPerMeter; }
  int y_pixels_per_metre() const { return m_pHeader->biYPelsPerMeter; }
  /// @}

  /// The pixel rows as they stand in memory, the lowest row of the picture first.
  const unsigned char* pixels() const {
    const std::size_t entries = m_pHeader->biClrUsed != 0 ? m_pHeader->biClrUsed : 256;
    return reinterpret_cast<const unsigned char*>(m_pHeader) + sizeof(tagBITMAPINFOHEADER) +
           4 * entries;
  }

  /// Row `y` of the picture counted from its top, `width()` pixels.
  const unsigned char* row_from_top(std::size_t y) const {
    return pixels() + (height() - 1 - y) * stride();
  }

  /// Bytes of the whole block: what to copy to keep the image.
  std::size_t block_size() const {
    return static_cast<std::size_t>(pixels() - reinterpret_cast<const unsigned char*>(m_pHeader)) +
           stride() * height();
  }

 private:
  const tagBITMAPINFOHEADER* m_pHeader;
};

}  // namespace lx
}  // namespace Osv

#endif
