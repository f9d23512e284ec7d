#include "hvk3/plugin.h"

#include <filesystem>

#include "hvk3/installation.h"

namespace hvk3 {
namespace {

constexpr char kFileName[] = "libostrevanhvk3.so";

std::string choose(const std::string& path) {
  if (!path.empty()) {
    return path;
  }
  const std::filesystem::path beside = installation_prefix() / "lib" / kFileName;
  return std::filesystem::exists(beside) ? beside.string() : kFileName;
}

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
