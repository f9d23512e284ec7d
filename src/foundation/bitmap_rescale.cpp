#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "foundation/bitmap.h"
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

/// The gray of every byte of an 8-bit picture. Other depths are turned into grays before.
std::array<double, 256> grays_of_bytes(const ClSimpleBitmap& source) {
  std::array<double, 256> grays{};
  for (unsigned int byte = 0; byte < grays.size(); ++byte) {
    grays[byte] = byte;
  }
  if (source.BitCount() == 8) {
    const unsigned long entries = std::min(source.PalSize(), grays.size());
    std::fill(grays.begin() + static_cast<std::ptrdiff_t>(entries), grays.end(), 255.0);
    std::transform(source.Palette(), source.Palette() + entries, grays.begin(),
                   [](std::uint32_t colour) { return static_cast<double>(colour & 255); });
  }
  return grays;
}

/// The rows of a picture, blended across to the width of the target and kept as doubles.
class BlendedRows {
 public:
  BlendedRows(const ClSimpleBitmap& source, unsigned long width)
      : m_source(source), m_grays(grays_of_bytes(source)), m_columns(width) {
    const Axis across(source.Width(), width);
    for (unsigned long x = 0; x < width; ++x) {
      m_columns[x] = across.at(x);
    }
    for (Row& row : m_rows) {
      row.values.resize(width);
    }
  }

  /// Row `y` of the source. It stays valid while only its neighbours are asked for: even and odd
  /// rows have a place each.
  const std::vector<double>& row(unsigned long y) {
    Row& row = m_rows[y % m_rows.size()];
    if (row.y != y) {
      blend(bytes_of_row(y), row.values);
      row.y = y;
    }
    return row.values;
  }

 private:
  struct Row {
    unsigned long y = ~0UL;
    std::vector<double> values;
  };

  const unsigned char* bytes_of_row(unsigned long y) {
    if (m_source.BitCount() == 8) {
      return m_source.Pixel() + y * m_source.BPRow();
    }
    m_bytes.resize(m_source.Width());
    for (unsigned long x = 0; x < m_bytes.size(); ++x) {
      m_bytes[x] = static_cast<unsigned char>(m_source.GetPixel(x, y));
    }
    return m_bytes.data();
  }

  void blend(const unsigned char* bytes, std::vector<double>& out) const {
    for (std::size_t x = 0; x < out.size(); ++x) {
      const Neighbours& column = m_columns[x];
      out[x] = m_grays[bytes[column.first]] * column.first_weight +
               m_grays[bytes[column.second]] * column.second_weight;
    }
  }

  const ClSimpleBitmap& m_source;
  std::array<double, 256> m_grays;
  std::vector<Neighbours> m_columns;
  std::vector<unsigned char> m_bytes;
  std::array<Row, 2> m_rows;
};

void blend_down(const Neighbours& row, const std::vector<double>& top,
                const std::vector<double>& bottom, unsigned char* out) {
  for (std::size_t x = 0; x < top.size(); ++x) {
    const double gray = row.first_weight * top[x] + row.second_weight * bottom[x];
    out[x] = static_cast<unsigned char>(static_cast<int>(gray));
  }
}

/// Puts a row of grays into a picture with the gray ramp, where at 8 bits a gray is its own index.
void put_row(ClSimpleBitmap& target, unsigned long y, const std::vector<unsigned char>& grays) {
  if (target.BitCount() == 8) {
    std::copy(grays.begin(), grays.end(), target.Pixel() + y * target.BPRow());
    return;
  }
  for (unsigned long x = 0; x < grays.size(); ++x) {
    target.SetPixel(x, y, grays[x] * kGrayToColour);
  }
}

/// A target side of 1 would divide by zero, and a source without pixels has none to blend: black.
void interpolate(const ClSimpleBitmap& source, ClSimpleBitmap& target) {
  target.SetBlack();
  if (target.Width() == 1 || target.Height() == 1 || source.PixelSize() == 0) {
    return;
  }
  BlendedRows rows(source, target.Width());
  const Axis down(source.Height(), target.Height());
  std::vector<unsigned char> grays(target.Width());
  for (unsigned long y = 0; y < target.Height(); ++y) {
    const Neighbours row = down.at(y);
    blend_down(row, rows.row(row.first), rows.row(row.second), grays.data());
    put_row(target, y, grays);
  }
}

void repeat_bytes(const unsigned char* bytes, std::size_t count, unsigned char* out) {
  for (std::size_t i = 0; i < count; ++i) {
    out[2 * i] = bytes[i];
    out[2 * i + 1] = bytes[i];
  }
}

void repeat_pixels(const ClSimpleBitmap& source, ClSimpleBitmap& target) {
  const unsigned long bytes = (source.Width() * source.BitCount() + 7) / 8;
  const unsigned long stride = target.BPRow();
  for (unsigned long y = 0; y < source.Height(); ++y) {
    unsigned char* const first = target.Pixel() + 2 * y * stride;
    repeat_bytes(source.Pixel() + y * source.BPRow(), bytes, first);
    std::fill(first + 2 * bytes, first + stride, static_cast<unsigned char>(0));
    std::memcpy(first + stride, first, stride);
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

void ClSimpleBitmap::Rescale(unsigned long width, unsigned long height, eRescaleMode mode) {
  check_size(width, height);
  if (mode != eRescaleBilinear && mode != eRescaleDouble) {
    throw MakeException<CXOtherException>("Scaling mode not supported", kUnknownMode);
  }
  if (Empty()) {
    return;
  }
  ClSimpleBitmap scaled;
  if (mode == eRescaleBilinear) {
    scaled.Create(width, height, BitCount(), 0);
    interpolate(*this, scaled);
  } else {
    scaled.Create(2 * Width(), 2 * Height(), BitCount(), 0);
    repeat_pixels(*this, scaled);
  }
  m_pBlock = std::move(scaled.m_pBlock);
}

}  // namespace Osv::utilities
