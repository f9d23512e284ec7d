#pragma once

#include <cstddef>

/// @file
/// The handle of a library that is opened at run time.

namespace Osv {

/// The name of a function of a closed library and where its address goes.
/// `CXDynamicLibrary::Resolve` copies the address into the slot byte by byte.
struct SymbolSlot {
  const char* name;
  void* slot;  ///< address of a function pointer
};

/// Owns a loader handle. Each binding opens its own library.
class CXDynamicLibrary {
 public:
  CXDynamicLibrary() = default;
  virtual ~CXDynamicLibrary();
  CXDynamicLibrary(const CXDynamicLibrary&) = delete;
  CXDynamicLibrary& operator=(const CXDynamicLibrary&) = delete;

  /// Closes a library that is open and opens `name` with all its symbols bound at once.
  /// @throws CXOtherException -201 with the loader's text
  void Open(const char* name);

  /// Closes the library, if one is open.
  void Close();

  /// The address of `name`, which may be null for a symbol that has that value.
  /// @throws CXOtherException -202 with the loader's text
  void* GetSymbol(const char* name);

  /// Fetches `count` symbols in order, each as `GetSymbol` does; those in front of a missing one
  /// have their addresses then.
  void Resolve(const SymbolSlot* slots, std::size_t count);

 protected:
  void* m_hLibrary = nullptr;
};

}  // namespace Osv
