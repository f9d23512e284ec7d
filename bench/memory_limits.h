#pragma once

#include <cstddef>

/// @file
/// What touching bytes costs at least on the machine at hand, with its widest vectors of 16 or 32
/// bytes.

namespace Osv::bench {

/// Reads every byte once, 32 of them at least.
void read_pass(const unsigned char* bytes, std::size_t size);

/// Reads every byte once and writes it back changed.
void modify_pass(unsigned char* bytes, std::size_t size);

/// Writes every byte once.
void write_pass(unsigned char* bytes, std::size_t size);

}  // namespace Osv::bench
