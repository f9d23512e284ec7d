#pragma once

#include <array>
#include <cstdint>

#include "driver/device/scanner_records.h"
#include "foundation/dynamic_library.h"

/// @file
/// The binding of the scanner library.

namespace Osv {

/// A device as the scanner library knows it.
using ScannerHandle = void*;

/// The functions of the scanner library, fetched by name at run time. A status is non-zero for
/// success; details come from `ftrScanGetLastError`. Only the device layer calls through this
/// table. No lock: the device layer serialises.
class ClKR9APILib : public CXDynamicLibrary {
 public:
  /// Opens the library and fetches its functions.
  /// @throws CXOtherException -201 without the library, -202 without a mandatory function
  ClKR9APILib();
  ~ClKR9APILib() override = default;

  /// What the constructor does; closes a library that is open first.
  void Initialize();

  using HandleCall = std::int32_t (*)(ScannerHandle);
  using BufferCall = std::int32_t (*)(ScannerHandle, void* buffer);
  using FrameCall = std::int32_t (*)(ScannerHandle, void* buffer, void* parameters);
  using MemoryCall = std::int32_t (*)(ScannerHandle, void* data, unsigned long offset,
                                      std::uint32_t size);
  using SecretCall = std::int32_t (*)(ScannerHandle, void* code, void* data);
  using InterfaceCall = std::int32_t (*)(int interfaceNumber);
  using Uncalled = void (*)();

  /// 1 when all five extended functions were found, else 0: the extended memory can't be used then.
  std::uint8_t m_nApiLevel = 0;

  HandleCall ftrScanCloseDevice = nullptr;
  ScannerHandle (*ftrScanOpenDeviceOnInterface)(int interfaceNumber) = nullptr;
  std::int32_t (*ftrScanSetOptions)(ScannerHandle, std::uint32_t mask,
                                    std::uint32_t flags) = nullptr;
  std::int32_t (*ftrScanGetOptions)(ScannerHandle, std::uint32_t* flags) = nullptr;
  std::int32_t (*ftrScanGetDeviceInfo)(ScannerHandle, ftrScanDeviceInfoRecord*) = nullptr;
  std::int32_t (*ftrScanGetImageSize)(ScannerHandle, __FTRSCAN_IMAGE_SIZE*) = nullptr;
  FrameCall ftrScanGetFrame = nullptr;
  BufferCall ftrScanGetBacklightImage = nullptr;
  BufferCall ftrScanGetDarkImage = nullptr;
  Uncalled ftrScanGetImage = nullptr;
  BufferCall ftrScanIsFingerPresent = nullptr;
  BufferCall ftrScanSave7Bytes = nullptr;
  BufferCall ftrScanRestore7ControlBytes = nullptr;
  Uncalled ftrScanGetDiodesStatus = nullptr;
  std::int32_t (*ftrScanSetDiodesStatus)(ScannerHandle, std::uint8_t green,
                                         std::uint8_t red) = nullptr;
  BufferCall ftrScanSetNewAuthorizationCode = nullptr;
  SecretCall ftrScanSaveSecret7Bytes = nullptr;
  SecretCall ftrScanRestoreSecret7Bytes = nullptr;
  std::int32_t (*ftrScanGetExtMemorySize)(ScannerHandle, std::int32_t* size) = nullptr;
  MemoryCall ftrScanSaveExtMemory = nullptr;
  MemoryCall ftrScanRestoreExtMemory = nullptr;
  BufferCall ftrScanGetSerialNumber = nullptr;
  std::int32_t (*ftrScanGetInterfaces)(ftrScanInterfaceList*) = nullptr;
  InterfaceCall ftrSetBaseInterface = nullptr;
  Uncalled ftrGetBaseInterfaceNumber = nullptr;
  BufferCall ftrScanSaveSerialNumber = nullptr;
  std::int32_t (*ftrScanGetVersion)(ScannerHandle, ftrScanVersionRecord*) = nullptr;
  std::int32_t (*ftrScanGetImageByVariableDose)(ScannerHandle, int dose, void* buffer) = nullptr;
  Uncalled ftrScanGetImage2 = nullptr;
  Uncalled m_pfnUnnamed = nullptr;  ///< no function has this slot
  std::uint32_t (*ftrScanGetLastError)() = nullptr;
  void (*ftrScanSetLastError)(std::uint32_t code) = nullptr;
  Uncalled ftrScanGlobalSetOptions = nullptr;

 private:
  std::array<SymbolSlot, 23> MandatorySymbols();
  std::array<SymbolSlot, 5> ExtendedSymbols();
  std::array<SymbolSlot, 4> OptionalSymbols();
};

}  // namespace Osv
