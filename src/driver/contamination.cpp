#include "driver/get_item.h"
#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/image_resolution.h"

namespace Osv::lx {
namespace {

constexpr char kCaptureFailed[] = "Capture image failed.";

}  // namespace

unsigned long ClOstrevanHVK3SDK::ContaminationDetection(unsigned int channel, double* level) {
  const Guard guard(m_cLock);
  get_item(m_cChannels, channel);  // for its refusal of other channels
  if (level == nullptr) {
    throw ClLXException("", error_number::NullPointer);
  }
  RecursiveLock unit(m_cUnitLock);  // size and frame are to come from the same unit
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  *level = 0.0;
  ClSimpleBitmap bitmap;
  CaptureUncorrected(bitmap);
  const auto calibration = Calibration();
  unit.unlock();
  PrepareImage(bitmap);
  *level = calibration->ContaminationDetection(bitmap.BI());
  return 0;
}

void ClOstrevanHVK3SDK::CaptureUncorrected(ClSimpleBitmap& bitmap) {
  __FTRSCAN_IMAGE_SIZE size{};
  const bool known = m_pScanner->GetImageSize(&size);
  if (!known && (size.nWidth == 0 || size.nHeight == 0)) {
    ThrowDeviceError(kCaptureFailed);  // the frame would fail for the same reason
  }
  CreateRaw(bitmap, size);
  // The engine measures a bitmap whose pels were converted twice, and has to be fed that.
  ClImageResolution resolution;
  resolution.put_DPI(m_cnDotsPerInch, m_cnDotsPerInch);
  bitmap.SetResolution(resolution.get_x(), resolution.get_y());
  if (!m_pScanner->GetImageByDose(bitmap.Pixel(), Dose())) {
    ThrowDeviceError(kCaptureFailed);
  }
}

}  // namespace Osv::lx
