#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "libraries/image.h"
#include "payload/payload.h"

/// @file
/// The calibration engine: it knows the payload it was given, and the bitmap of the call.

namespace Osv::simulator {

/// Codes of the engine.
enum eEngineCode : long {
  kEngineGood = 0,
  kEngineBadHandle = -2,
  kEngineBadArgument = -3,
  kEngineNoData = -4,     ///< no calibration data yet
  kEngineBadData = -5,    ///< the payload is not whole
  kEngineBadBitmap = -6,  ///< no plain 8-bit bitmap, or cut off
  kEngineWrongSize = -7,  ///< not of the raw size of the payload
  kEngineBadValue = -8,   ///< an option doesn't take this value
  kEngineSmallBuffer = -21,
  kEngineNoOption = -37
};

/// The text for a code, null for one that the engine doesn't use.
const char* engine_text(long code);

/// One instance. One thread at a time.
class CalibrationEngine {
 public:
  /// Takes a payload; with a bad one the engine stays as it was.
  [[nodiscard]] long set_data(const unsigned char* data, std::size_t size);

  /// Gives the size of the corrected bitmap, or, with `output`, writes it.
  /// @param size in: bytes at `output`; out: bytes needed
  [[nodiscard]] long calibrate(const tagBITMAPINFOHEADER* input, unsigned long input_size,
                               tagBITMAPINFOHEADER* output, unsigned long& size);

  /// Percent of the platen that is darker than the empty platen of the payload.
  [[nodiscard]] long contamination(const tagBITMAPINFOHEADER* bitmap, unsigned long size,
                                   double& percent);

  /// Sets an option from "key=value", blanks around the sign or not.
  [[nodiscard]] long set_option(std::string_view text);

  /// The value of an option as a zero-terminated text.
  /// @param length in: bytes at `value`; out, if too few: bytes needed
  [[nodiscard]] long get_option(std::string_view name, char* value, unsigned long& length) const;

 private:
  /// Where a pixel comes from: the upper left of four raw pixels, and how far it lies between.
  struct Source {
    std::uint32_t index;
    std::uint16_t u;  // 0 to 256, to the right
    std::uint16_t v;  // 0 to 256, down
  };

  long check_input(const tagBITMAPINFOHEADER* input, unsigned long size, ImageIn& image) const;
  unsigned long output_size() const;
  void make_sources();
  void make_gains();
  void flatten(const ImageIn& image);
  void resample();

  /// The dynamic finger mask: more contrast where a finger lies. Levels of its blocks are drawn
  /// away from the mean of all of them.
  void stretch_finger();
  void write(tagBITMAPINFOHEADER* output) const;
  static bool CalibrationEngine::*option_named(std::string_view name);

  Payload m_sPayload;
  std::vector<Source> m_vSources;       // one for each pixel of the corrected image
  std::vector<std::uint16_t> m_vGains;  // per raw pixel, 256ths
  std::vector<unsigned char> m_vFlat;   // the raw frame with its flat field taken out
  std::vector<unsigned char> m_vImage;  // the corrected image, rows from the top
  std::vector<int> m_vFingerBlocks;     // numbers of the blocks that are finger
  bool m_bSensitive = false;
  bool m_bDynamicMask = true;
};

}  // namespace Osv::simulator
