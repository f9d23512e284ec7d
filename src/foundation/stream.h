#pragma once

/// @file
/// A sequential byte stream.

namespace Osv {

/// Each operation goes on where the last one of its kind stopped, and throws on failure.
class CXStream {
 public:
  virtual ~CXStream() = default;
  virtual void WriteRaw(const void* data, unsigned long count) = 0;
  virtual void ReadRaw(void* data, unsigned long count) = 0;
};

}  // namespace Osv
