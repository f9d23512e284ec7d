#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "driver/device/family.h"
#include "driver/device/kr9_api_lib.h"
#include "foundation/mutex.h"
#include "foundation/relaxed.h"
#include "foundation/shared_slot.h"
#include "foundation/stream.h"
#include "ostrevanhvk3/device_info.h"

/// @file
/// The one object that talks to the scanner.

namespace Osv {

/// Owns the binding of the scanner library and the open device, and presents the scanner's extended
/// memory as a stream.
///
/// A failed operation answers false, or the library's status 0, and `GetLastError` tells why. The
/// scanner library is loaded at the first need; without it operations throw `CXOtherException`.
///
/// Operations hold the recursive `m_cScannerLock` for their whole length unless they say *no lock*.
/// Image buffers belong to the caller, hold one byte for each pixel and must have the size that
/// `GetImageSize` reports.
class ClFutronicBaseSDK : public CXStream {
 public:
  ClFutronicBaseSDK();
  ~ClFutronicBaseSDK() override;
  ClFutronicBaseSDK(const ClFutronicBaseSDK&) = delete;
  ClFutronicBaseSDK& operator=(const ClFutronicBaseSDK&) = delete;

  /// Appends to the scanner's memory behind the last write.
  /// @throws lx::ClKR9NOTImplException 22; CXSystemException
  void WriteRaw(const void* data, unsigned long count) override;

  /// Reads the scanner's memory behind the last read; after a failure the position has not moved.
  /// @throws lx::ClKR9NOTImplException 22; CXSystemException
  void ReadRaw(void* data, unsigned long count) override;

  /// Loads the scanner library unless it is there. No lock.
  void OpenLibrary();

  /// Opens the first scanner of the list that can be opened, closing one that is open; both memory
  /// positions are 0 then. Does not look at the interface that was chosen.
  [[nodiscard]] bool Initialize();

  /// Switches the LEDs off and closes the device. The remembered LED levels stay. No lock.
  void Destroy();

  /// `Destroy` under the lock.
  void Unitialize();

  /// The interfaces that have a device of any kind, in ascending order. False when the library
  /// doesn't tell. No lock of its own.
  [[nodiscard]] bool AttachedInterfaces(std::vector<int>& numbers);

  /// Lists the scanners of this family in the order of their interfaces. A device that can't be
  /// opened, is none of them or gives no serial number is left out. No lock of its own.
  void GetKR9ScannerList(std::vector<DeviceInfo>& list);

  /// Whether a device is a scanner of this family, and if not, why. Null means the open device. No
  /// lock.
  [[nodiscard]] FamilyFindings Family(ScannerHandle handle);

  /// The same for the device on an interface, through a handle of its own. No lock.
  [[nodiscard]] FamilyFindings Family(int interfaceNumber);

  /// True when a device is of an accepted model and carries a calibration block. Null means the
  /// open device. No lock.
  bool IsKR9Scanner(ScannerHandle handle);

  /// The same for the device on an interface, through a handle of its own. No lock.
  bool IsKR9Scanner(int interfaceNumber);

  /// Closes the device and makes an interface the library's base interface. Loads the library
  /// before it locks.
  [[nodiscard]] bool SetScanInterface(unsigned long interfaceNumber);

  /// The interface that was chosen last, 0 at first.
  bool GetScanInterface(unsigned long& interfaceNumber);

  [[nodiscard]] bool GetImageSize(__FTRSCAN_IMAGE_SIZE* size);

  /// Fetches one frame. A busy scanner is asked up to 20 times, 100 ms apart, with the lock held:
  /// over 2 seconds in the worst case.
  [[nodiscard]] bool GetImageByDose(unsigned char* buffer, int dose);

  /// Fetches a frame taken with the backlight; fills the buffer, const or not.
  [[nodiscard]] bool GetImageBlackLight(const unsigned char* buffer);

  [[nodiscard]] bool GetDarkImage(unsigned char* buffer);

