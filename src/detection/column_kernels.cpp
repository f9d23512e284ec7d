#include "detection/column_kernels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "foundation/pixel_kernels.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

// The sums.

/// Columns whose sums are gathered together: their lanes stay in the first cache.
constexpr unsigned long kPanelColumns = 2048;

/// Rows read side by side, so that each visit to a lane adds several pixels.
constexpr unsigned long kRowsAtOnce = 8;

/// Rows until the lanes have to be emptied.
constexpr unsigned long kRowsPerFlush = 256;

static_assert(kRowsPerFlush * 255 <= UINT16_MAX, "a lane must hold the sum of its column");
static_assert(kRowsPerFlush % kRowsAtOnce == 0);

/// Sums of pairs of columns in 16 bits. A pair is read as one word with the left column in its low
/// byte. `words` overflows freely: without 256 times the right column's sum it is the left one's.
struct Lanes {
  std::array<std::uint16_t, kPanelColumns / 2> words;
  std::array<std::uint16_t, kPanelColumns / 2> rights;
};

void clear(Lanes& lanes, unsigned long pairs) {
  std::fill_n(lanes.words.begin(), pairs, std::uint16_t{0});
  std::fill_n(lanes.rights.begin(), pairs, std::uint16_t{0});
}

void flush(const Lanes& lanes, std::span<unsigned long> sums) {
  for (unsigned long column = 0; column < sums.size(); ++column) {
    const std::uint16_t right = lanes.rights[column / 2];
    const auto left = static_cast<std::uint16_t>(lanes.words[column / 2] - (right << 8));
    sums[column] += column % 2 == 0 ? left : right;
  }
}

/// Adds the columns from `pixels` on. An odd last column is read with the byte of padding behind
/// it, which every row of odd width has.
void add_panel(const unsigned char* pixels, unsigned long stride, unsigned long height,
               std::span<unsigned long> sums) {
  const img::PixelKernels& kernels = img::pixel_kernels();
  const unsigned long pairs = (sums.size() + 1) / 2;
  Lanes lanes;
  for (unsigned long row = 0; row < height;) {
    const unsigned long end = row + std::min(kRowsPerFlush, height - row);
    clear(lanes, pairs);
    for (; row + kRowsAtOnce <= end; row += kRowsAtOnce) {
      kernels.add_eight_rows(lanes.words.data(), lanes.rights.data(), pixels + row * stride, stride,
                             pairs);
    }
    for (; row < end; ++row) {
      kernels.add_row(lanes.words.data(), lanes.rights.data(), pixels + row * stride, pairs);
    }
    flush(lanes, sums);
  }
}

// The copy.

/// Columns that are copied or passed over together.
constexpr unsigned long kBlockColumns = 64;

/// How many of a block's columns are marked.
enum class Marked { kNone, kSome, kAll };

/// Of the block that begins at `from`.
Marked marked_of_block(std::span<const unsigned char> marks, unsigned long from) {
  unsigned char any = 0;
  unsigned char all = kColumnMarked;
  for (const unsigned char mark :
       marks.subspan(from, std::min(kBlockColumns, marks.size() - from))) {
    any = static_cast<unsigned char>(any | mark);
    all = static_cast<unsigned char>(all & mark);
  }
  return all != 0 ? Marked::kAll : any != 0 ? Marked::kSome : Marked::kNone;
}

/// Blocks next to each other with equally many marks.
struct Strip {
  unsigned long from;
  unsigned long to;
  Marked marked;
};

/// The strip that begins at `from`, before the end of the marks.
Strip strip_at(std::span<const unsigned char> marks, unsigned long from) {
  const Marked marked = marked_of_block(marks, from);
  unsigned long to = from;
  while (to < marks.size() && marked_of_block(marks, to) == marked) {
    to += kBlockColumns;
  }
  return {from, std::min(to, marks.size()), marked};
}

/// Copies within one strip, which begins at `column` of the images.
void copy_strip(const ClSimpleBitmap& source, ClSimpleBitmap& target, unsigned long column,
                std::span<const unsigned char> marks, Marked marked) {
  const auto replace_marked = img::pixel_kernels().replace_marked;
  const unsigned long stride = source.BPRow();
  const unsigned long size = std::min(source.PixelSize(), target.PixelSize());
  unsigned char* const to = target.Pixel();
  const unsigned char* const from = source.Pixel();
  for (unsigned long offset = column; offset < size; offset += stride) {
    const unsigned long count = std::min(marks.size(), size - offset);
    if (marked == Marked::kAll) {
      std::memcpy(to + offset, from + offset, count);
    } else {
      replace_marked(to + offset, from + offset, marks.data(), count);
    }
  }
}

}  // namespace

void column_sums(const ClSimpleBitmap& bitmap, std::span<unsigned long> sums) {
  std::fill(sums.begin(), sums.end(), 0UL);
  for (unsigned long from = 0; from < sums.size(); from += kPanelColumns) {
    add_panel(bitmap.Pixel() + from, bitmap.BPRow(), bitmap.Height(),
              sums.subspan(from, std::min(kPanelColumns, sums.size() - from)));
  }
}

void copy_columns(const ClSimpleBitmap& source, ClSimpleBitmap& target, unsigned long first,
                  std::span<const unsigned char> marks) {
  for (unsigned long from = 0; from < marks.size();) {
    const Strip strip = strip_at(marks, from);
    if (strip.marked != Marked::kNone) {
      copy_strip(source, target, first + strip.from,
                 marks.subspan(strip.from, strip.to - strip.from), strip.marked);
    }
    from = strip.to;
  }
}

}  // namespace Osv::lx
