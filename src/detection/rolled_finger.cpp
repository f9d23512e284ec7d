#include "detection/rolled_finger.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include "detection/bitmap_utilities.h"

namespace Osv::lx {
namespace {

/// An entry of a profile is a byte.
constexpr unsigned long kEdges = 256;

/// Finds the edge of a line for one start after the other, from the right to the left: a start
/// further left only adds columns. Going this way each improvement lowers the mean, so there are at
/// most 255 of them, and a comparison takes the place of the division: a sum over n columns has a
/// mean below m, cut or not, when it is below n times m. The start 0 needs no case of its own: what
/// counts there is the first byte, as at 1, and of equal ones the later wins.
class EdgeScan {
 public:
  /// Begins with the start at the last column; `end` is the number of columns, at least 1.
  EdgeScan(const unsigned char* line, unsigned long end)
      : m_line(line), m_start(end - 1), m_edge(m_start) {
    const unsigned long sum = byte_sum({line, m_start});
    m_lowest = m_start == 0 ? *line : sum / m_start;
    m_excess = static_cast<long>(sum - m_start * m_lowest);
  }

  unsigned long start() const { return m_start; }
  unsigned long edge() const { return m_edge; }

  /// Moves the start to the left, to `target`.
  void move_to(unsigned long target) {
    while (m_start > target) {
      --m_start;
      m_excess += static_cast<long>(m_lowest) - m_line[m_start];
      if (m_excess < 0) {
        improve();
      }
    }
  }

 private:
  void improve() {
    m_edge = m_start;
    while (m_excess < 0) {
      --m_lowest;
      m_excess += static_cast<long>(m_start);
    }
  }

  const unsigned char* m_line;
  unsigned long m_start;
  unsigned long m_edge;
  unsigned long m_lowest = 0;  ///< the mean at the edge, cut
  long m_excess = 0;           ///< the sum of the columns left of the start, less m_lowest for each
};

/// The edge in a line for every start that a profile can have, cut to a byte.
std::array<unsigned char, kEdges> edges_of(const unsigned char* line, unsigned long width) {
  std::array<unsigned char, kEdges> edges{};
  if (width == 0) {
    return edges;
  }
  EdgeScan scan(line, width);
  unsigned long start = std::min(width, kEdges);
  while (start > 0) {
    --start;
    scan.move_to(start);
    edges[start] = static_cast<unsigned char>(scan.edge());
  }
  return edges;
}

/// True when all rows, of which there is at least one, begin at the same column.
bool begin_together(const std::vector<unsigned char>& profile, unsigned long rows) {
  return profile.size() >= rows && std::memcmp(profile.data(), profile.data() + 1, rows - 1) == 0;
}

}  // namespace

ClRolledFinger::ClRolledFinger(const ClRolledFinger& other)
    : ClImageDetection(other),
      m_bReserved(other.m_bReserved),
      m_bInitialized(other.m_bInitialized),
      m_bRolling(other.m_bRolling) {}

ClRolledFinger& ClRolledFinger::operator=(const ClRolledFinger& other) {
  if (this != &other) {
    m_bInitialized = other.m_bInitialized;
    m_bRolling = other.m_bRolling;
    m_nBackgroundStrip = other.m_nBackgroundStrip;
  }
  return *this;
}

bool ClRolledFinger::Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) {
  Initialize(in);
  const bool finished = Follow(in);
  const unsigned long size = std::min(out.PixelSize(), m_Image.PixelSize());
  if (size > 0) {
    std::memcpy(out.Pixel(), m_Image.Pixel(), size);
  }
  return finished;
}

/// Advances the roll by a frame; true when the finger has been lifted.
bool ClRolledFinger::Follow(const utilities::ClSimpleBitmap& in) {
  if (!m_bRolling) {
    m_bRolling = IsFinger(in, eDetectFirst);
    return false;
  }
  if (!IsFinger(in, eDetectWhole)) {
    Uninitialize();
    return true;
  }
  std::vector<unsigned char> next(in.Height());
  CalculateLineRand(in, m_Profile, next);
  BitmapProfilCopy(in, m_Image, m_Profile, next);
  m_Profile = std::move(next);
  return false;
}

