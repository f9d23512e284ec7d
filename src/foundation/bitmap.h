#pragma once

#include <memory>

#include "ostrevanhvk3/image_block.h"

/// @file
/// The image of the whole plug-in.

namespace Osv::utilities {

/// Owns one image block: header, palette, pixel rows. Empty without one.
///
/// Row `y` begins `y` strides behind the first pixel; the class attaches no direction to rows. A
/// byte of an 8-bit image is its gray level. Queries answer 0 or null on an empty bitmap and
/// setters do nothing. No lock: one thread owns a bitmap at a time.
class ClSimpleBitmap {
 public:
  /// How `Rescale` makes the new picture. Any other number is refused.
  enum eRescaleMode : int {
    eRescaleBilinear = 0,  ///< to the given size, each pixel blended from four
    eRescaleDouble = 1     ///< to twice the present size, each pixel repeated
  };

  ClSimpleBitmap() = default;
  ClSimpleBitmap(const ClSimpleBitmap& other);
  ~ClSimpleBitmap() = default;

  /// A deep copy, of one allocation and one block copy.
  ClSimpleBitmap& operator=(const ClSimpleBitmap& other);

  /// Releases the block.
  void Clear() { m_pBlock.reset(); }

  /// Makes a block with a header and, for depths of 1 to 8, the gray ramp. Pixels have no
  /// particular content.
  /// @throws CXMemoryAllocException when memory runs out, or when a size overflows or does not fit
  ///   the header; the bitmap is then empty
  void Create(unsigned long width, unsigned long height, unsigned long bits,
              unsigned long compression);

  /// Copies the block of `source`, which stays with its owner; null empties the bitmap.
  /// @throws CXMemoryAllocException with the bitmap empty
  void Copy(const tagBITMAPINFOHEADER* source);

  /// Takes ownership of a block from array `new`.
  void Attach(tagBITMAPINFOHEADER* block);

  /// Gives the block to the caller, who releases it with array `delete`.
  unsigned char* Detach() { return m_pBlock.release(); }

  bool Empty() const { return m_pBlock == nullptr; }
  tagBITMAPINFOHEADER* BI() const;
  unsigned long Width() const;
  unsigned long Height() const;
  unsigned long BitCount() const;
  unsigned long XPels() const;  ///< horizontal pixels per metre
  unsigned long YPels() const;  ///< vertical pixels per metre
  unsigned long BPRow() const;  ///< bytes from one row to the next
  unsigned long PalSize() const { return PalSize(BI()); }
  unsigned long PixelSize() const { return Height() * BPRow(); }  ///< bytes of all rows
  unsigned long FullSize() const { return FullSize(BI()); }       ///< bytes of the whole block
  std::uint32_t* Palette() const;
  unsigned char* Pixel() { return Pixel(BI()); }
  const unsigned char* Pixel() const { return Pixel(BI()); }

  static unsigned long PalSize(const tagBITMAPINFOHEADER* bi);
  static unsigned char* Pixel(tagBITMAPINFOHEADER* bi);
  static unsigned long FullSize(const tagBITMAPINFOHEADER* bi);
  static unsigned long BPRow(unsigned long width, unsigned long bits);

  /// Writes header, ramp and colour masks into a block; null does nothing. The masks take 24 bytes
  /// from the palette's start, twice what readers of 32-bit words expect, and are to stay so: with
  /// masks the block has to have at least 64 bytes.
  static void FillBI(tagBITMAPINFOHEADER* bi, unsigned long width, unsigned long height,
                     unsigned long bits, unsigned long compression);

  /// Stores pixels per metre as given.
  void SetPels(unsigned long x, unsigned long y);

  /// Stores dots per inch as pixels per metre, cut to whole numbers.
  void SetResolution(unsigned long x, unsigned long y);

  void SetBlack();
  void SetWhite();

  /// The colour of a pixel; x and y are not checked. At 16 and 32 bits the masks are applied to 1
  /// for any pixel that is not black and to 0 for a black one, not to the pixel's number; this is
  /// to stay so. An index beyond a shortened palette gives 4294967295.
  unsigned int GetPixel(unsigned long x, unsigned long y) const;

  /// Sets a pixel; x and y are not checked. Up to 8 bits a colour that is not in the palette
  /// changes nothing.
  void SetPixel(unsigned long x, unsigned long y, unsigned int colour);

  /// Index of the lowest set bit of a mask, 32 for none, and the length of the run from there.
  void MaskData(long mask, long& position, long& length) const;

  /// Turns the rows upside down.
  void FlipY();
  static void FlipY(unsigned long width, unsigned long height, unsigned long bits,
                    unsigned char* pixels);

  /// Complements every byte of the rows, padding included; the palette stays.
  void Invert();
  static void Invert(unsigned long width, unsigned long height, unsigned long bits,
                     unsigned char* pixels);

  /// Replaces the picture by a plain one of another size with the gray ramp of its depth and no
  /// resolution. An empty bitmap stays as it is.
  ///
  /// Bilinear is meant for 8 bits; other depths go through their colours, and a gray that the new
  /// ramp lacks becomes black. Where the source column or row of a pixel, cut to a whole number,
  /// equals the last one of the *target*, the pixel is black, and is to stay so: scaling to the
  /// same size blackens the last column and the last row. A width or height of 1 gives black.
  ///
  /// Doubling repeats bytes, so it is good for 8 bits only, and looks at the size only to refuse 0.
  /// @param width pixels, at least 1
  /// @param height rows, at least 1
  /// @throws ClContextException<CXOtherException> -14 for a width or height of 0, -33 for another
  ///   mode; the bitmap is then as it was
  /// @throws CXMemoryAllocException as `Create` does, std::bad_alloc without memory for the tables
  ///   of `eRescaleBilinear`; the bitmap is then as it was
  void Rescale(unsigned long width, unsigned long height, eRescaleMode mode);

  /// A new bitmap with a rectangle of this one, which has to lie inside; null for an empty bitmap.
  /// It has the gray ramp of its depth and no resolution. Below 8 bits `x` is ignored. Its padding
  /// continues the source row; what lies behind the source's last row is 0.
  /// @throws CXMemoryAllocException as `Create` does
  [[nodiscard]] std::unique_ptr<ClSimpleBitmap> clip(unsigned long x, unsigned long y,
                                                     unsigned long width,
                                                     unsigned long height) const;

  /// Reads a bitmap file of 8 bits without compression. Pixels that the file promises and does not
  /// hold are 0, and bytes behind the pixels are ignored. On every failure the bitmap keeps its old
  /// content.
  /// @throws CXSystemException when the file can't be opened, with the reason; when it ends within
  ///   its header or palette, with 0
  /// @throws CXOtherException -4000 for anything else that is no such file
  /// @throws CXMemoryAllocException for a negative size or one that no block can have
  /// @throws std::bad_alloc without memory for the palette
  void Load(const char* path);

  /// Writes a bitmap file of any depth over what was there; an empty bitmap writes none. A failure
  /// may leave a part of the file.
  /// @throws CXSystemException when the file can't be opened or written
  void Save(const char* path) const;

 private:
  static std::unique_ptr<unsigned char[]> NewBlock(unsigned long size);

  std::unique_ptr<unsigned char[]> m_pBlock;
};

}  // namespace Osv::utilities
