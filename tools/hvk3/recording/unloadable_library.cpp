#include "hvk3/recording/unloadable_library.h"

#include <elf.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <optional>

#include "hvk3/failure.h"
#include "hvk3/loader_text.h"

namespace hvk3 {
namespace {

constexpr char kMissing[] = ": cannot open shared object file: No such file or directory";

std::string header_of_class(unsigned char word_size) {
  std::string header(sizeof(Elf64_Ehdr), '\0');
  std::memcpy(header.data(), ELFMAG, SELFMAG);
  header[EI_CLASS] = static_cast<char>(word_size);
  return header;
}

/// A library that is nothing but in need of another one.
struct NeedyLibrary {
  enum { kLoaded, kDynamic, kStack, kSegments };

  Elf64_Ehdr header = {};
  std::array<Elf64_Phdr, kSegments> segments = {};
  std::array<Elf64_Dyn, 8> dynamic = {};
  Elf64_Sym no_symbol = {};
  std::array<Elf64_Word, 4> hash = {1, 1, 0, 0};  // one bucket and one chain, both empty
  std::array<char, 1024> texts = {};

  explicit NeedyLibrary(const std::string& needed) {
    // For the same machine as this program.
    std::ifstream("/proc/self/exe", std::ios::binary)
        .read(reinterpret_cast<char*>(&header), sizeof(header));
    header.e_type = ET_DYN;
    header.e_entry = 0;
    header.e_phoff = offsetof(NeedyLibrary, segments);
    header.e_phnum = kSegments;
    header.e_shoff = 0;
    header.e_shnum = 0;
    header.e_shstrndx = 0;
    constexpr Elf64_Word kReadAndWrite = PF_R | PF_W;
    constexpr Elf64_Xword kPage = 4096;
    segments[kLoaded] = {PT_LOAD, kReadAndWrite, 0, 0, 0, sizeof(*this), sizeof(*this), kPage};
    segments[kDynamic] = {PT_DYNAMIC,
                          kReadAndWrite,
                          offsetof(NeedyLibrary, dynamic),
                          offsetof(NeedyLibrary, dynamic),
                          0,
                          sizeof(dynamic),
                          sizeof(dynamic),
                          alignof(Elf64_Dyn)};
    segments[kStack] = {PT_GNU_STACK, kReadAndWrite, 0, 0, 0, 0, 0, 0};  // else it may be run
    // The other one is not to be found among what this machine has.
    dynamic = {{{DT_NEEDED, {1}},
                {DT_FLAGS_1, {DF_1_NODEFLIB}},
                {DT_HASH, {offsetof(NeedyLibrary, hash)}},
                {DT_SYMTAB, {offsetof(NeedyLibrary, no_symbol)}},
                {DT_SYMENT, {sizeof(no_symbol)}},
                {DT_STRTAB, {offsetof(NeedyLibrary, texts)}},
                {DT_STRSZ, {sizeof(texts)}},
                {DT_NULL, {0}}}};
    needed.copy(texts.data() + 1, texts.size() - 2);
  }
};

std::string library_that_needs(const std::string& needed) {
  const NeedyLibrary library(needed);
  return {reinterpret_cast<const char*>(&library), sizeof(library)};
}

/// The library that another one needs and that there was not; empty for another failure.
std::string needed_library(const std::string& failure) {
  const std::string name = missing_file(failure);
  const bool is_known = name.find('/') == std::string::npos && failure == name + kMissing;
  return is_known ? name : "";
}

/// What the loader says these words of.
std::optional<std::string> content_for(const std::string& failure) {
  const auto tells = [&](const char* words) { return failure.find(words) != std::string::npos; };
  if (tells(": file too short")) {
    return "";
  }
  if (tells(": invalid ELF header")) {
    return std::string(sizeof(Elf64_Ehdr), '\0');
  }
  if (tells(": wrong ELF class: ELFCLASS32")) {
    return header_of_class(ELFCLASS32);
  }
  if (const std::string needed = needed_library(failure); !needed.empty()) {
    return library_that_needs(needed);
  }
  return std::nullopt;
}

}  // namespace

bool write_unloadable_library(const std::filesystem::path& path, const std::string& failure) {
  const std::optional<std::string> content = content_for(failure);
  if (!content) {
    return false;
  }
  if (!(std::ofstream(path, std::ios::binary) << *content).flush()) {
    throw Failure(ExitStatus::OutputFailed, path.string() + " can't be written");
  }
  return true;
}

}  // namespace hvk3
