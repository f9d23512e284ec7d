#pragma once

#include <set>

#include "foundation/config_file.h"

/// @file
/// Objects that wish to receive the configuration.

namespace Osv {

/// Registers itself for as long as it lives. Objects are built and destroyed on one thread; there
/// is no lock.
class Configurable {
 public:
  virtual ~Configurable();

  /// Called with each configuration that is passed. It must not build or destroy a `Configurable`.
  virtual void Configure(CXConfigFile& file) = 0;

  /// Calls `Configure` of every living object, ascending by address.
  static void PassConfiguration(CXConfigFile& file);

 protected:
  Configurable();
  Configurable(const Configurable& other);
  Configurable& operator=(const Configurable& other);

 private:
  static std::set<Configurable*> s_setConfigured;
};

}  // namespace Osv
