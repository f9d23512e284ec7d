#include <algorithm>
#include <memory>
#include <utility>

#include "driver/get_item.h"
#include "driver/ostrevan_hvk3_sdk.h"
#include "fakefinger/live_detection_lib.h"
#include "foundation/exceptions.h"
#include "foundation/image_functions.h"
#include "foundation/logging_client.h"
#include "foundation/pixel_kernels.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kBitsPerPixel = 8;
constexpr int kNoUsableFinger = -15;

/// Brackets a snap as a worker brackets a pass.
class PassLock {
 public:
  explicit PassLock(ClFramegrabberSDK& sdk) : m_sdk(sdk) { m_sdk.Lock(); }
  ~PassLock() { m_sdk.UnLock(); }
  PassLock(const PassLock&) = delete;
  PassLock& operator=(const PassLock&) = delete;

 private:
  ClFramegrabberSDK& m_sdk;
};

unsigned char* bytes(const utilities::ClSimpleBitmap& bitmap) {
  return reinterpret_cast<unsigned char*>(bitmap.BI());
}

}  // namespace

/// The images of the frame before, whose memory is at hand, lent for one frame. A frame that the
/// event callback takes inside of another finds none there and makes its own.
class ClOstrevanHVK3SDK::LDImagesLoan {
 public:
  explicit LDImagesLoan(std::unique_ptr<LDImages>& kept)
      : m_kept(kept), m_images(kept == nullptr ? std::make_unique<LDImages>() : std::move(kept)) {}
  ~LDImagesLoan() { m_kept = std::move(m_images); }
  LDImagesLoan(const LDImagesLoan&) = delete;
  LDImagesLoan& operator=(const LDImagesLoan&) = delete;

  LDImages& get() { return *m_images; }

 private:
  std::unique_ptr<LDImages>& m_kept;
  std::unique_ptr<LDImages> m_images;
};

/// Refuses sizes that no frame has, `Create` the negative ones: the scanner would fill a buffer
/// that isn't there.
void ClOstrevanHVK3SDK::CreateRaw(ClSimpleBitmap& bitmap, const __FTRSCAN_IMAGE_SIZE& size) {
  if (size.nWidth == 0 || size.nHeight == 0) {
    throw CXMemoryAllocException();
  }
  bitmap.Create(static_cast<unsigned long>(size.nWidth), static_cast<unsigned long>(size.nHeight),
                kBitsPerPixel, 0);
}

/// Keeps a bitmap that has the size already: memory that goes back and comes again for each frame
/// comes as new pages, which take longer than all that is done to them.
void ClOstrevanHVK3SDK::ShapeRaw(ClSimpleBitmap& bitmap, const __FTRSCAN_IMAGE_SIZE& size) {
  if (bitmap.Empty() || bitmap.Width() != static_cast<unsigned long>(size.nWidth) ||
      bitmap.Height() != static_cast<unsigned long>(size.nHeight)) {
    CreateRaw(bitmap, size);
  }
}

bool ClOstrevanHVK3SDK::IsDirty(ClFrameGrabberChannel& channel) {
  return channel.m_nChannel != m_nActiveChannel || m_nShapedOpening != m_nOpening;
}

bool ClOstrevanHVK3SDK::SupressFingerDetection() const {
  const auto calibration = m_pCalibration.get();
  return calibration != nullptr && calibration->IsSensitiveMode();
}

bool ClOstrevanHVK3SDK::IsWorkersBitmap(const ClFrameGrabberChannel& channel,
                                        const ClSimpleBitmap& bitmap) {
  // Only the worker may look at its bitmap's owner; a snap from inside a callback has its own
  // bitmap.
  return channel.IsCurrentThread() && &bitmap == channel.get_currrent_bitmap();
}

bool ClOstrevanHVK3SDK::NeedsPreparation(const ClFrameGrabberChannel& channel,
                                         const ClSimpleBitmap& bitmap) const {
  const bool outdated = IsWorkersBitmap(channel, bitmap)
                            ? m_nShapedOpening != m_nOpening
                            : m_bSizeVaries && bitmap.BI() != m_pShapedBlock;
  return bitmap.Empty() || channel.m_nChannel != m_nActiveChannel || m_nRawOpening != m_nOpening ||
         outdated || bitmap.FullSize() < m_nBlockSize;
}

