#pragma once

#include <istream>
#include <vector>

/// @file
/// Reading of whole files.

namespace Osv::file {

/// The rest of a stream, up to its end or to the first failure.
std::vector<unsigned char> read(std::istream& in);

/// Replaces `out` with the bytes of a file.
/// @throws CXFileNotFound when the file can't be opened, with `out` as it was
void ReadBinary(const char* path, std::vector<unsigned char>& out);

}  // namespace Osv::file
