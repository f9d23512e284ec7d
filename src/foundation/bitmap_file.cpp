#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "foundation/image_functions.h"

/// @file
/// Bitmap files: a small header of their own, then the block as it stands in memory.

namespace Osv::utilities {
namespace {

constexpr int kBadFile = -4000;
constexpr std::uint16_t kSignature = 19778;  // "BM"
constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kFileSizePosition = 2;
constexpr std::size_t kPixelOffsetPosition = 10;
constexpr std::size_t kHeaderSize = sizeof(tagBITMAPINFOHEADER);
constexpr unsigned long kEntrySize = 4;

using FileHeader = std::array<char, kFileHeaderSize>;

[[noreturn]] void refuse(const char* text) { throw CXOtherException(text, kBadFile); }

/// Not all of the bytes is a failure of the system; where the file merely ends early its number is
/// 0 and not what an earlier failure left.
void read_all(std::istream& in, void* out, std::size_t size) {
  errno = 0;
  in.read(static_cast<char*>(out), static_cast<std::streamsize>(size));
  if (static_cast<std::size_t>(in.gcount()) != size) {
    throw CXSystemException();
  }
}

/// Reads the file's own header and gives the position of the pixels that it tells.
std::uint32_t read_pixel_offset(std::istream& in) {
  FileHeader header{};
  in.read(header.data(), header.size());
  if (in.gcount() == 0) {
    refuse("The file is empty");
  }
  std::uint16_t signature = 0;
  std::memcpy(&signature, header.data(), sizeof(signature));
  if (static_cast<std::size_t>(in.gcount()) < header.size() || signature != kSignature) {
    refuse("The file is not bitmap");
  }
  std::uint32_t offset = 0;
  std::memcpy(&offset, header.data() + kPixelOffsetPosition, sizeof(offset));
  return offset;
}

tagBITMAPINFOHEADER read_header(std::istream& in) {
  tagBITMAPINFOHEADER bi{};
  read_all(in, &bi, sizeof(bi));
  if (bi.biBitCount != 8) {
    refuse("Only gray scale bitmap can be loaded.");
  }
  if (bi.biCompression != 0) {
    refuse("Only RGB compression bitmap can be loaded");
  }
  return bi;
}

/// Takes memory only for what the file holds: the count in its header may promise gigabytes.
std::vector<unsigned char> read_palette(std::istream& in, std::size_t size) {
  constexpr std::size_t kPiece = 1024;
  std::vector<unsigned char> palette;
  while (palette.size() < size) {
    const std::size_t have = palette.size();
    const std::size_t piece = std::min(kPiece, size - have);
    palette.resize(have + piece);
    read_all(in, palette.data() + have, piece);
  }
  return palette;
}

/// The width of a gap behind the palette is taken as a position in the file, and is to stay so:
/// reading then goes on from the wrong place.
void skip_gap(std::istream& in, std::int64_t gap) {
  if (gap > 0 && !in.seekg(gap)) {
    refuse("The pixel were not found.");
  }
}

/// Pixels that the file doesn't hold are 0.
void read_pixels(std::istream& in, unsigned char* pixels, std::size_t size) {
  in.read(reinterpret_cast<char*>(pixels), static_cast<std::streamsize>(size));
  std::fill(pixels + in.gcount(), pixels + size, static_cast<unsigned char>(0));
}

FileHeader file_header(const ClSimpleBitmap& bitmap) {
  FileHeader header{};
  const auto size = static_cast<std::uint32_t>(bitmap.FullSize() + kFileHeaderSize);
  const auto offset = static_cast<std::uint32_t>(size - bitmap.PixelSize());
  std::memcpy(header.data(), &kSignature, sizeof(kSignature));
  std::memcpy(header.data() + kFileSizePosition, &size, sizeof(size));
  std::memcpy(header.data() + kPixelOffsetPosition, &offset, sizeof(offset));
  return header;
}

void write(std::ostream& out, const void* bytes, std::size_t size) {
  if (!out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size))) {
    throw CXSystemException();
  }
}

}  // namespace

void ClSimpleBitmap::Load(const char* path) {
  std::ifstream in(path, std::ios::binary);
  if (!in.is_open()) {
    throw CXSystemException();
  }
  const std::int64_t offset = read_pixel_offset(in);
  const tagBITMAPINFOHEADER bi = read_header(in);
  const std::vector<unsigned char> palette = read_palette(in, kEntrySize * PalSize(&bi));
  const std::size_t begin = kHeaderSize + palette.size();
  skip_gap(in, offset - static_cast<std::int64_t>(kFileHeaderSize + begin));

  img::check_block(static_cast<unsigned long>(bi.biWidth), static_cast<unsigned long>(bi.biHeight),
                   bi.biBitCount, bi.biCompression);
  const unsigned long size = FullSize(&bi);
  std::unique_ptr<unsigned char[]> block = NewBlock(size);
  std::memcpy(block.get(), &bi, kHeaderSize);
  std::copy(palette.begin(), palette.end(), block.get() + kHeaderSize);
  read_pixels(in, block.get() + begin, size - begin);
  m_pBlock = std::move(block);
}

void ClSimpleBitmap::Save(const char* path) const {
  if (Empty()) {
    return;
  }
  std::ofstream out;
  out.rdbuf()->pubsetbuf(nullptr, 0);  // each write reaches the system, which may refuse it
  out.open(path, std::ios::binary);
  if (!out.is_open()) {
    throw CXSystemException();
  }
  write(out, file_header(*this).data(), kFileHeaderSize);
  write(out, BI(), kHeaderSize + kEntrySize * PalSize());
  write(out, Pixel(), PixelSize());
  out.close();
  if (!out) {
    throw CXSystemException();
  }
}

}  // namespace Osv::utilities