unsigned long ClOstrevanHVK3SDK::SetActiveChannel(ClFrameGrabberChannel& channel,
                                                  ClSimpleBitmap& bitmap) {
  const Guard guard(m_cLock);
  if (bitmap.Empty()) {
    m_nActiveChannel = kNoActiveChannel;
    if (channel.m_nChannel == kNoActiveChannel) {
      return 0;
    }
  }
  if (!NeedsPreparation(channel, bitmap)) {
    return 0;
  }
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling SetActiveChannel function. Channel number: %d",
          channel.m_nChannel);
  const RecursiveLock unit(m_cUnitLock);  // size and frame are to come from the same unit
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  Prepare(channel, bitmap);
  return 0;
}

void ClOstrevanHVK3SDK::Prepare(ClFrameGrabberChannel& channel, ClSimpleBitmap& bitmap) {
  const unsigned int opening = m_nOpening;
  m_nRawOpening = opening - 1;  // if this fails half-way, no bitmap fits what is left
  const __FTRSCAN_IMAGE_SIZE size = ReadImageSize();
  OSV_LOG(OsvLFTrace, "KR9 scanner. The image width: %d, height: %d", size.nWidth, size.nHeight);
  DescribeCamera(channel, size);
  OSV_LOG(OsvLFTrace, "KR9 scanner. Preparation of calibration");
  const unsigned long before = m_cRawBitmap.FullSize();
  CreateRaw(m_cRawBitmap, size);
  if (before != 0 && m_cRawBitmap.FullSize() != before) {
    m_nShapedOpening = opening - 1;  // the worker's block has room for a frame of the old size
    m_bSizeVaries = true;
  }
  FuzzyImage(m_cRawBitmap.Pixel());
  ShapeBitmap(bitmap);
  if (IsWorkersBitmap(channel, bitmap)) {
    m_nShapedOpening = opening;
  }
  m_nRawOpening = opening;
  m_nActiveChannel = channel.m_nChannel;
}

void ClOstrevanHVK3SDK::ShapeBitmap(ClSimpleBitmap& bitmap) {
  const auto calibration = Calibration();
  const unsigned long rawSize = img::bmp_size(m_cRawBitmap.BI());
  m_nCalibratedSize = calibration->ResultImageSize(m_cRawBitmap.BI(), rawSize);
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calibrated image size: %d",
          static_cast<int>(m_nCalibratedSize));
  // With fake finger detection on, the engine is told the raw frame's size for this block.
  const unsigned long room = std::max(
      {m_nCalibratedSize, rawSize, static_cast<unsigned long>(sizeof(tagBITMAPINFOHEADER))});
  std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[room]);
  if (block == nullptr) {
    throw CXMemoryAllocException();
  }
  auto* const header = reinterpret_cast<tagBITMAPINFOHEADER*>(block.get());
  *header = tagBITMAPINFOHEADER{};
  calibration->CalibrateBitmap(m_cRawBitmap.BI(), rawSize, header, &m_nCalibratedSize);
  block.release();
  bitmap.Attach(header);
  bitmap.SetWhite();
  m_nBlockSize = bitmap.FullSize();
  m_pShapedBlock = bitmap.BI();
}

__FTRSCAN_IMAGE_SIZE ClOstrevanHVK3SDK::ReadImageSize() {
  __FTRSCAN_IMAGE_SIZE size{};
  if (!m_pScanner->GetImageSize(&size)) {
    ThrowDeviceError("Couldn't read the image size of scanner.");
  }
  return size;
}

void ClOstrevanHVK3SDK::DescribeCamera(ClFrameGrabberChannel& channel,
                                       const __FTRSCAN_IMAGE_SIZE& size) {
  channel.ChangeCamera([&](ClLXCamera& camera) {
    camera.m_bFlagA = false;
    camera.m_bFlagB = false;
    camera.m_nLeft = 0;
    camera.m_nTop = 0;
    camera.m_nHeight = static_cast<unsigned int>(size.nHeight);
    camera.m_nWidth = static_cast<unsigned int>(size.nWidth);
    camera.put_DPI(m_cnDotsPerInch, m_cnDotsPerInch);
  });
}

