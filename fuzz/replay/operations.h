#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "recorder/format/arguments.h"
#include "recorder/functions.h"

/// @file
/// The calls of a client whose answers are played.

namespace Osv::fuzz {

/// The client's handles, its word on the size of frames, which is the first that an opening tells
/// whatever it tells later, and what calls that succeeded gave it.
struct Client {
  void* scanner = nullptr;
  void* engine = nullptr;
  void* detector = nullptr;
  std::size_t frame = 0;
  std::vector<unsigned char> outputs = {};

  void take(const void* bytes, std::size_t size) {
    const auto* const first = static_cast<const unsigned char*>(bytes);
    outputs.insert(outputs.end(), first, first + size);
  }
};

/// The numbers that the handles are going to have, and whether images are recorded.
struct Numbers {
  std::uint32_t scanner = 0;
  std::uint32_t engine = 0;
  std::uint32_t detector = 0;
  bool pixels = true;
};

/// A call, and the arguments with which it is recorded.
struct Operation {
  recorder::eFunction function;
  recorder::Arguments (*arguments)(const Numbers& numbers);
  void (*make)(Client& client);
};

/// One for each function of the closed libraries.
std::span<const Operation> operations();

}  // namespace Osv::fuzz
