#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "capture/framegrabber_sdk.h"
#include "capture/hvk3_channel.h"
#include "driver/calibration/calibration.h"
#include "driver/calibration/disable_dyn_calibration.h"
#include "driver/device/futronic_base_sdk.h"
#include "driver/event_lock.h"
#include "driver/events.h"
#include "driver/logging_callback.h"
#include "driver/setting.h"
#include "driver/unit_hold.h"
#include "fakefinger/live_detection.h"
#include "foundation/bitmap.h"
#include "foundation/multi_string.h"
#include "foundation/mutex.h"
#include "foundation/relaxed.h"
#include "foundation/shared_slot.h"
#include "ostrevanhvk3/callbacks.h"
#include "ostrevanhvk3/device_info.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/framegrabber.h"

/// @file
/// The scanner driver.

namespace Osv::lx {

/// Copies a list of strings out by the rule of buffer sizes: 17 too small, 60 a null buffer.
unsigned long MultiStringCpy(const ClMultiString& text, char* buffer, unsigned long& size);

/// The scanner driver: owns the device, the calibration, the fake finger session and the channel.
///
/// Opening is lazy: an operation that needs the scanner calls `InitializeScanner`, which returns at
/// once when the scanner is open. The same call recovers from a disconnection.
///
/// Results called numbers are 0 or an error number without the boundary's bit; refusals are thrown
/// as `ClLXException`. Locks in their order: `m_cLock`, `m_cUnitLock`, `m_cOpeningLock`, then the
/// device's own. Operations that hold `m_cLock` wait at most for one frame or one preparation;
/// `FreeSDK` joins the worker with it held. `m_cUnitLock` keeps the unit that an image is taken
/// from: it is neither closed nor changed between the look at a frame's buffer and the end of the
/// fetch. `m_cOpeningLock` keeps openings apart, and is free during a frame: who needs the scanner
/// open waits for an opening and not for images. Nobody joins with either held.
class ClOstrevanHVK3SDK : public ClFramegrabberSDK {
 public:
  // The driver's own classes, under the names that they have within it.
  using CXCalDynamicLib = lx::CXCalDynamicLib;
  using CXCalibrationHandle = lx::CXCalibrationHandle;
  using CXCalibration = lx::CXCalibration;
  using CXDisableDynCalibration = lx::CXDisableDynCalibration;
  using CXSetting = lx::CXSetting;
  using ClXEvents = lx::ClXEvents;
  using ClSimpleBitmap = utilities::ClSimpleBitmap;

  /// Touches no scanner. @param context kept and never read
  explicit ClOstrevanHVK3SDK(void* context);

  /// Stops the channels and ends the fake finger session; the device closes the scanner.
  ~ClOstrevanHVK3SDK() override;

  ClOstrevanHVK3SDK(const ClOstrevanHVK3SDK&) = delete;
  ClOstrevanHVK3SDK& operator=(const ClOstrevanHVK3SDK&) = delete;

  /// @name The channel's view of the scanner
  /// On the worker thread, and in `Snap` on the client's.
  /// @{
  unsigned long InitializeSDK(ClFrameGrabberChannel& channel) override;
  void UninitializeSDK(ClFrameGrabberChannel& channel) override;
  unsigned long SetActiveChannel(ClFrameGrabberChannel& channel, ClSimpleBitmap& bitmap) override;
  void GetLiveBitmap(ClFrameGrabberChannel& channel, ClSimpleBitmap& bitmap) override;
  void StartLiveCapturing(ClFrameGrabberChannel& channel) override;
  void StopLiveCapturing(ClFrameGrabberChannel& channel) override;
  bool IsDirty(ClFrameGrabberChannel& channel) override;
  bool Lock() override;
  void UnLock() override;
  bool SupressFingerDetection() const override;
  /// @}

  /// @name Lifecycle
  /// @{

  /// Opens the scanner unless it is open, or waits for the thread that is opening it. @return a
  /// number
  unsigned long InitializeScanner();

  /// Closes the scanner if it is open.
  void UninitializeScanner();

