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
  unsigned long first = 0;
  unsigned long second = 0;
  double first_weight = 0;
  double second_weight = 0;
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

/// The rows of a picture as grays. Behind each the last gray is repeated.
class GrayRows {
 public:
  explicit GrayRows(const ClSimpleBitmap& source)
      : m_source(source), m_row(source.Width() + kRepeated) {
    if (source.BitCount() == 8) {
      m_grays = grays_of_bytes(source);
      m_ramp = is_ramp(m_grays);
    }
  }

  /// Stays valid until the next is asked for.
  const unsigned char* row(unsigned long y) {
    unsigned char* const end = m_row.data() + m_source.Width();
    if (m_source.BitCount() == 8) {
      copy_bytes(m_source.Pixel() + y * m_source.BPRow());
    } else {
      std::generate(m_row.data(), end, [this, x = 0UL, y]() mutable {
        return static_cast<unsigned char>(m_source.GetPixel(x++, y));
      });
    }
    std::memset(end, end[-1], kRepeated);
    return m_row.data();
  }

 private:
  static constexpr std::size_t kRepeated = 1 + 16;  // the last column's neighbour; what may be read

  void copy_bytes(const unsigned char* bytes) {
    if (m_ramp) {
      std::memcpy(m_row.data(), bytes, m_source.Width());
    } else {
      std::transform(bytes, bytes + m_source.Width(), m_row.begin(),
                     [this](unsigned char byte) { return m_grays[byte]; });
    }
  }

  const ClSimpleBitmap& m_source;
  Grays m_grays{};
  bool m_ramp = false;
  std::vector<unsigned char> m_row;
};

/// The tables of `img::ColumnBlends`, filled up with repetitions of the last column.
class ColumnTables {
 public:
  ColumnTables(unsigned long source, unsigned long target)
      : m_size((target + kTogether - 1) / kTogether),
        m_weights(2 * m_size),
        m_first(m_size * kTogether),
        m_places(m_size) {
    const Axis across(source, target);
    for (unsigned long x = 0; x < m_first.size(); ++x) {
      set(x, across.at(std::min(x, target - 1)));
    }
  }

  unsigned long size() const { return m_size; }

  img::ColumnBlends blends() const {
    return {m_size, m_weights.data(), m_first.data(), m_near ? m_places.data() : nullptr};
  }

 private:
  static constexpr unsigned long kTogether = img::kBlendedTogether;

  /// Where both neighbours are the same column the weights cancel each other, whatever the gray:
  /// they might as well be 0, and the second may be another column.
  void set(unsigned long x, const Neighbours& column) {
    const unsigned long group = x / kTogether;
    const bool cancelled = column.first_weight == -column.second_weight;
    m_weights[2 * group].values[x % kTogether] = cancelled ? 0 : column.first_weight;
    m_weights[2 * group + 1].values[x % kTogether] = cancelled ? 0 : column.second_weight;
    m_first[x] = static_cast<std::uint32_t>(column.first);
    const unsigned long place = column.first - m_first[group * kTogether];
    m_places[group].places[x % kTogether] = img::kEmptyPlaces | place;
    m_near = m_near && place < 16;
  }

  unsigned long m_size;
  std::vector<img::BlendedColumns> m_weights;
  std::vector<std::uint32_t> m_first;
  std::vector<img::BlendedPlaces> m_places;
  bool m_near = true;
};

/// The rows of a picture, blended across to the width of the target and kept as doubles.
class BlendedRows {
 public:
  BlendedRows(const ClSimpleBitmap& source, unsigned long width, const img::PixelKernels& kernels)
      : m_kernels(kernels), m_source(source), m_columns(source.Width(), width) {
    for (Row& row : m_rows) {
      row.columns.resize(m_columns.size());
    }
  }

  /// Row `y` of the source. It stays valid while only its neighbours are asked for: even and odd
  /// rows have a place each.
  const img::BlendedColumns* row(unsigned long y) {
    Row& row = m_rows[y % m_rows.size()];
    if (row.y != y) {
      m_kernels.blend_across(m_source.row(y), m_columns.blends(), row.columns.data());
      row.y = y;
    }
    return row.columns.data();
  }

 private:
  struct Row {
    unsigned long y = ~0UL;
    std::vector<img::BlendedColumns> columns;
  };

  const img::PixelKernels& m_kernels;
  GrayRows m_source;
  ColumnTables m_columns;
  std::array<Row, 2> m_rows;
};

/// Puts a row of grays into a black picture with the gray ramp.
void put_row(ClSimpleBitmap& target, unsigned long y, const std::vector<unsigned char>& grays) {
  for (unsigned long x = 0; x < grays.size(); ++x) {
    target.SetPixel(x, y, grays[x] * kGrayToColour);
  }
}

/// Rows of the target, each blended from two. At 8 bits a gray is its own index in the ramp, so a
/// row is blended where it is to lie.
void blend_rows(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                const img::PixelKernels& kernels) {
  const unsigned long width = target.Width();
  const unsigned long stride = target.BPRow();
  const bool in_place = target.BitCount() == 8;
  BlendedRows rows(source, width, kernels);
  const Axis down(source.Height(), target.Height());
  std::vector<unsigned char> grays(in_place ? 0 : width);
  for (unsigned long y = 0; y < target.Height(); ++y) {
    const Neighbours row = down.at(y);
    const img::BlendedColumns* const top = rows.row(row.first);
    const img::BlendedColumns* const bottom = rows.row(row.second);
    unsigned char* const out = target.Pixel() + y * stride;
    std::memset(out + (in_place ? width : 0), 0, stride - (in_place ? width : 0));
    kernels.blend_down(top, row.first_weight, bottom, row.second_weight,
                       in_place ? out : grays.data(), width);
    put_row(target, y, grays);
  }
}

/// A target side of 1 would divide by zero, and a source without pixels has none to blend: black.
void interpolate(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                 const img::PixelKernels& kernels) {
  if (target.Width() == 1 || target.Height() == 1 || source.PixelSize() == 0) {
    target.SetBlack();
  } else {
    blend_rows(source, target, kernels);
  }
}

void repeat_pixels(const ClSimpleBitmap& source, ClSimpleBitmap& target,
                   const img::PixelKernels& kernels) {
  const unsigned long bytes = (source.Width() * source.BitCount() + 7) / 8;
  const unsigned long stride = target.BPRow();
  for (unsigned long y = 0; y < source.Height(); ++y) {
    unsigned char* const first = target.Pixel() + 2 * y * stride;
    kernels.double_row(source.Pixel() + y * source.BPRow(), bytes, first, first + stride);
    std::memset(first + 2 * bytes, 0, stride - 2 * bytes);
    std::memset(first + stride + 2 * bytes, 0, stride - 2 * bytes);
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