  /// The library's status of one frame; fills `size` bytes with 100 beforehand.
  int CaptureFrame(unsigned char* buffer, unsigned long size);
  bool CaptureImage(unsigned char* buffer, int unused);
  int CaptureFuzzyImage(unsigned char* buffer);
  int IsFingerPresent();

  /// Switches to the long image. No lock.
  [[nodiscard]] bool SetLongImage();

  bool SetOptions(unsigned long mask, unsigned long flags);
  bool GetOptions(unsigned int* flags);

  /// Size of the extended memory in bytes. @throws lx::ClKR9NOTImplException 22
  [[nodiscard]] bool GetEPROMSize(int* size);

  /// Sets both memory positions to 0. No lock.
  void ResetStream();

  bool GetEPROMData(unsigned char* data);  ///< 7 bytes
  bool PutEPROMData(unsigned char* data);  ///< 7 bytes

  /// Exactly 8 bytes, zero bytes included; a failure leaves the string. A scanner library of level
  /// 0 gives zero bytes.
  [[nodiscard]] bool GetSerialNumber(std::string& serialNumber);

  /// Stores the first 8 bytes; a shorter number is filled with zero bytes.
  bool SetSerialNumber(const std::string& serialNumber);

  /// Versions as texts; `third` is never written. A failure leaves `first` empty.
  void GetDeviceVersions(std::string& first, std::string& second, std::string& third);

  bool SwitchRedLED(bool on);
  bool SwitchGreenLED(bool on);

  /// Switches the green LED for 1, else the red one. The remembered level changes even if the call
  /// fails. No lock.
  bool SwitchLEDState(unsigned int led, bool on);

  /// Sends the remembered levels, or nothing while both are 0. No lock.
  bool RestoreLEDsState();

  bool StateRedLED() const { return m_nRedLED != 0; }      ///< No lock.
  bool StateGreenLED() const { return m_nGreenLED != 0; }  ///< No lock.

  /// The library's last error, with 259 as 2, the number of a scanner that isn't connected.
  unsigned long GetLastError();

  void SetLastError(unsigned long code);  ///< No lock.

  /// The scanner library can't log: only warns. Both arguments are ignored.
  bool LoggingEnable(unsigned short level, const char* path);
  bool LoggingDisable();
  void RemoteDesktopHandling() {}  ///< Nothing. No lock.

  /// @name Protected bytes
  /// Code and bytes are 7 bytes each and pass through unchanged. No lock.
  /// @throws lx::ClKR9NOTImplException 22 when the scanner library lacks the function
  /// @{
  [[nodiscard]] bool SetNewAuthorizationCode(void* code);
  [[nodiscard]] bool SaveSecret7Bytes(void* code, void* bytes);
  [[nodiscard]] bool RestoreSecret7Bytes(void* code, void* bytes);
  /// @}

  /// The level of the scanner library, 0 before it is loaded. No lock.
  std::uint8_t ApiLevel() const;

 protected:
  using Lock = std::lock_guard<CXMutex>;

  /// The binding, loaded if need be; the pointer keeps it alive.
  std::shared_ptr<ClKR9APILib> Api();

  TXSharedSlot<ClKR9APILib> m_pApiLib;
  TXRelaxed<ScannerHandle> ftrHandle;
  TXRelaxed<std::uint8_t> m_nGreenLED;
  TXRelaxed<std::uint8_t> m_nRedLED;
  unsigned long m_nWritePos = 0;
  unsigned long m_nReadPos = 0;
  std::string m_sLogFileName;
  CXMutex m_cScannerLock;
  TXRelaxed<unsigned long> m_nScanInterface;

 private:
  DeviceInfo DescribeScanner(ClKR9APILib& api, int interfaceNumber);
  void RequireExtendedMemory();
  [[noreturn]] void ThrowMemoryError();

  std::mutex m_cLoading;  // two threads must not load the library twice
};

}  // namespace Osv