  /// Chooses a scanner and opens it; stops capture first. The one that is chosen changes nothing.
  unsigned long SetActiveScanner(unsigned long index);
  bool GetActiveScanner(unsigned long& index);
  unsigned long AvailableScanners(DeviceInfo* list, unsigned long& count);
  void FreeSDK();
  unsigned long ReadSDKInfo();
  unsigned long GetSDKInfo(char* buffer, unsigned long& size);
  std::string GetRevisionStr() const;
  unsigned long StartCapture(int handle, unsigned int channel, eCaptureModeIDs mode,
                             ClLiveImageCallback liveImage, ClDetectedFingerCallback finger,
                             ClErrorCallback error, ClWarningCallback warning, void* user);
  bool StopCapture(unsigned int channel);
  void StopAllChannel();
  void Freeze(unsigned int channel, bool enable);
  void SetDefaultCamera(unsigned int channel);
  unsigned long get_channel_count() const { return 1; }
  /// @}

  /// @name Images
  /// @{

  /// One corrected image, its own preparation included.
  /// @param image receives a block that the caller releases with array `delete`
  unsigned long Snap(unsigned int channel, unsigned char** image);

  /// A frame straight from the scanner, turned and complemented but not corrected.
  /// @param bitmap has to have the size of the scanner's frames; an empty one stays empty
  void GetRowLiveBitmap(ClSimpleBitmap& bitmap);

  /// A frame straight from the scanner, as it comes.
  void SnapRefImage(ClSimpleBitmap& bitmap);

  /// A white bitmap; `x` and `y` in pixels per metre.
  void CreateBitmap(ClSimpleBitmap& bitmap, unsigned long width, unsigned long height,
                    unsigned long x, unsigned long y);
  /// @}

  /// @name Properties, features and events
  /// Of the numbered properties only fake finger detection and the switching of LEDs take
  /// `m_cLock`. The others, and the features, go to the session, the calibration and the device
  /// between frames or during one.
  /// @{
  unsigned long GetProperty(ePropertyIDs id, unsigned int& value);

  /// Fake finger detection on or off chooses the frame path from the next frame on.
  unsigned long SetProperty(ePropertyIDs id, unsigned int value);

  /// See feature.h for the features. @throws CLX3ModuleException for the format of image data
  unsigned long GetFeature(osvlx3_feature* feature);
  unsigned long SetFeature(const osvlx3_feature* feature);

  /// A property of the detector by name, under `m_cLock`. `*size` is the room at `value` and
  /// receives the length; no terminating zero is written.
  /// @throws ClLXException 17 too little room; 58 while the session is idle
  void GetLDProperty(unsigned long unused, const char* name, char* value, unsigned long* size);
  void SetLDProperty(unsigned long unused, const char* name, const char* value);
  void CurrentFrameInfo(unsigned long unused, unsigned int type, void* info);

  /// The dirt on the empty platen, from a frame of its own under `m_cLock`.
  unsigned long ContaminationDetection(unsigned int channel, double* level);

  /// `handle` comes back in the callback; the first argument is dropped.
  void EnableEvents(int unused, unsigned int handle, ClEventCallback callback, void* user);
  void OnFakeFinger();

  /// Whether the calling thread is inside the event callback, and so in the midst of a frame.
  bool IsInsideEvent() const { return m_cEventLock.IsInside(); }
  void SetCamera(unsigned int channel, eCameraIDs camera, eColorModeIDs mode);
  void SetFilter(unsigned int channel, eFilterIDs filter);
  void SetResolution(unsigned int channel, const ClImageResolution& resolution);
  void SetAspectRatio(unsigned int channel, double x, double y);
  void SetCallbacks(unsigned int channel, ClStartCallback start, ClStopCallback stop);
  void RefreshBackGround(unsigned int channel, ClFramegrabber& grabber);
  /// @}

  /// @name Errors and log
  /// @{

  /// Judges a failed frame: true for a white image, false for one to be used all the same; throws
  /// for every other error and closes the scanner when it is gone.
  bool CheckScannerError(unsigned long error);

