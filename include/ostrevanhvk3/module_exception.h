#ifndef OSTREVANHVK3_MODULE_EXCEPTION_H
#define OSTREVANHVK3_MODULE_EXCEPTION_H

/// @file
/// The exception that leaves the feature interface.

#include "ostrevanhvk3/visibility.h"

namespace Osv {
namespace lx {

/// A bare error number of the feature interface (see errors.h), thrown at the client.
///
/// It stands outside the standard library's family: no handler for `std::exception` sees it. It
/// comes out of `LXSP_GetFeature`, `LXSP_SetFeature` and `infver2str`; a client that calls them
/// with the plug-in's C++ run-time library catches it by this type. Nothing has changed when it is
/// thrown.
class OSTREVANHVK3_EXPORT CLX3ModuleException {
 public:
  /// Carries an error number.
  explicit CLX3ModuleException(unsigned int value) : m_nValue(value) {}

  /// The error number, without the bit 0x10000000.
  unsigned int value() const { return m_nValue; }

 private:
  unsigned int m_nValue;
};

}  // namespace lx
}  // namespace Osv

#endif
