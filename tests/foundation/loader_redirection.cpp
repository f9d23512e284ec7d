#include "foundation/loader_redirection.h"

#include <dlfcn.h>

#include <cstring>

namespace Osv::testing_support {
namespace {

constexpr char kFacility[] = "libostrevanlf.so";
constexpr char kAbsent[] = "/nonexistent/libostrevanlf.so";

std::string& replacement() {
  static std::string path = kAbsent;
  return path;
}

std::vector<LoaderCall>& calls() {
  static std::vector<LoaderCall> list;
  return list;
}

void* real_dlopen(const char* name, int mode) {
  using Function = void* (*)(const char*, int);
  static const auto function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "dlopen"));
  return function(name, mode);
}

}  // namespace

void put_in_place_of_logging_facility(const std::string& path) {
  replacement() = path.empty() ? kAbsent : path;
  calls().clear();
}

const std::vector<LoaderCall>& loader_calls() { return calls(); }

}  // namespace Osv::testing_support

extern "C" __attribute__((visibility("default"))) void* dlopen(const char* name, int mode) {
  using namespace Osv::testing_support;
  if (name == nullptr || std::strcmp(name, kFacility) != 0) {
    return real_dlopen(name, mode);
  }
  calls().push_back({name, mode});
  return real_dlopen(replacement().c_str(), mode);
}
