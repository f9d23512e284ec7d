#include "client/plugin.h"

#include <dlfcn.h>

#include <stdexcept>

namespace Osv::client {
namespace {

void* load(int mode) { return dlopen(HVK3_PLUGIN, mode); }

}  // namespace

Plugin::Plugin()
    : m_hLibrary(load(RTLD_NOW)),
      m_pfnGet(function<lx::GetFrameGrabberFunction>(lx::symbol::GetFrameGrabber)),
      m_pfnDestroy(function<lx::DestroyFrameGrabberFunction>(lx::symbol::DestroyFrameGrabber)),
      m_pfnFrameInfo(function<lx::CurrentFrameInfoFunction>(lx::symbol::CurrentFrameInfo)),
      m_pfnGetFeature(function<lx::GetFeatureFunction>(lx::symbol::GetFeature)),
      m_pfnSetFeature(function<lx::SetFeatureFunction>(lx::symbol::SetFeature)),
      m_pfnFree(function<lx::FreeFunction>(lx::symbol::Free)) {}

Plugin::~Plugin() { dlclose(m_hLibrary); }

const void* Plugin::pointer(const char* name) const { return *function<const void* const*>(name); }

bool Plugin::is_loaded() {
  void* const library = load(RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) {
    dlclose(library);
  }
  return library != nullptr;
}

void* Plugin::address(const char* name) const {
  void* const found = m_hLibrary == nullptr ? nullptr : dlsym(m_hLibrary, name);
  if (found == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return found;
}

std::string last_error(lx::ClFramegrabber& grabber) {
  unsigned long size = 0;
  grabber.GetLastError(nullptr, size);
  std::string text(size, '\0');
  grabber.GetLastError(text.data(), size);
  text.resize(size - 1);
  return text;
}

}  // namespace Osv::client
