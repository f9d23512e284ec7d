#ifndef OSTREVANHVK3_FEATURE_H
#define OSTREVANHVK3_FEATURE_H

/// @file
/// The numbered, self-describing value of the feature functions.

#include <cstddef>
#include <cstdint>

/// A feature's value: `count` elements of `size` bytes each at `data`. 32 bytes, a binary format
/// between client and plug-in. The client owns the record and what it puts into `data`; memory that
/// the plug-in puts there is the client's too and goes back with `LXSP_Free`.
struct osvlx3_feature {
  std::uint32_t id;        ///< feature number
  std::uint32_t reserved;  ///< padding
  std::uint64_t count;     ///< number of elements
  std::uint64_t size;      ///< bytes of one element: 1, 2 or 4 for numbers
  void* data;              ///< the elements
};

static_assert(offsetof(osvlx3_feature, count) == 8, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, size) == 16, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, data) == 24, "the record is a binary contract");
static_assert(sizeof(osvlx3_feature) == 32, "the record is a binary contract");

#endif
