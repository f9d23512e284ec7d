#pragma once

#include <vector>

#include "measure.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The calls into the closed libraries that a frame can't do without, for loops beside the plug-in.

namespace Osv::bench {

/// A raw frame and its corrected image, with the calls that fill them. The stand-ins' size is the
/// one that was set last.
class ClosedCalls {
 public:
  explicit ClosedCalls(const Size& size);

  void fetch();
  void fetch_dark();
  void fetch_backlight();

  /// The raw frame into the corrected image.
  void calibrate() { calibrate_into(*this); }

  /// The raw frame into the corrected image of `other`.
  void calibrate_into(ClosedCalls& other);

  Size size() const { return m_size; }
  unsigned char* raw_pixels();
  unsigned char* image() { return m_image.data(); }
  unsigned long image_size() const { return m_image.size(); }
  const tagBITMAPINFOHEADER* image_header() const {
    return reinterpret_cast<const tagBITMAPINFOHEADER*>(m_image.data());
  }

 private:
  Size m_size;
  void* m_scanner;
  void* m_engine;
  std::vector<unsigned char> m_raw;
  std::vector<unsigned char> m_image;
};

/// Makes the stand-ins deliver frames of a size.
void set_frame_size(const Size& size);

}  // namespace Osv::bench
