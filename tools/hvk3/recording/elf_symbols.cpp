#include "hvk3/recording/elf_symbols.h"

#include <elf.h>

#include <cstring>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

[[noreturn]] void throw_no_library() {
  throw Failure(ExitStatus::Internal, "a forwarder's file is no library");
}

/// A record of the file.
template <class Record>
Record read(const std::vector<char>& file, std::size_t position) {
  Record record = {};
  if (position > file.size() || file.size() - position < sizeof(record)) {
    throw_no_library();
  }
  std::memcpy(&record, file.data() + position, sizeof(record));
  return record;
}

Elf64_Shdr section(const std::vector<char>& file, std::size_t index) {
  const auto header = read<Elf64_Ehdr>(file, 0);
  return read<Elf64_Shdr>(file, header.e_shoff + index * header.e_shentsize);
}

/// The section of the symbols that the loader sees.
Elf64_Shdr dynamic_symbols(const std::vector<char>& file) {
  const auto header = read<Elf64_Ehdr>(file, 0);
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
    throw_no_library();
  }
  for (std::size_t index = 0; index < header.e_shnum; ++index) {
    if (const Elf64_Shdr found = section(file, index); found.sh_type == SHT_DYNSYM) {
      return found;
    }
  }
  throw_no_library();
}

std::string name_at(const std::vector<char>& file, std::size_t position) {
  const std::size_t room = position < file.size() ? file.size() - position : 0;
  return {file.data() + file.size() - room, ::strnlen(file.data() + file.size() - room, room)};
}

}  // namespace

void hide_symbols(std::vector<char>& library, const std::set<std::string>& names) {
  const Elf64_Shdr symbols = dynamic_symbols(library);
  const Elf64_Shdr texts = section(library, symbols.sh_link);
  for (std::size_t at = 0; at + sizeof(Elf64_Sym) <= symbols.sh_size; at += sizeof(Elf64_Sym)) {
    auto symbol = read<Elf64_Sym>(library, symbols.sh_offset + at);
    if (names.count(name_at(library, texts.sh_offset + symbol.st_name)) != 0) {
      symbol.st_value = 0;
      symbol.st_size = 0;
      symbol.st_shndx = SHN_UNDEF;
      std::memcpy(library.data() + symbols.sh_offset + at, &symbol, sizeof(symbol));
    }
  }
}

}  // namespace hvk3