bool ClOstrevanHVK3SDK::FuzzyImage(unsigned char* pixels) {
  if (!m_pScanner->GetImageByDose(pixels, Dose())) {
    const unsigned long error = m_pScanner->GetLastError();
    OSV_LOG(OsvLFError, "KR9 scanner. CaptureFuzzyImage function failed. Error number: 0x%x",
            static_cast<unsigned int>(error));
    throw ClLXException("Capture raw image failed.", static_cast<int>(error));
  }
  return true;
}

/// An open scanner can only be closed, so openings need not wait for its frame.
UnitHold ClOstrevanHVK3SDK::HoldUnit() {
  UnitHold hold(m_cUnitLock);
  if (!m_bInitialized) {
    hold.KeepOpeningsOut(m_cOpeningLock);
    if (m_bInitialized) {
      hold.LetOpeningsIn();  // one came first
    }
  }
  return hold;
}

void ClOstrevanHVK3SDK::GetLiveBitmap(ClFrameGrabberChannel& channel, ClSimpleBitmap& bitmap) {
  const Guard guard(m_cLock);
  UnitHold hold = HoldUnit();
  // Another thread may have opened or closed a scanner since this bitmap was shaped. A preparation
  // that fails is judged as a fetch through the dead handle would have been: without a scanner this
  // is a disconnection.
  if (NeedsPreparation(channel, bitmap)) {
    hold.LetOpeningsIn();
    const unsigned long result = SetActiveChannel(channel, bitmap);
    if (result != 0) {
      JudgeScannerError(result);
      throw ClLXException("Failed to initialize KR9-scanner.", static_cast<int>(result));
    }
  }
  if (m_pLiveDetection->IsInit()) {
    CaptureLDBmp(bitmap, hold);
  } else {
    CaptureBmp(bitmap, hold);
  }
}

void ClOstrevanHVK3SDK::CaptureBmp(ClSimpleBitmap& bitmap, UnitHold& hold) {
  if (m_pScanner->GetImageByDose(m_cRawBitmap.Pixel(), Dose())) {
    const auto calibration = Calibration();  // that of the unit which the frame is from
    hold.LetGo();
    PrepareImage(m_cRawBitmap);
    OSV_LOG(OsvLFTrace, "KR9 scanner. CalibrateBitmap.");
    calibration->CalibrateBitmap(m_cRawBitmap.BI(), img::bmp_size(m_cRawBitmap.BI()), bitmap.BI(),
                                 &m_nCalibratedSize);
    return;
  }
  const auto error = static_cast<unsigned int>(m_pScanner->GetLastError());
  OSV_LOG(OsvLFTrace, "KR9 scanner. CaptureFrame: %d", error);
  if (CheckScannerError(error)) {
    bitmap.SetWhite();
  }
}

void ClOstrevanHVK3SDK::CaptureLDBmp(ClSimpleBitmap& bitmap, UnitHold& hold) {
  try {
    CaptureAndScore(bitmap, hold);
  } catch (const CLiveDetectionException& failure) {
    if (failure.GetErrorNumber() != kNoUsableFinger) {
      throw;
    }
    ResetLD(bitmap);
  }
}

void ClOstrevanHVK3SDK::CaptureAndScore(ClSimpleBitmap& bitmap, UnitHold& hold) {
  LDImagesLoan loan(m_pLDImages);
  LDImages& images = loan.get();
  const __FTRSCAN_IMAGE_SIZE size = ReadImageSize();
  const auto calibration = Calibration();
  const CXDisableDynCalibration withoutDynCalibration(*calibration);
  ShapeRaw(images.dose, size);
  ShapeRaw(images.dark, size);
  ShapeRaw(images.backlight, size);
  if (!FetchLDImages(images) && CheckScannerError(m_pScanner->GetLastError())) {
    bitmap.SetWhite();
    ResetLD(bitmap);
    return;
  }
  hold.LetGo();
  PrepareImage(images.dark);
  PrepareImage(images.backlight);
  PrepareImage(images.dose);
  ScoreFinger(*calibration, images, bitmap);
}

