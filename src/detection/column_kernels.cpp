#include "detection/column_kernels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

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

std::uint16_t word_at(const unsigned char* pixels) {
  std::uint16_t word = 0;
  std::memcpy(&word, pixels, sizeof(word));
  return word;
}

/// Adds `kRows` rows from `pixels` on.
template <unsigned long kRows>
void add_rows(Lanes& lanes, const unsigned char* pixels, unsigned long stride,
              unsigned long pairs) {
  for (unsigned long pair = 0; pair < pairs; ++pair) {
    std::uint16_t words = lanes.words[pair];
    std::uint16_t rights = lanes.rights[pair];
    for (unsigned long row = 0; row < kRows; ++row) {
      const std::uint16_t word = word_at(pixels + row * stride + 2 * pair);
      words = static_cast<std::uint16_t>(words + word);
      rights = static_cast<std::uint16_t>(rights + (word >> 8));
    }
    lanes.words[pair] = words;
    lanes.rights[pair] = rights;
  }
}

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
  const unsigned long pairs = (sums.size() + 1) / 2;
  Lanes lanes;
  for (unsigned long row = 0; row < height;) {
    const unsigned long end = row + std::min(kRowsPerFlush, height - row);
    clear(lanes, pairs);
    for (; row + kRowsAtOnce <= end; row += kRowsAtOnce) {
      add_rows<kRowsAtOnce>(lanes, pixels + row * stride, stride, pairs);
    }
    for (; row < end; ++row) {
      add_rows<1>(lanes, pixels + row * stride, stride, pairs);
    }
    flush(lanes, sums);
  }
}

// The copy.

/// Columns that are copied or passed over together.
constexpr unsigned long kBlockColumns = 64;

/// Columns next to each other.
struct Strip {
  unsigned long from;
  unsigned long to;
};

/// True when a column of the block that begins at `from` is marked.
bool block_is_marked(std::span<const unsigned char> marks, unsigned long from) {
  unsigned char any = 0;
  for (const unsigned char mark :
       marks.subspan(from, std::min(kBlockColumns, marks.size() - from))) {
    any = static_cast<unsigned char>(any | mark);
  }
  return any != 0;
}

/// The next blocks with marked columns from `from` on; empty at the end of the marks.
Strip next_strip(std::span<const unsigned char> marks, unsigned long from) {
  while (from < marks.size() && !block_is_marked(marks, from)) {
    from += kBlockColumns;
  }
  unsigned long to = from;
  while (to < marks.size() && block_is_marked(marks, to)) {
    to += kBlockColumns;
  }
  return {std::min(from, marks.size()), std::min(to, marks.size())};
}

/// Replaces the marked bytes.
void blend(unsigned char* target, const unsigned char* source, const unsigned char* marks,
           unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) {
    target[i] = static_cast<unsigned char>((source[i] & marks[i]) | (target[i] & ~marks[i]));
  }
}

/// Copies within one strip, which begins at `column` of the images.
void copy_strip(const ClSimpleBitmap& source, ClSimpleBitmap& target, unsigned long column,
                std::span<const unsigned char> marks) {
  const unsigned long stride = source.BPRow();
  const unsigned long size = std::min(source.PixelSize(), target.PixelSize());
  unsigned char* const to = target.Pixel();
  const unsigned char* const from = source.Pixel();
  for (unsigned long offset = column; offset < size; offset += stride) {
    blend(to + offset, from + offset, marks.data(), std::min(marks.size(), size - offset));
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
  Strip strip = next_strip(marks, 0);
  while (strip.from < strip.to) {
    copy_strip(source, target, first + strip.from,
               marks.subspan(strip.from, strip.to - strip.from));
    strip = next_strip(marks, strip.to);
  }
}

}  // namespace Osv::lx
