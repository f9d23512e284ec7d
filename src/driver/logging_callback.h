#pragma once

/// @file
/// The logging facility's way to switch the scanner library's own log.

/// What the logging facility asks for.
enum OsvLFCBEventstag : unsigned int {
  OsvLFCBStart = 0,  ///< log to the path at byte 256 of the data
  OsvLFCBStop = 1,
  OsvLFCBLevel = 3  ///< use the 16-bit level at byte 768 of the data
};

namespace Osv::lx {

/// The callback meant for the logging facility. Nothing registers it in this system: the driver's
/// `RegisterLFCallbacks` is the place for that.
/// @param data the facility's record, may be null
/// @return 0, or the number of a failure of the scanner
/// @throws CXSystemException when the device refuses
unsigned long CBLoggingFacility(OsvLFCBEventstag event, void* data);

}  // namespace Osv::lx
