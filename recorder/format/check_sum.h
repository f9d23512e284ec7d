#pragma once

#include <boost/crc.hpp>
#include <cstddef>
#include <cstdint>

/// @file
/// The check sum of blocks and of data that are given in.

namespace Osv::recorder {

inline std::uint32_t check_sum(const void* bytes, std::size_t size) {
  boost::crc_32_type sum;
  sum.process_bytes(bytes, size);
  return sum.checksum();
}

}  // namespace Osv::recorder
