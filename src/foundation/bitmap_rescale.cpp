#include "foundation/bitmap_rescale.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <utility>
#include <vector>

#include "foundation/exceptions.h"

/// @file
/// Rescaling. Results are kept bit for bit, so the order of the arithmetic matters.

namespace Osv::utilities {
namespace {

constexpr int kSizeOfZero = -14;
constexpr int kUnknownMode = -33;
constexpr unsigned int kGrayToColour = 0x010101;

/// The two columns, or rows, of the source between which one of the target lies.
struct Neighbours {
  unsigned long first;
  unsigned long second;
  double first_weight;
  double second_weight;
};

/// The axis across or down, with `source` pixels stretched to `target`, which is at least 2.
class Axis {
 public:
  Axis(unsigned long source, unsigned long target)
      : m_source_last(source - 1),
        m_target_last(target - 1),
        m_step(static_cast<double>(m_source_last) / static_cast<double>(m_target_last)) {}

  /// At the source's end the second neighbour may lie one beyond it, with a weight of 0 or, after
  /// rounding, just above: the pixel to read is clamped, the weights are not. The comparison with
  /// the *target's* last pixel, where both weights cancel, is to stay so.
  Neighbours at(unsigned long target) const {
    const double position = static_cast<double>(target) * m_step;
    const auto first = static_cast<unsigned long>(position);
    const unsigned long second = first == m_target_last ? first : first + 1;
    return {std::min(first, m_source_last), std::min(second, m_source_last),
            static_cast<double>(second) - position, position - static_cast<double>(first)};
  }

 private:
  unsigned long m_source_last;
  unsigned long m_target_last;
  double m_step;
};

/// Grays of the bytes of an 8-bit picture.
using Grays = std::array<unsigned char, 256>;

Grays grays_of_bytes(const ClSimpleBitmap& source) {
  Grays grays{};
  const unsigned long entries = std::min(source.PalSize(), grays.size());
  std::fill(grays.begin() + static_cast<std::ptrdiff_t>(entries), grays.end(),
            static_cast<unsigned char>(255));
  std::transform(source.Palette(), source.Palette() + entries, grays.begin(),
                 [](std::uint32_t colour) { return static_cast<unsigned char>(colour); });
  return grays;
}

bool is_ramp(const Grays& grays) {
  Grays ramp{};
  std::iota(ramp.begin(), ramp.end(), static_cast<unsigned char>(0));
  return grays == ramp;
}

/// Columns next to each other.
struct Columns {
  unsigned long from;
  unsigned long count;
};

/// Some columns of the rows of a picture as grays. Behind the picture's last its gray is repeated.
class GrayRows {
 public:
  GrayRows(const ClSimpleBitmap& source, Columns columns)
      : m_source(source),
        m_from(columns.from),
        m_inside(std::min(columns.count, source.Width() - columns.from)),
        m_row(columns.count) {
    if (source.BitCount() == 8) {
      m_grays = grays_of_bytes(source);
      m_ramp = is_ramp(m_grays);
    }
  }

  /// Stays valid until the next is asked for.
  const unsigned char* row(unsigned long y) {
    unsigned char* const end = m_row.data() + m_inside;
    if (m_source.BitCount() == 8) {
      copy_bytes(m_source.Pixel() + y * m_source.BPRow() + m_from);
    } else {
      std::generate(m_row.data(), end, [this, x = m_from, y]() mutable {
        return static_cast<unsigned char>(m_source.GetPixel(x++, y));
      });
    }
    std::memset(end, end[-1], m_row.size() - m_inside);
    return m_row.data();
  }

 private:
  void copy_bytes(const unsigned char* bytes) {
    if (m_ramp) {
      std::memcpy(m_row.data(), bytes, m_inside);
    } else {
      std::transform(bytes, bytes + m_inside, m_row.begin(),
                     [this](unsigned char byte) { return m_grays[byte]; });
    }
  }

