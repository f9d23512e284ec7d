#include "loader/breakage.h"

#include <dlfcn.h>
#include <elf.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "ostrevanhvk3/errors.h"

namespace Osv::loader {

using simulator::ClosedLibraries;
using simulator::eFunction;
using enum simulator::eFunction;
using faults::Failure;

namespace {

constexpr char kScanner[] = "libKR9ScanAPI.so";
constexpr char kEngine[] = "libostrevancalibratesdk.so";
constexpr char kDetector[] = "libostrevanfakefingerdetection.so";
constexpr char kLog[] = "libostrevanlf.so";

constexpr long kNoNumber = lx::error_number::NoNumber;
constexpr long kNumberOfFamily = 1;  // the worker's for the same failures

/// Without one of these the scanner library is an older one, and no scanner is of the family.
constexpr std::array kExtended = {ftrScanGetExtMemorySize, ftrScanSaveExtMemory,
                                  ftrScanRestoreExtMemory, ftrScanGetSerialNumber,
                                  ftrScanGetVersion};

/// Looked for in this order up to the first that is not there; those behind it are not used.
constexpr std::array kOptional = {ftrScanSetNewAuthorizationCode, ftrScanSaveSecret7Bytes,
                                  ftrScanRestoreSecret7Bytes, ftrScanGlobalSetOptions};

template <typename Functions>
bool has(const Functions& functions, eFunction function) {
  return std::find(functions.begin(), functions.end(), function) != functions.end();
}

std::string library_of(eFunction function) {
  const std::string name = simulator::name_of(function);
  const bool is_detectors = name.starts_with("FakeFinger");
  return name.starts_with("ftr")     ? kScanner
         : name.starts_with("OsvLF") ? kLog
         : is_detectors              ? kDetector
                                     : kEngine;
}

void write(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

/// The whole library with one byte of its head changed.
void write_changed(const std::string& path, const std::string& library, std::streamoff place,
                   char byte) {
  std::filesystem::copy_file(ClosedLibraries::plain_path(library), path);
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(place);
  file.put(byte);
}

void write_broken(const Breakage& breakage, const std::string& path) {
  switch (breakage.how) {
    case eHow::Empty:
      return write(path, "");
    case eHow::Text:
      return write(path, std::string(5000, 't'));
    case eHow::OtherMachine:
      return write_changed(path, breakage.library, offsetof(Elf64_Ehdr, e_machine),
                           static_cast<char>(EM_AARCH64));
    default:
      return write_changed(path, breakage.library, EI_CLASS, ELFCLASS32);
  }
}

}  // namespace

std::string Breakage::in_words() const {
  constexpr std::array kWords = {"without ",   "absent", "empty", "of text", "for another machine",
                                 "for 32 bits"};
  const std::string lack = how == eHow::Lacks ? simulator::name_of(function) : "";
  return library + ' ' + kWords[static_cast<std::size_t>(how)] + lack;
}

std::vector<std::string> all_libraries() { return {kScanner, kEngine, kDetector, kLog}; }

std::vector<Breakage> breakages_of(const std::string& library) {
  std::vector<Breakage> all;
  for (std::size_t i = 0; i < simulator::kFunctionCount; ++i) {
    const auto function = static_cast<eFunction>(i);
    if (library_of(function) == library) {
      all.push_back({library, eHow::Lacks, function});
    }
  }
  for (const eHow how :
       {eHow::Absent, eHow::Empty, eHow::Text, eHow::OtherMachine, eHow::OtherClass}) {
    all.push_back({library, how});
  }
  return all;
}

bool is_log(const std::string& library) { return library == kLog; }

bool is_usable(const Breakage& breakage) {
  return breakage.how == eHow::Lacks &&
         (has(kExtended, breakage.function) || has(kOptional, breakage.function));
}

void break_library(const Breakage& breakage, ClosedLibraries& libraries,
                   const hvk3::test::TemporaryFolder& folder) {
  if (breakage.how == eHow::Lacks) {
    libraries.leave_out(breakage.library, simulator::name_of(breakage.function));
  } else if (breakage.how == eHow::Absent) {
    libraries.make_absent(breakage.library);
  } else {
    write_broken(breakage, folder.file(breakage.library));
    libraries.use_file(breakage.library, folder.file(breakage.library));
  }
}

std::string loader_text(const Breakage& breakage) {
  void* const library = dlopen(breakage.library.c_str(), RTLD_NOW);
  if (library != nullptr) {
    (void)dlsym(library, simulator::name_of(breakage.function));
  }
  const char* const text = dlerror();
  const std::string kept = text == nullptr ? "" : text;
  if (library != nullptr) {
    dlclose(library);
  }
  return kept;
}

bool is_open(const std::string& library) {
  void* const open = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (open != nullptr) {
    dlclose(open);
  }
  return open != nullptr;
}

void break_model(const Breakage& breakage, const std::string& loader_text,
                 faults::DriverModel& model) {
  if (is_usable(breakage)) {
    const Failure unsupported = {kNumberOfFamily, kNoNumber, lx::error_text::HardwareVersion};
    const bool is_older = has(kExtended, breakage.function);
    const auto* const first = std::find(kOptional.begin(), kOptional.end(), breakage.function);
    std::for_each(is_older ? kOptional.begin() : first, kOptional.end(),
                  [&](eFunction function) { model.lack(function, unsupported); });
    if (is_older) {
      model.lack(ftrScanGetExtMemorySize, unsupported);
    }
    return;
  }
  // Nobody calls any function of it then; these are the first ones that anybody would.
  for (const eFunction first : {ftrScanGetInterfaces, ftrScanOpenDeviceOnInterface, CalibrateCreate,
                                FakeFingerDetectionInitialize}) {
    if (library_of(first) == breakage.library) {
      model.lack(first, {kNumberOfFamily, kNoNumber, loader_text});
    }
  }
}

}  // namespace Osv::loader
