#include "support/configuration_file.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <mutex>

namespace Osv::test {
namespace {

constexpr char kConfigurationFile[] = "/etc/ostrevanhvk3.cfg";
constexpr char kAbsent[] = "/nonexistent/ostrevanhvk3.cfg";

std::atomic<unsigned int> g_openings{0};

std::mutex& path_lock() {
  static std::mutex lock;
  return lock;
}

std::string& replacement() {
  static std::string path = kAbsent;
  return path;
}

void replace(const std::string& path) {
  const std::lock_guard<std::mutex> lock(path_lock());
  replacement() = path;
}

bool is_configuration_file(const char* path) {
  return path != nullptr && std::strcmp(path, kConfigurationFile) == 0;
}

/// Calls `open` with the path that is meant.
template <typename Open>
auto with_redirection(const char* path, Open open) {
  if (!is_configuration_file(path)) {
    return open(path);
  }
  ++g_openings;
  std::string instead;
  {
    const std::lock_guard<std::mutex> lock(path_lock());
    instead = replacement();
  }
  return open(instead.c_str());
}

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

std::FILE* open_stream(const char* name, const char* path, const char* mode) {
  using Function = std::FILE* (*)(const char*, const char*);
  return with_redirection(path,
                          [&](const char* meant) { return real<Function>(name)(meant, mode); });
}

int open_descriptor(const char* name, const char* path, int flags, mode_t mode) {
  using Function = int (*)(const char*, int, ...);
  return with_redirection(
      path, [&](const char* meant) { return real<Function>(name)(meant, flags, mode); });
}

}  // namespace

ConfigurationFile::ConfigurationFile(const std::string& content)
    : m_path(::testing::TempDir() + "hvk3_configuration_" + std::to_string(getpid())) {
  std::ofstream(m_path, std::ios::binary) << content;
  replace(m_path);
}

ConfigurationFile::~ConfigurationFile() {
  replace(kAbsent);
  std::remove(m_path.c_str());
}

unsigned int configuration_file_openings() { return g_openings; }

}  // namespace Osv::test

// The standard library opens its file streams through one of these.
#define HVK3_OPEN_STREAM(name)                                                          \
  extern "C" __attribute__((visibility("default"))) std::FILE* name(const char* path,   \
                                                                    const char* mode) { \
    return Osv::test::open_stream(#name, path, mode);                                   \
  }

#define HVK3_OPEN_DESCRIPTOR(name)                                                               \
  extern "C" __attribute__((visibility("default"))) int name(const char* path, int flags, ...) { \
    mode_t mode = 0;                                                                             \
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {                            \
      std::va_list arguments;                                                                    \
      va_start(arguments, flags);                                                                \
      mode = va_arg(arguments, mode_t);                                                          \
      va_end(arguments);                                                                         \
    }                                                                                            \
    return Osv::test::open_descriptor(#name, path, flags, mode);                                 \
  }

HVK3_OPEN_STREAM(fopen)
HVK3_OPEN_STREAM(fopen64)
HVK3_OPEN_DESCRIPTOR(open)
HVK3_OPEN_DESCRIPTOR(open64)
