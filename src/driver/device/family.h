#pragma once

#include <cstdint>
#include <optional>

#include "driver/device/kr9_api_lib.h"

/// @file
/// The test that tells a scanner of this family from other devices.

namespace Osv {

/// What the family test came to. The order is the order of its steps: what a later one has looked
/// at was in order with the earlier ones.
enum class eFamily {
  NotOpened,          ///< there is no device to test
  NoModel,            ///< the device does not tell its model
  OtherModel,         ///< of a model that is none of the family
  BaseApi,            ///< the scanner library can't reach the extended memory
  NoMemorySize,       ///< the size of the extended memory can't be read
  NoMemory,           ///< there is no extended memory
  MemoryUnreadable,   ///< the beginning of the memory can't be read
  OtherBlockVersion,  ///< the memory does not begin with a calibration block
  BlockTooLong,       ///< the memory does not go on behind the block's signature, or the length
                      ///< byte is 128 to 222
  BlockUnreadable,    ///< the signature can't be read
  NoSignature,        ///< the block's payload is none of a calibration
  Member              ///< a scanner of this family with a calibration block
};

/// The result with what was read for it; steps that were not reached leave their values out.
struct FamilyFindings {
  eFamily result = eFamily::NotOpened;
  std::optional<std::uint8_t> model;
  std::optional<std::int32_t> memorySize;  ///< bytes
  std::optional<std::uint8_t> blockVersion;
  std::optional<int> descriptionLength;  ///< as this test takes it: a signed byte
};

/// Tests an open device. Makes only the calls that the steps need, in their order. No lock.
[[nodiscard]] FamilyFindings TestFamily(ClKR9APILib& api, ScannerHandle handle);

}  // namespace Osv
