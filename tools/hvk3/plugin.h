#pragma once

#include <string>

#include "hvk3/shared_library.h"
#include "ostrevanhvk3/exports.h"

/// @file
/// The loaded plug-in with its frame grabber.

namespace hvk3 {

/// Loads the plug-in and gets the frame grabber; gives it back and unloads the plug-in at the end.
/// Capture must have been stopped by then.
class Plugin {
 public:
  /// @param path of the plug-in; empty: the one beside this program's installation, or else the
  ///   one that the loader finds
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  Osv::lx::ClFramegrabber& grabber() { return *m_pGrabber; }

  /// Gives the frame grabber back and gets it anew, so that it forgets its scanner and its
  /// properties. References to the one before are void.
  void get_anew();

  /// A further function of the plug-in, of the type that the caller knows.
  /// @throws Failure `PluginUnavailable` when the plug-in has none
  template <class Function>
  Function function(const char* name) const {
    return m_cLibrary.function<Function>(name);
  }

  /// What was given to the loader.
  const std::string& name() const { return m_sName; }

 private:
  std::string m_sName;
  SharedLibrary m_cLibrary;
  Osv::lx::GetFrameGrabberFunction m_pfnGet;
  Osv::lx::DestroyFrameGrabberFunction m_pfnDestroy;
  Osv::lx::ClFramegrabber* m_pGrabber;
};

}  // namespace hvk3