void ClRolledFinger::Initialize(const utilities::ClSimpleBitmap& frame) {
  if (m_bInitialized) {
    return;
  }
  m_nBackgroundStrip = Gray_Avarage(frame, eDetectFirst);
  m_nBackgroundWhole = Gray_Avarage(frame, eDetectWhole);
  m_Profile.assign(frame.Height(), 0);
  m_Image = frame;
  m_bInitialized = true;
}

void ClRolledFinger::Uninitialize() {
  m_bInitialized = false;
  m_bRolling = false;
}

unsigned long ClRolledFinger::Gray_Avarage(const utilities::ClSimpleBitmap& bitmap,
                                           eDetectArea area) {
  const unsigned long width = bitmap.Width();
  const unsigned long strip = std::min(m_cnDetectRowCount, width);
  unsigned long sum = 0;
  switch (area) {
    case eDetectFirst:
      sum = column_sum(bitmap, 0, strip);
      break;
    case eDetectLast:
      sum = column_sum(bitmap, width - strip, strip);
      break;
    case eDetectWhole:
      sum = column_sum(bitmap, 0, width);
      break;
    default:
      break;
  }
  return gray_mean(sum, bitmap.Height(), m_cnDetectRowCount);
}

bool ClRolledFinger::IsFinger(const utilities::ClSimpleBitmap& bitmap, eDetectArea area) {
  const unsigned long background = area == eDetectWhole ? m_nBackgroundWhole : m_nBackgroundStrip;
  return static_cast<long>(background - Gray_Avarage(bitmap, area)) >
         static_cast<long>(m_cnDelta_Gray);
}

unsigned long ClRolledFinger::LineAvarage(const unsigned char* line, unsigned long count) {
  return count == 0 ? *line : byte_sum({line, count}) / count;
}

unsigned long ClRolledFinger::LineRand(const unsigned char* line, unsigned long from,
                                       unsigned long to) {
  if (from >= to) {
    return 0;
  }
  EdgeScan scan(line, to);
  scan.move_to(from);
  return scan.edge();
}

void ClRolledFinger::CalculateLineRand(const utilities::ClSimpleBitmap& bitmap,
                                       const std::vector<unsigned char>& previous,
                                       std::vector<unsigned char>& next) {
  const unsigned long rows = std::min(bitmap.Height(), next.size());
  if (rows == 0) {
    return;
  }
  if (begin_together(previous, rows)) {  // as the rows of a roll do
    const unsigned long edge = LineRand(bitmap.Pixel(), previous.front(), bitmap.Width());
    std::memset(next.data(), static_cast<unsigned char>(edge), rows);
    return;
  }
  const std::array<unsigned char, kEdges> edges = edges_of(bitmap.Pixel(), bitmap.Width());
  const auto known = static_cast<std::ptrdiff_t>(std::min(rows, previous.size()));
  const auto rest = std::transform(previous.begin(), previous.begin() + known, next.begin(),
                                   [&edges](unsigned char start) { return edges[start]; });
  std::fill(rest, next.begin() + static_cast<std::ptrdiff_t>(rows), edges[0]);
}

void ClRolledFinger::CopyBitmapRow(const utilities::ClSimpleBitmap& source,
                                   utilities::ClSimpleBitmap& target, unsigned long row,
                                   unsigned long from, unsigned long to) {
  const unsigned long offset = row * source.BPRow() + from;
  const unsigned long size = std::min(source.PixelSize(), target.PixelSize());
  if (to > from && offset < size) {
    std::memcpy(target.Pixel() + offset, source.Pixel() + offset,
                std::min(to - from, size - offset));
  }
}

void ClRolledFinger::BitmapProfilCopy(const utilities::ClSimpleBitmap& source,
                                      utilities::ClSimpleBitmap& target,
                                      const std::vector<unsigned char>& previous,
                                      const std::vector<unsigned char>& next) {
  const unsigned long rows = std::min(previous.size(), next.size());
  for (unsigned long row = 0; row < rows; ++row) {
    CopyBitmapRow(source, target, row, previous[row], next[row]);
  }
}

}  // namespace Osv::lx
