#include "foundation/configurable.h"

namespace Osv {

std::set<Configurable*> Configurable::s_setConfigured;

Configurable::Configurable() { s_setConfigured.insert(this); }

Configurable::Configurable(const Configurable& /*other*/) { s_setConfigured.insert(this); }

Configurable& Configurable::operator=(const Configurable& /*other*/) {
  s_setConfigured.insert(this);
  return *this;
}

Configurable::~Configurable() { s_setConfigured.erase(this); }

void Configurable::PassConfiguration(CXConfigFile& file) {
  for (Configurable* const object : s_setConfigured) {
    object->Configure(file);
  }
}

}  // namespace Osv