  const ClSimpleBitmap& m_source;
  unsigned long m_from;
  unsigned long m_inside;
  Grays m_grays{};
  bool m_ramp = false;
  std::vector<unsigned char> m_row;
};

/// The tables of `img::ColumnBlends` for some columns of the target, filled up with repetitions of
/// the last one.
class ColumnTables {
 public:
  ColumnTables(const Axis& across, Columns target)
      : m_size((target.count + kTogether - 1) / kTogether),
        m_from(across.at(target.from).first),
        m_weights(m_size),
        m_first(m_size * kTogether),
        m_places(m_size) {
    for (unsigned long x = 0; x < m_first.size(); ++x) {
      set(x, across.at(target.from + std::min(x, target.count - 1)));
    }
  }

  unsigned long size() const { return m_size; }

  /// The columns of the source that are read: the first neighbours and what lies behind the last.
  Columns source() const { return {m_from, m_first.back() + kRead}; }

  img::ColumnBlends blends() const {
    return {m_size, m_weights.data(), m_first.data(), m_near ? m_places.data() : nullptr};
  }

 private:
  static constexpr unsigned long kTogether = img::kBlendedTogether;
  static constexpr unsigned long kRead = 1 + 16;  // the second neighbour, as a vector

  /// Where both neighbours are the same column the weights cancel each other, whatever the gray:
  /// they might as well be 0, and the second may be another column.
  void set(unsigned long x, const Neighbours& column) {
    const unsigned long group = x / kTogether;
    const bool cancelled = column.first_weight == -column.second_weight;
    m_weights[group].first.values[x % kTogether] = cancelled ? 0 : column.first_weight;
    m_weights[group].second.values[x % kTogether] = cancelled ? 0 : column.second_weight;
    m_first[x] = static_cast<std::uint32_t>(column.first - m_from);
    const std::uint32_t place = m_first[x] - m_first[group * kTogether];
    m_places[group].places[x % kTogether] = img::kEmptyPlaces | place;
    m_near = m_near && place < 16;
  }

  unsigned long m_size;
  unsigned long m_from;
  std::vector<img::ColumnWeights> m_weights;
  std::vector<std::uint32_t> m_first;
  std::vector<img::BlendedPlaces> m_places;
  bool m_near = true;
};

/// The rows of a picture, blended across to some columns of the target and kept as doubles.
class BlendedRows {
 public:
  BlendedRows(const ClSimpleBitmap& source, const Axis& across, Columns target,
              const img::PixelKernels& kernels)
      : m_kernels(kernels), m_columns(across, target), m_source(source, m_columns.source()) {
    for (Row& row : m_rows) {
      row.columns.resize(m_columns.size());
    }
  }

  /// Row `y` of the source. It stays valid while only its neighbours are asked for: even and odd
  /// rows have a place each.
  const img::BlendedColumns* row(unsigned long y) {
    Row& row = m_rows[y % m_rows.size()];
    if (std::exchange(row.y, y) != y) {
      m_kernels.blend_across(m_source.row(y), m_columns.blends(), row.columns.data());
    }
    return row.columns.data();
  }

 private:
  struct Row {
    unsigned long y = ~0UL;
    std::vector<img::BlendedColumns> columns;
  };

