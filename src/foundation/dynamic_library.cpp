#include "foundation/dynamic_library.h"

#include <dlfcn.h>

#include <cstring>

#include "foundation/exceptions.h"

namespace Osv {
namespace {

constexpr int kLibraryMissing = -201;
constexpr int kSymbolMissing = -202;

}  // namespace

CXDynamicLibrary::~CXDynamicLibrary() { Close(); }

void CXDynamicLibrary::Open(const char* name) {
  Close();
  m_hLibrary = dlopen(name, RTLD_NOW);
  if (m_hLibrary == nullptr) {
    throw CXOtherException(dlerror(), kLibraryMissing);
  }
}

void CXDynamicLibrary::Close() {
  if (m_hLibrary != nullptr) {
    dlclose(m_hLibrary);
    m_hLibrary = nullptr;
  }
}

void* CXDynamicLibrary::GetSymbol(const char* name) {
  // Only a pending text means failure: a symbol may have the value null.
  void* const address = dlsym(m_hLibrary, name);
  if (const char* const text = dlerror(); text != nullptr) {
    throw CXOtherException(text, kSymbolMissing);
  }
  return address;
}

void CXDynamicLibrary::Resolve(const SymbolSlot* slots, std::size_t count) {
  for (const SymbolSlot* slot = slots; slot != slots + count; ++slot) {
    void* const address = GetSymbol(slot->name);
    std::memcpy(slot->slot, &address, sizeof(address));
  }
}

}  // namespace Osv
