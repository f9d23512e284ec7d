#pragma once

#include <memory>
#include <string>

#include "driver/calibration/cal_dynamic_lib.h"
#include "driver/calibration/calibration_handle.h"
#include "driver/device/futronic_base_sdk.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The calibration that the driver works with.

namespace Osv::lx {

/// A calibration engine that holds the data of one scanner.
///
/// Images are whole blocks with their size in bytes. A failure of the engine is thrown as
/// `ClLXException` with the engine's own negative code. Any thread may call these operations, so
/// that an option may be asked for while a frame is corrected: see `CXCalDynamicLib::Alone`.
class CXCalibration {
 public:
  /// Reads the calibration data out of the memory of the scanner that is open.
  /// @throws ClLXException 37 "The calibration data is corrupt.", or the scanner's number "Read the
  ///   scanner memory size failed."; ClHeaderFormatException; CXOtherException -201 and -202; and
  ///   what `ClFutronicBaseSDK::ReadRaw` throws
  explicit CXCalibration(ClFutronicBaseSDK& scanner);

  /// Reads a calibration file, whose first 100 bytes are not for the engine. The revision stays
  /// empty.
  /// @throws file::CXFileNotFound; ClLXException 37 for a file of fewer than 100 bytes
  explicit CXCalibration(const char* fileName);

  /// Size in bytes of the corrected image of `input`.
  /// @throws ClLXException -1 "The Calibrate methode return the output bitmap size 0"
  [[nodiscard]] unsigned long ResultImageSize(tagBITMAPINFOHEADER* input, unsigned long inputSize);

  /// Corrects `input` into `output`, a buffer of `*outputSize` bytes, which receives the size used.
  /// @throws ClLXException -1 when the engine's image does not lie within the buffer
  void CalibrateBitmap(tagBITMAPINFOHEADER* input, unsigned long inputSize,
                       tagBITMAPINFOHEADER* output, unsigned long* outputSize);

  [[nodiscard]] bool IsSensitiveMode();
  void EnableSensitiveMode(bool enable);
  void EnableDynCalibration(bool enable);

  /// The dirt that the engine sees on a frame of the empty platen.
  [[nodiscard]] double ContaminationDetection(tagBITMAPINFOHEADER* bitmap);

  /// Throws the engine's failure unless `code` is 0.
  void CheckCalibrateError(long code) const;

  /// The revision of the calibration block, 16 bytes, or empty.
  const std::string& Revision() const { return m_sRevision; }

 private:
  void SetOption(const char* option);
  void GiveData(std::unique_ptr<CXCalibrationHandle> engine, const unsigned char* data,
                unsigned long size);

  std::string m_sRevision;
  std::unique_ptr<CXCalDynamicLib> m_pCalLib;
  std::unique_ptr<CXCalibrationHandle> m_pCalHandle;  // goes before the library that its code is in
};

}  // namespace Osv::lx
