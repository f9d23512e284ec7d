#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "closed_libraries/scene.h"

/// @file
/// The loader. It is compiled without sanitizers, which call it before they are ready.
///
/// The programs are linked with `--wrap` for the loader's functions: the closed libraries are the
/// program itself, as far as the scene has them.

namespace Osv::fuzz {
namespace {

const Installation* g_installation = nullptr;  // null: everything goes to the system

constexpr std::array<std::string_view, 5> kExtended = {
    "ftrScanGetExtMemorySize", "ftrScanSaveExtMemory", "ftrScanRestoreExtMemory",
    "ftrScanGetSerialNumber", "ftrScanGetVersion"};
constexpr std::array<std::string_view, 4> kOptional = {
    "ftrScanSetNewAuthorizationCode", "ftrScanSaveSecret7Bytes", "ftrScanRestoreSecret7Bytes",
    "ftrScanGlobalSetOptions"};

bool is_there(const Installation& installation, std::string_view library) {
  return library == "libostrevanlf.so"                    ? installation.logging
         : library == "libostrevancalibratesdk.so"        ? installation.engine
         : library == "libostrevanfakefingerdetection.so" ? installation.detector
                                                          : library == "libKR9ScanAPI.so";
}

template <typename Names>
bool contains(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool has_function(const Installation& installation, std::string_view name) {
  return (installation.extended_functions || !contains(kExtended, name)) &&
         (installation.optional_functions || !contains(kOptional, name));
}

}  // namespace

void install(const Installation& installation) { g_installation = &installation; }

}  // namespace Osv::fuzz

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
void* __real_dlopen(const char* name, int mode);
void* __real_dlsym(void* library, const char* name);
void* __wrap_dlopen(const char* name, int mode);
void* __wrap_dlsym(void* library, const char* name);

void* __wrap_dlopen(const char* name, int mode) {
  const Osv::fuzz::Installation* const installation = Osv::fuzz::g_installation;
  if (installation == nullptr || name == nullptr) {
    return __real_dlopen(name, mode);
  }
  const bool there = Osv::fuzz::is_there(*installation, name);
  return __real_dlopen(there ? nullptr : "/nonexistent/library", mode);
}

// Who asks for the next function of a name looks for that of the system.
void* __wrap_dlsym(void* library, const char* name) {
  const Osv::fuzz::Installation* const installation = Osv::fuzz::g_installation;
  const bool there = installation == nullptr || library == RTLD_NEXT ||
                     Osv::fuzz::has_function(*installation, name);
  return __real_dlsym(library, there ? name : "no_such_function");
}
// NOLINTEND(bugprone-reserved-identifier)
}