  /// The same for a failed opening, behind which another thread may have opened the scanner: it is
  /// not closed.
  bool JudgeScannerError(unsigned long error);

  /// Stores number and text for the client. A text of up to 1024 characters needs no memory; a
  /// longer one is cut when there is none. @return the number stored
  /// @{
  unsigned long SetLastFGError(unsigned long number, const std::string& text);
  unsigned long SetLastFGError(unsigned long number, const char* text);
  /// @}

  /// The stored text, a copy.
  std::string LastErrorText() const;

  /// What `use` makes of the stored text, which stays as it is meanwhile.
  template <typename Use>
  auto WithLastErrorText(Use use) const {
    const std::lock_guard<std::mutex> lock(m_cErrorLock);
    return use(m_sLastError.c_str());
  }

  void RegisterLFCallbacks() {}
  void UnregisterLFCallbacks() {}
  /// @}

 protected:
  friend unsigned long CBLoggingFacility(OsvLFCBEventstag event, void* data);

  using Guard = std::lock_guard<CXMutex>;
  using RecursiveLock = std::unique_lock<std::recursive_mutex>;

  static constexpr unsigned int kNoActiveChannel = 65535;
  static constexpr unsigned int kNoActiveScanner = 0xFFFFFFFF;

  /// Refuses a scanner library without the extended functions. A step of the opening.
  /// @throws ClLXException 40
  void RequireExtendedApi();

  /// @name Steps of a frame, with `m_cLock` held by the caller
  /// @{

  /// From the look at a bitmap until the frame is in it.
  [[nodiscard]] UnitHold HoldUnit();

  /// @param hold since the bitmap was looked at; let go once the frame is fetched
  void CaptureBmp(ClSimpleBitmap& bitmap, UnitHold& hold);
  void CaptureLDBmp(ClSimpleBitmap& bitmap, UnitHold& hold);
  void PrepareImage(ClSimpleBitmap& bitmap);
  bool FuzzyImage(unsigned char* pixels);
  void ResetLD(ClSimpleBitmap& bitmap);

  /// The bitmap that contamination is measured on, as it comes from the scanner.
  void CaptureUncorrected(ClSimpleBitmap& bitmap);
  /// @}

  TXRelaxed<unsigned int> m_nEventChannel = 1;
  const std::unique_ptr<ClFutronicBaseSDK> m_pScanner;
  std::string m_sLastError;             // guarded by m_cErrorLock
  unsigned int m_nLastError = 0;        // guarded by m_cErrorLock
  unsigned long m_nCalibratedSize = 0;  // guarded by m_cLock
  TXSharedSlot<CXCalibration> m_pCalibration;
  std::unique_ptr<CLiveDetection> m_pLiveDetection;  // constant
  TXRelaxed<unsigned int> m_nActiveChannel = kNoActiveChannel;
  ClMultiString m_cSDKInfo;  // guarded by m_cLock
  CXSetting m_cSetting;      // constant
  ClXEvents m_cEvents;
  ClSimpleBitmap m_cRawBitmap;  // guarded by m_cLock
  // Not relaxed: who finds it set without a lock is to find the whole opening.
  std::atomic<bool> m_bInitialized = false;
  std::vector<ClOstrevanHVK3Channel> m_cChannels;  // constant; the elements have rules of their own
  void* const m_pContext;
  CXMutex m_cLock;

  // Held to close or change the scanner, and from the look at a bitmap until the frame is in it.
  // Neither this one nor m_cOpeningLock while joining, nor during a client's callback.
  std::recursive_mutex m_cUnitLock;

  TXRelaxed<double> m_dLifeness = 0.0;
  TXRelaxed<int> m_nLifenessState = 0;
  TXRelaxed<unsigned int> m_nActiveScanner = kNoActiveScanner;
  TXRelaxed<unsigned char> m_nImageDataFormat = 1;

  static ClOstrevanHVK3SDK* m_pCBData;
  static CXMutex m_cCBMutex;

