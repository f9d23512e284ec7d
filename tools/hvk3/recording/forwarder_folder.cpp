#include "hvk3/recording/forwarder_folder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "hvk3/failure.h"
#include "hvk3/installation.h"
#include "hvk3/loader_text.h"
#include "hvk3/recording/elf_symbols.h"
#include "hvk3/recording/real_libraries.h"
#include "hvk3/recording/unloadable_library.h"

namespace hvk3 {
namespace {

namespace fs = std::filesystem;
using Osv::recorder::Header;
using Osv::recorder::kFunctionCount;
using Osv::recorder::kFunctionNames;
using Osv::recorder::kLibraryCount;
using Osv::recorder::kLibraryNames;
using Osv::recorder::kLibraryOfFunction;
using Others = std::map<std::string, std::string>;

constexpr char kCommonPart[] = "libostrevan-recorder.so";

fs::path installed_folder() {
  fs::path folder = recorder_folder();
  if (!holds_forwarders(folder)) {
    throw Failure(ExitStatus::PluginUnavailable, "the recorder is not in " + folder.string());
  }
  return folder;
}

std::set<std::string> missing_functions(const Header& header, std::size_t library) {
  std::set<std::string> missing;
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    if (index_of(kLibraryOfFunction[i]) == library && !header.exported[i]) {
      missing.insert(kFunctionNames[i]);
    }
  }
  return missing;
}

void copy_without(const fs::path& from, const fs::path& to, const std::set<std::string>& missing) {
  std::ifstream in(from, std::ios::binary);
  std::vector<char> content(std::istreambuf_iterator<char>(in), {});
  hide_symbols(content, missing);
  std::ofstream out(to, std::ios::binary);
  if (!out.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
    throw Failure(ExitStatus::OutputFailed, to.string() + " can't be written");
  }
}

/// A library that there was not is not there either, even if this machine has it: a link to itself
/// is what the loader finds first, and can't open. One that could not be loaded can't be now.
void lay_out_missing(const fs::path& file, const std::string& failure) {
  const bool is_elsewhere = loader_finds(file.filename());
  if (is_elsewhere && is_passed_over(failure)) {
    fs::remove(file);
  } else if (fs::is_symlink(file) || write_unloadable_library(file, failure)) {
    return;
  }
  if (is_elsewhere) {
    fs::create_symlink(file.filename(), file);
  }
}

void lay_out(const Header& header, const Others& others, const fs::path& installed,
             const fs::path& folder) {
  fs::create_symlink(installed / kCommonPart, folder / kCommonPart);
  for (const auto& [name, path] : others) {
    fs::create_symlink(path, folder / name);
  }
  for (std::size_t i = 0; i < kLibraryCount; ++i) {
    const char* const name = kLibraryNames[i];
    if (!header.present[i]) {
      lay_out_missing(folder / name, header.failures[i]);
    } else if (const auto missing = missing_functions(header, i); missing.empty()) {
      fs::create_symlink(installed / name, folder / name);
    } else {
      copy_without(installed / name, folder / name, missing);
    }
  }
}

void put_in_front(const fs::path& folder) {
  if (folder.string().find_first_of(":;") != std::string::npos) {
    throw Failure(ExitStatus::Usage,
                  "the loader takes no folder whose name has a colon or a "
                  "semicolon: " +
                      folder.string());
  }
  const char* const others = std::getenv("LD_LIBRARY_PATH");
  const std::string behind = others == nullptr || *others == '\0' ? "" : ':' + std::string(others);
  ::setenv("LD_LIBRARY_PATH", (folder.string() + behind).c_str(), 1);
}

}  // namespace

PrivateFolder::PrivateFolder() {
  std::string name = (fs::temp_directory_path() / "hvk3-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw Failure(ExitStatus::OutputFailed, "there can be no folder " + name);
  }
  m_cPath = name;
}

PrivateFolder::~PrivateFolder() {
  std::error_code ignored;
  fs::remove_all(m_cPath, ignored);
}

bool holds_forwarders(const fs::path& folder) { return fs::exists(folder / kCommonPart); }

ForwarderFolder::ForwarderFolder(const Header& header, const Others& others) {
  const fs::path installed = installed_folder();
  const auto there = [](bool is_there) { return is_there; };
  if (std::all_of(header.present.begin(), header.present.end(), there) &&
      std::all_of(header.exported.begin(), header.exported.end(), there) && others.empty()) {
    put_in_front(installed);  // the same path every time: programs may tell it
  } else {
    lay_out(header, others, installed, m_cFolder.path());
    put_in_front(m_cFolder.path());
  }
}

}  // namespace hvk3
