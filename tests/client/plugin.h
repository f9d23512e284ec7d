#pragma once

#include <string>

#include "ostrevanhvk3/exports.h"

/// @file
/// The plug-in as a client has it: a file that is loaded, and the symbols in it.

namespace Osv::client {

/// Loads the plug-in, and unloads it at the end. Destroying the frame grabber is the test's.
class Plugin {
 public:
  /// @throws std::runtime_error with the loader's text
  Plugin();
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// `GetFrameGrabber`.
  lx::ClFramegrabber& grabber() const { return *m_pfnGet(); }

  /// `DestroyFrameGrabber`.
  void destroy() const { m_pfnDestroy(); }

  lx::CurrentFrameInfoFunction frame_info() const { return m_pfnFrameInfo; }
  lx::GetFeatureFunction get_feature() const { return m_pfnGetFeature; }
  lx::SetFeatureFunction set_feature() const { return m_pfnSetFeature; }
  lx::FreeFunction free() const { return m_pfnFree; }

  /// What an exported pointer, such as "m_pFG", points at now.
  const void* pointer(const char* name) const;

  /// Any exported function. @throws std::runtime_error with the loader's text
  template <typename Function>
  Function function(const char* name) const {
    return reinterpret_cast<Function>(address(name));
  }

  /// True while the plug-in is in this process.
  static bool is_loaded();

 private:
  void* address(const char* name) const;

  void* m_hLibrary;
  lx::GetFrameGrabberFunction m_pfnGet;
  lx::DestroyFrameGrabberFunction m_pfnDestroy;
  lx::CurrentFrameInfoFunction m_pfnFrameInfo;
  lx::GetFeatureFunction m_pfnGetFeature;
  lx::SetFeatureFunction m_pfnSetFeature;
  lx::FreeFunction m_pfnFree;
};

/// The text of the last failure.
std::string last_error(lx::ClFramegrabber& grabber);

}  // namespace Osv::client