 private:
  /// The raw frames of fake finger detection.
  struct LDImages {
    ClSimpleBitmap dose;
    ClSimpleBitmap dark;
    ClSimpleBitmap backlight;
  };
  class LDImagesLoan;

  /// The calibration of the scanner that is open. @throws ClLXException 2 when there is none
  std::shared_ptr<CXCalibration> Calibration() const;
  std::shared_ptr<CXCalibration> ReadCalibration();
  bool StopChannel(ClOstrevanHVK3Channel& channel);
  unsigned long ChooseFirstScanner();
  unsigned long OpenChosenScanner();
  unsigned long ChangeScanner(unsigned long index);
  unsigned long OpenScanner(unsigned long index);
  void SwitchToLongImage();
  void SelectInterface(unsigned long index);
  void ReadSerialNumber();
  void AddVersion();
  __FTRSCAN_IMAGE_SIZE ReadImageSize();
  [[noreturn]] void ThrowDeviceError(const char* text);
  [[noreturn]] void Refuse(int number, const char* text);
  void StoreText(const char* text) noexcept;

  unsigned int FakeDetectionThreshold() const;
  void SetFakeFingerDetection(unsigned int value);
  void StartFakeFingerDetection(unsigned int securityLevel);
  void SwitchLED(bool (ClFutronicBaseSDK::*led)(bool), bool on);
  void RequireLiveDetection();
  unsigned long ReadSecretBytes(osvlx3_feature& feature);
  unsigned long WriteSecretBytes(const osvlx3_feature& feature);
  unsigned long WriteAuthorizationCode(const osvlx3_feature& feature);
  void WriteImageDataFormat(const osvlx3_feature& feature);

  static constexpr unsigned int m_cnDotsPerInch = 500;  // in both directions

  static void CreateRaw(ClSimpleBitmap& bitmap, const __FTRSCAN_IMAGE_SIZE& size);
  static void ShapeRaw(ClSimpleBitmap& bitmap, const __FTRSCAN_IMAGE_SIZE& size);
  static bool IsWorkersBitmap(const ClFrameGrabberChannel& channel, const ClSimpleBitmap& bitmap);
  bool NeedsPreparation(const ClFrameGrabberChannel& channel, const ClSimpleBitmap& bitmap) const;
  void Prepare(ClFrameGrabberChannel& channel, ClSimpleBitmap& bitmap);
  void ShapeBitmap(ClSimpleBitmap& bitmap);
  void DescribeCamera(ClFrameGrabberChannel& channel, const __FTRSCAN_IMAGE_SIZE& size);
  int Dose() const { return static_cast<int>(m_cSetting.m_nDose); }
  bool FetchLDImages(LDImages& images);
  void ScoreFinger(CXCalibration& calibration, LDImages& images, ClSimpleBitmap& bitmap);
  void CaptureAndScore(ClSimpleBitmap& bitmap, UnitHold& hold);

  // Kept from one frame to the next while fake finger detection is on; guarded by m_cLock.
  std::unique_ptr<LDImages> m_pLDImages;

  CXEventLock m_cEventLock{m_cLock};
  mutable std::mutex m_cErrorLock;  // leaf

  // Held to open, close or change the scanner, and while a frame is asked of a closed one.
  std::recursive_mutex m_cOpeningLock;

  // What was shaped before the present opening may be too small for the unit that is open now.
  TXRelaxed<unsigned int> m_nOpening = 0;  // counts openings; written under m_cOpeningLock
  // The one that the worker's bitmap was shaped for; an earlier one once frames have another size.
  TXRelaxed<unsigned int> m_nShapedOpening = 0;
  unsigned int m_nRawOpening = 0;  // the one of m_cRawBitmap; guarded by m_cLock
  unsigned long m_nBlockSize = 0;  // bytes of the block last shaped; guarded by m_cLock
  // Once frames have changed their size, a snap's block is trusted only if none was shaped behind
  // it.
  bool m_bSizeVaries = false;            // guarded by m_cLock
  const void* m_pShapedBlock = nullptr;  // the block last shaped; guarded by m_cLock
};

}  // namespace Osv::lx
