#pragma once

#include <cstddef>
#include <cstdint>

#include "ostrevanhvk3/image_block.h"

/// @file
/// Free functions on image blocks and pixel rows.
///
/// Sizes are in pixels, depths in bits per pixel, strides in bytes. Rows are padded to a multiple
/// of 4 bytes, and the padding counts as part of the row.

namespace Osv::img {

/// Pixels per metre of a number of dots per inch, cut to a whole number.
unsigned long dpi2pels(unsigned long dpi);

/// Bytes from one row to the next.
unsigned long image_bpr(unsigned long width, unsigned long bits);

unsigned long bmp_bpr(const tagBITMAPINFOHEADER* bi);

/// Bytes of all rows.
unsigned long bmp_pixel_size(unsigned long width, unsigned long height, unsigned long bits);

/// Bytes of a block with the full palette of its depth; only good for palette depths.
unsigned long bmp_size(unsigned long width, unsigned long height, unsigned long bits);

/// Bytes of the block behind `bi`.
unsigned long bmp_size(const tagBITMAPINFOHEADER* bi);

/// Palette entries. Differs from `ClSimpleBitmap::PalSize` for colour masks, and is to stay so: a
/// palette depth with masks counts 3 entries only when the header tells how many it uses, and above
/// 8 bits the masks don't count.
unsigned long bmp_palette_size(const tagBITMAPINFOHEADER* bi);

/// The pixel rows of a block.
unsigned char* bmp_pixel(tagBITMAPINFOHEADER* bi);
const unsigned char* bmp_pixel(const tagBITMAPINFOHEADER* bi);

/// Complements every byte of every row, padding included.
void image_invert(unsigned long width, unsigned long height, unsigned long bits,
                  unsigned char* pixels);

/// Does nothing and returns null; kept for the interface.
tagBITMAPINFOHEADER* clip_bitmap(const tagBITMAPINFOHEADER* bi, unsigned long x, unsigned long y,
                                 unsigned long width, unsigned long height, unsigned long xpels,
                                 unsigned long ypels, bool use_malloc);

/// Copies `height` rows of `width` bytes without padding from `src` to padded rows at `dst`, the
/// last row first. Below 8 bits, where a row is shorter than `width` bytes, it gets as many as it
/// holds.
void fill_image_data(unsigned char* dst, const unsigned char* src, unsigned long width,
                     unsigned long height, unsigned long bits);

/// A copy of a block of at least `bmp_size` bytes, from `malloc` or from array `new`; the caller
/// owns it.
/// @throws CXMemoryAllocException
unsigned char* create_bmp_copy(const tagBITMAPINFOHEADER* bi, bool use_malloc);

/// A new block of plain rows with a gray ramp, from `malloc` or from array `new`; the caller owns
/// it. `data` holds padded rows, or is null for pixels without particular content.
/// @throws CXMemoryAllocException also for sizes that a header can't hold
unsigned char* create_bmp(unsigned long width, unsigned long height, unsigned long bits,
                          unsigned long xpels, unsigned long ypels, const unsigned char* data,
                          bool use_malloc);

/// Refuses sizes that overflow or that a header can't hold, which also keeps every product of them
/// from overflowing.
/// @throws CXMemoryAllocException
void check_block(unsigned long width, unsigned long height, unsigned long bits,
                 unsigned long compression);

/// Writes the header fields of a plain or masked block; leaves palette and pixels alone.
void fill_header(tagBITMAPINFOHEADER* bi, unsigned long width, unsigned long height,
                 unsigned long bits, unsigned long compression);

/// Writes the gray ramp of a depth of 1 to 8 bits behind the header; nothing for other depths.
void fill_gray_ramp(tagBITMAPINFOHEADER* bi, unsigned long bits);

/// The byte address behind the header, where palette or pixels begin.
inline unsigned char* behind_header(tagBITMAPINFOHEADER* bi) {
  return reinterpret_cast<unsigned char*>(bi) + sizeof(tagBITMAPINFOHEADER);
}

/// True when every byte is 0, also of none.
bool all_zero(const unsigned char* bytes, std::size_t size);

}  // namespace Osv::img
