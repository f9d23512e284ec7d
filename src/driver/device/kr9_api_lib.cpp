#include "driver/device/kr9_api_lib.h"

#include <cstring>

#include "foundation/exceptions.h"

namespace Osv {
namespace {

constexpr char kLibrary[] = "libKR9ScanAPI.so";

template <std::size_t count>
void forget(const std::array<SymbolSlot, count>& symbols) {
  for (const SymbolSlot& symbol : symbols) {
    std::memset(symbol.slot, 0, sizeof(void*));
  }
}

}  // namespace

ClKR9APILib::ClKR9APILib() { Initialize(); }

void ClKR9APILib::Initialize() {
  const auto mandatory = MandatorySymbols();
  const auto extended = ExtendedSymbols();
  const auto optional = OptionalSymbols();
  // What an earlier run found belongs to the library that is closed now.
  m_nApiLevel = 0;
  forget(mandatory);
  forget(extended);
  forget(optional);
  Open(kLibrary);
  Resolve(mandatory.data(), mandatory.size());
  try {
    Resolve(extended.data(), extended.size());
    m_nApiLevel = 1;
    Resolve(optional.data(), optional.size());
  } catch (const CXOtherException&) {
    // An older library: those who need a function that it lacks report it themselves.
  }
}

std::array<SymbolSlot, 23> ClKR9APILib::MandatorySymbols() {
  return {{
      {"ftrScanOpenDeviceOnInterface", &ftrScanOpenDeviceOnInterface},
      {"ftrScanCloseDevice", &ftrScanCloseDevice},
      {"ftrScanSetOptions", &ftrScanSetOptions},
      {"ftrScanGetOptions", &ftrScanGetOptions},
      {"ftrScanGetDeviceInfo", &ftrScanGetDeviceInfo},
      {"ftrScanGetImageSize", &ftrScanGetImageSize},
      {"ftrScanGetFrame", &ftrScanGetFrame},
      {"ftrScanGetBacklightImage", &ftrScanGetBacklightImage},
      {"ftrScanGetDarkImage", &ftrScanGetDarkImage},
      {"ftrScanGetImage", &ftrScanGetImage},
      {"ftrScanIsFingerPresent", &ftrScanIsFingerPresent},
      {"ftrScanSave7Bytes", &ftrScanSave7Bytes},
      {"ftrScanRestore7ControlBytes", &ftrScanRestore7ControlBytes},
      {"ftrScanGetDiodesStatus", &ftrScanGetDiodesStatus},
      {"ftrScanSetDiodesStatus", &ftrScanSetDiodesStatus},
      {"ftrScanGetInterfaces", &ftrScanGetInterfaces},
      {"ftrSetBaseInterface", &ftrSetBaseInterface},
      {"ftrGetBaseInterfaceNumber", &ftrGetBaseInterfaceNumber},
      {"ftrScanSaveSerialNumber", &ftrScanSaveSerialNumber},
      {"ftrScanGetImageByVariableDose", &ftrScanGetImageByVariableDose},
      {"ftrScanGetImage2", &ftrScanGetImage2},
      {"ftrScanGetLastError", &ftrScanGetLastError},
      {"ftrScanSetLastError", &ftrScanSetLastError},
  }};
}

std::array<SymbolSlot, 5> ClKR9APILib::ExtendedSymbols() {
  return {{
      {"ftrScanGetExtMemorySize", &ftrScanGetExtMemorySize},
      {"ftrScanSaveExtMemory", &ftrScanSaveExtMemory},
      {"ftrScanRestoreExtMemory", &ftrScanRestoreExtMemory},
      {"ftrScanGetSerialNumber", &ftrScanGetSerialNumber},
      {"ftrScanGetVersion", &ftrScanGetVersion},
  }};
}

std::array<SymbolSlot, 4> ClKR9APILib::OptionalSymbols() {
  return {{
      {"ftrScanSetNewAuthorizationCode", &ftrScanSetNewAuthorizationCode},
      {"ftrScanSaveSecret7Bytes", &ftrScanSaveSecret7Bytes},
      {"ftrScanRestoreSecret7Bytes", &ftrScanRestoreSecret7Bytes},
      {"ftrScanGlobalSetOptions", &ftrScanGlobalSetOptions},
  }};
}

}  // namespace Osv
