#include "hvk3/shared_library.h"

#include <dlfcn.h>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

[[noreturn]] void throw_loader_error() {
  const char* const text = ::dlerror();
  throw Failure(ExitStatus::PluginUnavailable, text != nullptr ? text : "the loader failed");
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& name)
    : m_hLibrary(::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (m_hLibrary == nullptr) {
    throw_loader_error();
  }
}

void SharedLibrary::Closer::operator()(void* handle) const { ::dlclose(handle); }

void* SharedLibrary::address(const char* name) const {
  void* const found = ::dlsym(m_hLibrary.get(), name);
  if (found == nullptr) {
    throw_loader_error();
  }
  return found;
}

}  // namespace hvk3