  const img::PixelKernels& m_kernels;
  ColumnTables m_columns;
  GrayRows m_source;
  std::array<Row, 2> m_rows;
};

/// Puts grays into a row of a black picture with the gray ramp, from column `x` on.
void put_row(ClSimpleBitmap& target, unsigned long x, unsigned long y,
             const std::vector<unsigned char>& grays) {
  for (const unsigned char gray : grays) {
    target.SetPixel(x++, y, gray * kGrayToColour);
  }
}

/// Some columns of the target, row by row, each blended from two rows. At 8 bits a gray is its own
/// index in the ramp, so a row is blended where it is to lie.
void blend_columns(const ClSimpleBitmap& source, ClSimpleBitmap& target, const Axis& across,
                   Columns columns, const img::PixelKernels& kernels) {
  const unsigned long height = target.Height();
  const unsigned long stride = target.BPRow();
  const bool in_place = target.BitCount() == 8;
  BlendedRows rows(source, across, columns, kernels);
  const Axis down(source.Height(), height);
  std::vector<unsigned char> grays(in_place ? 0 : columns.count);
  unsigned char* out = in_place ? target.Pixel() + columns.from : grays.data();
  for (unsigned long y = 0; y < height; ++y) {
    const Neighbours row = down.at(y);
    const img::BlendedColumns* const top = rows.row(row.first);
    const img::BlendedColumns* const bottom = rows.row(row.second);
    kernels.blend_down(top, row.first_weight, bottom, row.second_weight, out, columns.count);
    put_row(target, columns.from, y, grays);
    out += in_place ? stride : 0;
  }
}

/// Columns of the target that are blended together from the top to the bottom, at most: what they
/// need stays in the first cache.
constexpr unsigned long kPanelColumns = 640;

/// Panels of about the same width.
void blend_panels(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                  const img::PixelKernels& kernels) {
  const unsigned long width = target.Width();
  const unsigned long panels = (width + kPanelColumns - 1) / kPanelColumns;
  const unsigned long columns =
      (width / panels / img::kBlendedTogether + 1) * img::kBlendedTogether;
  const Axis across(source.Width(), width);
  for (unsigned long from = 0; from < width; from += columns) {
    blend_columns(source, target, across, {from, std::min(columns, width - from)}, kernels);
  }
}

/// All that is no pixel, and where pixels are put one by one, them too.
void blacken(ClSimpleBitmap& target) {
  const unsigned long stride = target.BPRow();
  const unsigned long kept = target.BitCount() == 8 ? target.Width() : 0;
  for (unsigned long y = 0; y < target.Height() && kept != stride; ++y) {
    std::memset(target.Pixel() + y * stride + kept, 0, stride - kept);
  }
}

/// A target side of 1 would divide by zero, and a source without pixels has none to blend: black.
void interpolate(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                 const img::PixelKernels& kernels) {
  if (target.Width() == 1 || target.Height() == 1 || source.PixelSize() == 0) {
    target.SetBlack();
  } else {
    blacken(target);
    blend_panels(source, target, kernels);
  }
}

void repeat_pixels(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                   const img::PixelKernels& kernels) {
  const unsigned long bytes = (source.Width() * source.BitCount() + 7) / 8;
  const unsigned long stride = target.BPRow();
  const unsigned long padding = stride - 2 * bytes;
  // Of rows without bytes there may be any number.
  for (unsigned long y = 0; y < source.Height() && stride != 0; ++y) {
    unsigned char* const first = target.Pixel() + 2 * y * stride;
    kernels.double_row(source.Pixel() + y * source.BPRow(), bytes, first, first + stride);
    if (padding != 0) {
      std::memset(first + 2 * bytes, 0, padding);
      std::memset(first + stride + 2 * bytes, 0, padding);
    }
  }
}

void check_size(unsigned long width, unsigned long height) {
  if (width == 0) {
    throw MakeException<CXOtherException>("Width must be greater 0", kSizeOfZero);
  }
  if (height == 0) {
    throw MakeException<CXOtherException>("Height must be greater 0", kSizeOfZero);
  }
}

}  // namespace

ClSimpleBitmap interpolated(const ClSimpleBitmap& source, unsigned long width, unsigned long height,
                            const img::PixelKernels& kernels) {
  ClSimpleBitmap target;
  target.Create(width, height, source.BitCount(), 0);
  interpolate(source, target, kernels);
  return target;
}

ClSimpleBitmap doubled(const ClSimpleBitmap& source, const img::PixelKernels& kernels) {
  ClSimpleBitmap target;
  target.Create(2 * source.Width(), 2 * source.Height(), source.BitCount(), 0);
  repeat_pixels(source, target, kernels);
  return target;
}

void ClSimpleBitmap::Rescale(unsigned long width, unsigned long height, eRescaleMode mode) {
  check_size(width, height);
  if (mode != eRescaleBilinear && mode != eRescaleDouble) {
    throw MakeException<CXOtherException>("Scaling mode not supported", kUnknownMode);
  }
  if (Empty()) {
    return;
  }
  ClSimpleBitmap scaled =
      mode == eRescaleBilinear ? interpolated(*this, width, height) : doubled(*this);
  m_pBlock = std::move(scaled.m_pBlock);
}

}  // namespace Osv::utilities
