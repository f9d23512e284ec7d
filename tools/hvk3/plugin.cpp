#include "hvk3/plugin.h"

#include "hvk3/installation.h"

namespace hvk3 {
namespace {

std::string choose(const std::string& path) { return path.empty() ? plugin_path().string() : path; }

}  // namespace

Plugin::Plugin(const std::string& path)
    : m_sName(choose(path)),
      m_cLibrary(m_sName),
      m_pfnGet(
          m_cLibrary.function<Osv::lx::GetFrameGrabberFunction>(Osv::lx::symbol::GetFrameGrabber)),
      m_pfnDestroy(m_cLibrary.function<Osv::lx::DestroyFrameGrabberFunction>(
          Osv::lx::symbol::DestroyFrameGrabber)),
      m_pGrabber(m_pfnGet()) {}

Plugin::~Plugin() { m_pfnDestroy(); }

void Plugin::get_anew() {
  m_pfnDestroy();
  m_pGrabber = m_pfnGet();
}

}  // namespace hvk3
