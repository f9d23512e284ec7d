#include "foundation/loader_redirection.h"

#include <dlfcn.h>

#include <map>

namespace Osv::testing_support {
namespace {

constexpr char kClosed[] = "libostrevan";
constexpr char kSilence[] = "silence";

std::map<std::string, std::string>& replacements() {
  static std::map<std::string, std::string> paths;
  return paths;
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

void put_in_place_of(const std::string& name, const std::string& path) {
  replacements()[name] = path;
  calls().clear();
}

void put_silence_in_place_of(const std::string& name) {
  put_in_place_of(name, kSilence);
  dlerror();  // takes a text of an earlier failure away
}

const std::vector<LoaderCall>& loader_calls() { return calls(); }

}  // namespace Osv::testing_support

extern "C" __attribute__((visibility("default"))) void* dlopen(const char* name, int mode) {
  using namespace Osv::testing_support;
  if (name == nullptr || std::string(name).rfind(kClosed, 0) != 0) {
    return real_dlopen(name, mode);
  }
  calls().push_back({name, mode});
  const std::string& path = replacements()[name];
  if (path == kSilence) {
    return nullptr;
  }
  return real_dlopen(path.empty() ? ("/nonexistent/" + std::string(name)).c_str() : path.c_str(),
                     mode);
}
