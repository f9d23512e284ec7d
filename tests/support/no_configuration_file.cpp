/// @file
/// Loaded in front of other programs that tests run: the plug-in's configuration file is not there,
/// whatever lies on this machine. Test programs themselves use configuration_file.h.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kConfigurationFile[] = "/etc/ostrevanhvk3.cfg";
constexpr char kAbsent[] = "/nonexistent/ostrevanhvk3.cfg";

const char* meant(const char* path) {
  return path != nullptr && std::strcmp(path, kConfigurationFile) == 0 ? kAbsent : path;
}

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

template <typename Status>
int look(const char* name, const char* path, Status* status) {
  using Function = int (*)(const char*, Status*);
  return real<Function>(name)(meant(path), status);
}

}  // namespace

// The standard library opens its file streams through one of these, and looks at files through one
// of the last two.
#define HVK3_OPEN_STREAM(name)                                                          \
  extern "C" __attribute__((visibility("default"))) std::FILE* name(const char* path,   \
                                                                    const char* mode) { \
    using Function = std::FILE* (*)(const char*, const char*);                          \
    return real<Function>(#name)(meant(path), mode);                                    \
  }

#define HVK3_OPEN_DESCRIPTOR(name)                                                               \
  extern "C" __attribute__((visibility("default"))) int name(const char* path, int flags, ...) { \
    using Function = int (*)(const char*, int, ...);                                             \
    mode_t mode = 0;                                                                             \
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {                            \
      std::va_list arguments;                                                                    \
      va_start(arguments, flags);                                                                \
      mode = va_arg(arguments, mode_t);                                                          \
      va_end(arguments);                                                                         \
    }                                                                                            \
    return real<Function>(#name)(meant(path), flags, mode);                                      \
  }

HVK3_OPEN_STREAM(fopen)
HVK3_OPEN_STREAM(fopen64)
HVK3_OPEN_DESCRIPTOR(open)
HVK3_OPEN_DESCRIPTOR(open64)

extern "C" __attribute__((visibility("default"))) int stat(const char* path,
                                                           struct stat* status) noexcept {
  return look("stat", path, status);
}

extern "C" __attribute__((visibility("default"))) int stat64(const char* path,
                                                             struct stat64* status) noexcept {
  return look("stat64", path, status);
}
