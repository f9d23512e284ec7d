#pragma once

#include <string>
#include <vector>

#include "foundation/stream.h"

/// @file
/// The calibration block in a scanner's extended memory.
///
/// | offset | size | field                                          |
/// |--------|------|------------------------------------------------|
/// | 0      | 1    | version, 1                                     |
/// | 1      | 3    | day, month, years since 1900                   |
/// | 4      | 16   | revision, raw bytes                            |
/// | 20     | 1    | length L of the description                    |
/// | 21     | L    | description, no terminator                     |
/// | 21 + L | 4    | size N of the payload, native 32-bit integer   |
/// | 25 + L | N    | payload, the calibration engine's own business |

namespace Osv {

/// Byte order of this machine. The block is copied in native order whatever it says.
struct SXEndian {
  static const bool m_fIsLittleEndianMachine;
};

/// Reads and builds a calibration block and owns it as it stands in memory.
class ClKR9CalibrationHeader {
 public:
  static constexpr unsigned int kRevisionSize = 16;

  /// Reads `size` bytes from the stream's present position, normally the whole memory. A size of 0
  /// changes nothing. `data` then points to the payload inside this object until its next read or
  /// write, or is null for an empty one.
  /// @throws ClHeaderFormatException -1 "The calibration data are corrupt." for another version,
  ///   "The calibration data is corrupt." for a block that does not fit the memory; what the
  ///   stream throws when it can't be read passes through
  void ReadFromStream(CXStream* stream, unsigned long size, unsigned char** data,
                      unsigned int& dataSize);

  /// Builds a block with today's date. A null description leaves out the length byte, so that
  /// `ReadFromStream` can't read such a block back; an empty one does not.
  /// @param revision `kRevisionSize` bytes
  /// @throws ClCHeaderDesrcTooLongException -1 for a description of more than 255 characters, with
  ///   the block half written; CXMemoryAllocException for a payload too large to describe
  void PutCalibrationData(const unsigned char* data, unsigned int dataSize,
                          const unsigned char* revision, const char* description);

  /// Size of the block that `PutCalibrationData` builds; one too many for a null description.
  unsigned int CalculateSize(unsigned int dataSize, const char* description) const;

  /// Writes day, month and years since 1900 of the local time at `position` and moves it behind.
  void SetDate(std::vector<unsigned char>& block, unsigned long& position) const;

  /// @name Accessors
  /// Only after a successful read or build.
  /// @{
  std::string GetHeaderVersion() const;
  std::string Date() const;            ///< day/month/year
  std::string RevisionString() const;  ///< always 16 characters, zero bytes included
  std::string Description() const;
  /// @}

  /// The block as it stands in memory, for a tool that brings it to a scanner.
  const std::vector<unsigned char>& Block() const { return m_vBlock; }

 private:
  std::vector<unsigned char> m_vBlock;
};

}  // namespace Osv
