#include "detection/fast_plain_finger_detection.h"

#include "detection/bitmap_utilities.h"

namespace Osv::lx {
namespace {

/// The mean of a whole frame below which a finger lies on the platen.
constexpr unsigned long kFingerMean = 242;

}  // namespace

ClFastPlainFingerDetection::ClFastPlainFingerDetection(const ClFastPlainFingerDetection& other)
    : ClImageDetection(other),
      m_nBackgroundSum(other.m_nBackgroundSum),
      m_bFinger(other.m_bFinger),
      m_bInitialized(other.m_bInitialized),
      m_nFrames(other.m_nFrames) {}

bool ClFastPlainFingerDetection::Detect(utilities::ClSimpleBitmap& in,
                                        utilities::ClSimpleBitmap& out) {
  InitializeGray(in);
  Initialize(in);
  if (IsFinger(in)) {
    const unsigned long sum = ClBitmapUtilities::Gray_Sum(in);
    if (sum < m_nLowestSum) {
      m_Frame = in;
      m_nLowestSum = sum;
      ++m_nFrames;
    }
  } else if (m_nFrames > 0) {
    out = m_Frame;
    Reset();
    return true;
  }
  out = in;
  return false;
}

void ClFastPlainFingerDetection::Initialize(const utilities::ClSimpleBitmap& bitmap) {
  if (!m_bInitialized) {
    m_nLowestSum = static_cast<unsigned long>(m_nBackgroundSum);
    m_Frame = bitmap;
    m_bInitialized = true;
  }
}

void ClFastPlainFingerDetection::InitializeGray(const utilities::ClSimpleBitmap& bitmap) {
  if (m_nBackgroundSum <= 0) {
    m_nBackgroundSum = static_cast<long>(ClBitmapUtilities::Gray_Sum(bitmap));
  }
}

bool ClFastPlainFingerDetection::IsFinger(const utilities::ClSimpleBitmap& bitmap) {
  return ClBitmapUtilities::Gray_Avarage(bitmap) < kFingerMean;
}

void ClFastPlainFingerDetection::Reset() {
  m_bFinger = false;
  m_nFrames = 0;
  m_nLowestSum = static_cast<unsigned long>(m_nBackgroundSum);
}

}  // namespace Osv::lx
