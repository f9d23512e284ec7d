#pragma once

#include <memory>
#include <string>

/// @file
/// A library that is open as long as its object lives.

namespace hvk3 {

class SharedLibrary {
 public:
  /// @param name a path, or a bare file name that the loader searches for
  /// @throws Failure `PluginUnavailable` with the loader's text
  explicit SharedLibrary(const std::string& name);

  /// The function of this name, of the type that the caller knows.
  /// @throws Failure `PluginUnavailable` when the library has none
  template <class Function>
  Function function(const char* name) const {
    return reinterpret_cast<Function>(address(name));
  }

 private:
  struct Closer {
    void operator()(void* handle) const;
  };

  void* address(const char* name) const;

  std::unique_ptr<void, Closer> m_hLibrary;
};

}  // namespace hvk3
