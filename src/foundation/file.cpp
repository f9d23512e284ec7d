#include "foundation/file.h"

#include <array>
#include <fstream>

#include "foundation/exceptions.h"

namespace Osv::file {
namespace {

/// Appends the rest of `in` in pieces of `PieceSize` bytes. A stream that turns bad ends the loop
/// as the end does.
template <std::size_t PieceSize>
void append_rest(std::istream& in, std::vector<unsigned char>& out) {
  std::array<char, PieceSize> piece{};
  while (in) {
    in.read(piece.data(), piece.size());
    out.insert(out.end(), piece.begin(), piece.begin() + in.gcount());
  }
}

}  // namespace

std::vector<unsigned char> read(std::istream& in) {
  std::vector<unsigned char> bytes;
  append_rest<100>(in, bytes);
  return bytes;
}

void ReadBinary(const char* path, std::vector<unsigned char>& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in.is_open()) {
    throw CXFileNotFound(path);
  }
  out.clear();
  append_rest<1000>(in, out);
}

}  // namespace Osv::file