/// Stops at the first image that can't be had. What the buffers hold then is scored all the same
/// for one error number, so they begin black and not with an earlier frame.
bool ClOstrevanHVK3SDK::FetchLDImages(LDImages& images) {
  images.dark.SetBlack();
  images.backlight.SetBlack();
  images.dose.SetBlack();
  return m_pScanner->GetDarkImage(images.dark.Pixel()) &&
         m_pScanner->GetImageBlackLight(images.backlight.Pixel()) &&
         m_pScanner->GetImageByDose(images.dose.Pixel(), Dose());
}

void ClOstrevanHVK3SDK::ScoreFinger(CXCalibration& calibration, LDImages& images,
                                    ClSimpleBitmap& bitmap) {
  const unsigned long room = std::max(m_nCalibratedSize, img::bmp_size(m_cRawBitmap.BI()));
  unsigned long size = std::min(images.dose.FullSize(), room);
  const auto calibrate = [&](const ClSimpleBitmap& image) {
    calibration.CalibrateBitmap(image.BI(), img::bmp_size(image.BI()), bitmap.BI(), &size);
  };
  const auto push = [&](const ClSimpleBitmap& image, EImage kind) {
    calibrate(image);
    m_pLiveDetection->PushImage(static_cast<int>(kind), bytes(bitmap), bitmap.FullSize());
  };
  push(images.backlight, eImageBacklight);
  push(images.dark, eImageDark);
  push(images.dose, eImageDose);
  int state = 0;
  m_nLifenessState = state;
  m_dLifeness = m_pLiveDetection->Lifeness(&state);
  m_nLifenessState = state;
  calibration.EnableDynCalibration(true);
  calibrate(images.dose);  // the image that the channel gets; the three before fed the session
  m_pLiveDetection->Reset();
  const bool alive = m_dLifeness > m_pLiveDetection->GetFakeScore();
  if (!alive) {
    OnFakeFinger();
  }
}

void ClOstrevanHVK3SDK::PrepareImage(ClSimpleBitmap& bitmap) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling PrepareImage function");
  // The middle row of an odd height is neither moved nor complemented, and is to stay so.
  img::pixel_kernels().flip_and_invert(bitmap.Pixel(), bitmap.BPRow(), bitmap.Height());
}

void ClOstrevanHVK3SDK::ResetLD(ClSimpleBitmap& bitmap) {
  bitmap.SetWhite();
  m_pLiveDetection->Reset();
  m_dLifeness = 0.0;
}

unsigned long ClOstrevanHVK3SDK::Snap(unsigned int channel, unsigned char** image) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling Snap function. Channel number: %d", channel);
  if (image == nullptr) {
    return error_number::NullPointer;
  }
  ClOstrevanHVK3Channel& item = get_item(m_cChannels, channel);
  SetDefaultCamera(channel);
  ClSimpleBitmap bitmap;
  const PassLock pass(*this);
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  SetActiveChannel(item, bitmap);
  GetLiveBitmap(item, bitmap);
  *image = bitmap.Detach();
  return 0;
}

void ClOstrevanHVK3SDK::GetRowLiveBitmap(ClSimpleBitmap& bitmap) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. The calibration isn't initializeted.");
  if (bitmap.Empty()) {
    return;
  }
  if (m_pScanner->GetImageByDose(bitmap.Pixel(), Dose())) {
    PrepareImage(bitmap);
  } else if (CheckScannerError(m_pScanner->GetLastError())) {
    bitmap.SetWhite();
  }
}

void ClOstrevanHVK3SDK::SnapRefImage(ClSimpleBitmap& bitmap) {
  const UnitHold hold = HoldUnit();  // size and frame are to come from the same unit
  CreateRaw(bitmap, ReadImageSize());
  bitmap.SetResolution(m_cnDotsPerInch, m_cnDotsPerInch);
  FuzzyImage(bitmap.Pixel());
}

void ClOstrevanHVK3SDK::CreateBitmap(ClSimpleBitmap& bitmap, unsigned long width,
                                     unsigned long height, unsigned long x, unsigned long y) {
  OSV_LOG(OsvLFTrace, "KRC scanner. Running without calibration");
  bitmap.Create(width, height, kBitsPerPixel, 0);
  bitmap.SetPels(x, y);
  bitmap.SetWhite();
}

}  // namespace Osv::lx
