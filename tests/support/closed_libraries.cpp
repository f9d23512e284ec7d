#include "support/closed_libraries.h"

#include <dlfcn.h>

#include <array>
#include <map>
#include <mutex>
#include <stdexcept>

namespace Osv::simulator {
namespace {

constexpr std::array kNames = {"libKR9ScanAPI.so", "libostrevancalibratesdk.so",
                               "libostrevanfakefingerdetection.so", "libostrevanlf.so"};

// No loader finds a library of this name, and its message names the one that was asked for.
constexpr const char* kAbsentFolder = "/nonexistent/";

struct Choices {
  std::mutex lock;  // guards the rest
  std::map<std::string, std::string> files;
  std::vector<LibraryOpening> openings;

  Choices() { choose_plain(); }

  void choose_plain() {
    for (const char* name : kNames) {
      files[name] = ClosedLibraries::plain_path(name);
    }
  }
};

Choices& choices() {
  static Choices all;
  return all;
}

void choose(const std::string& name, const std::string& path) {
  const std::lock_guard<std::mutex> lock(choices().lock);
  const auto found = choices().files.find(name);
  if (found == choices().files.end()) {
    throw std::invalid_argument("no closed library: " + name);
  }
  found->second = path;
}

/// The file for a name, the name itself when it is none of ours.
std::string file_for(const char* name, int mode) {
  const std::lock_guard<std::mutex> lock(choices().lock);
  const auto found = choices().files.find(name);
  if (found == choices().files.end()) {
    return name;
  }
  choices().openings.push_back({name, mode});
  return found->second;
}

}  // namespace

ClosedLibraries::ClosedLibraries() {
  const std::lock_guard<std::mutex> lock(choices().lock);
  choices().openings.clear();
}

ClosedLibraries::~ClosedLibraries() {
  const std::lock_guard<std::mutex> lock(choices().lock);
  choices().choose_plain();
}

void ClosedLibraries::make_absent(const std::string& name) { choose(name, kAbsentFolder + name); }

void ClosedLibraries::leave_out(const std::string& name, const std::string& symbol) {
  choose(name, HVK3_SIMULATOR_DIR "/variants/" + symbol + "/" + name);
}

void ClosedLibraries::use_file(const std::string& name, const std::string& path) {
  choose(name, path);
}

void ClosedLibraries::use_plain(const std::string& name) { choose(name, plain_path(name)); }

std::vector<LibraryOpening> ClosedLibraries::openings() const {
  const std::lock_guard<std::mutex> lock(choices().lock);
  return choices().openings;
}

void ClosedLibraries::forget_openings() {
  const std::lock_guard<std::mutex> lock(choices().lock);
  choices().openings = {};
}

std::string ClosedLibraries::plain_path(const std::string& name) {
  return HVK3_SIMULATOR_DIR "/" + name;
}

}  // namespace Osv::simulator

/// Takes the place of the loader's function for everything in this process.
extern "C" __attribute__((visibility("default"))) void* dlopen(const char* name,
                                                               int mode) noexcept {
  using Function = void* (*)(const char*, int);
  static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "dlopen"));
  if (name == nullptr) {
    return next(nullptr, mode);
  }
  return next(Osv::simulator::file_for(name, mode).c_str(), mode);
}
