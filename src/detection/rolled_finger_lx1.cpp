#include "detection/rolled_finger_lx1.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <span>

#include "detection/bitmap_utilities.h"
#include "detection/column_kernels.h"
#include "detection/finger_utilities.h"

namespace Osv::lx {
namespace {

/// The mean that a frame has to be above to pass for an empty platen.
constexpr unsigned long kDarkPlaten = 220;

constexpr unsigned long kWhite = 255;
constexpr double kLimitMargin = 0.05;

/// Columns merged together.
constexpr unsigned long kMergedColumns = 2048;

/// Lowers the minima to the sums below them. Marks these columns and tells whether there are any.
bool lower_minima(std::span<unsigned long> minima, std::span<const unsigned long> sums,
                  std::span<unsigned char> marks) {
  bool any = false;
  for (unsigned long column = 0; column < sums.size(); ++column) {
    const bool lower = sums[column] < minima[column];
    marks[column] = lower ? kColumnMarked : 0;
    minima[column] = lower ? sums[column] : minima[column];
    any = any || lower;
  }
  return any;
}

}  // namespace

ClRolledFingerLX1::ClRolledFingerLX1(const ClRolledFingerLX1& other)
    : ClImageDetection(other),
      m_nReserved(1),
      m_bInitialized(other.m_bInitialized),
      m_bRolling(other.m_bRolling),
      m_nLowerLimit(other.m_nLowerLimit),
      m_nBackgroundGray(other.m_nBackgroundGray) {}

bool ClRolledFingerLX1::Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) {
  Initialize(in);
  if (m_bRolling) {
    const bool lifted = !Roll(in);
    out = m_Image;
    return lifted;
  }
  m_bRolling = ClFingerUtilities::IsFinger(in, m_nBackgroundGray, ClFingerUtilities::eAreaWhole);
  out = in;
  return false;
}

ClRolledFingerLX1* ClRolledFingerLX1::clone() const {
  return std::make_unique<ClRolledFingerLX1>(*this).release();
}

unsigned long ClRolledFingerLX1::ColumnSum(const utilities::ClSimpleBitmap& bitmap,
                                           unsigned long column) const {
  return column < bitmap.Width() ? column_sum(bitmap, column, 1) : 0;
}

void ClRolledFingerLX1::CpyColumn(const utilities::ClSimpleBitmap& source,
                                  utilities::ClSimpleBitmap& target, unsigned long column) {
  if (column < source.Width()) {
    copy_columns(source, target, column, std::span(&kColumnMarked, 1));
  }
}

void ClRolledFingerLX1::Initialize(const utilities::ClSimpleBitmap& frame) {
  if (m_bInitialized) {
    return;
  }
  m_nBackgroundGray = ClBitmapUtilities::Gray_Avarage(frame);
  if (m_nBackgroundGray <= kDarkPlaten) {
    return;
  }
  m_Minima.resize(frame.Width());
  column_sums(frame, m_Minima);
  // The limit of the start counts the width, not the height: it caps the sums of a tall image.
  m_nLowerLimit = std::accumulate(m_Minima.begin(), m_Minima.end(), frame.Width() * kWhite,
                                  [](auto a, auto b) { return std::min(a, b); });
  m_nLowerLimit -= static_cast<unsigned long>(static_cast<double>(m_nLowerLimit) * kLimitMargin);
  m_Image = frame;
  m_bInitialized = true;
}

void ClRolledFingerLX1::Reset() {
  m_bInitialized = false;
  m_bRolling = false;
  m_nLowerLimit = m_nReset;
}

/// Merges the frame while the finger lies on the platen; false when it has been lifted. The column
/// sums give the frame's mean too, so the frame is read once.
bool ClRolledFingerLX1::Roll(const utilities::ClSimpleBitmap& in) {
  m_Sums.resize(in.Width());
  column_sums(in, m_Sums);
  const unsigned long sum = std::accumulate(m_Sums.begin(), m_Sums.end(), 0UL);
  if (!darker_by_a_finger(m_nBackgroundGray, gray_mean(sum, in.Height(), in.Width()))) {
    Reset();
    return false;
  }
  Merge(in);
  return true;
}

/// Takes over the columns that are darker than their record. Of a frame wider than the background,
/// the columns without a record are left out.
void ClRolledFingerLX1::Merge(const utilities::ClSimpleBitmap& in) {
  const unsigned long columns = std::min(m_Sums.size(), m_Minima.size());
  std::array<unsigned char, kMergedColumns> marks;
  for (unsigned long from = 0; from < columns; from += kMergedColumns) {
    const unsigned long count = std::min(kMergedColumns, columns - from);
    const std::span<unsigned char> marked = std::span(marks).first(count);
    if (lower_minima(std::span(m_Minima).subspan(from, count),
                     std::span(m_Sums).subspan(from, count), marked)) {
      copy_columns(in, m_Image, from, marked);
    }
  }
}

}  // namespace Osv::lx
