#ifndef OSTREVANHVK3_FEATURE_H
#define OSTREVANHVK3_FEATURE_H

/// @file
/// The numbered, self-describing value of the feature functions.
///
/// This family of scanners has three features; any other number gives 12:
///
/// - 53, the authorization code of the scanner's protected bytes. Write only: reading gives 82.
///   Writing takes 7 bytes: `size` 1, `count` 7.
/// - 54, the protected bytes. 14 bytes, `size` 1 and `count` 14: the 7 bytes of the authorization
///   code, then the 7 protected bytes, which reading fills in. A `count` too small gives 17, one
///   too large 52; reading then sets `count` to 14.
/// - 55, the format of image data, a number: 1 or 2. Each opening of the scanner sets it to 1, and
///   nothing acts on it. Reading with `count` 0 allocates the value; otherwise `data` has room for
///   one byte and `size` is 1. Writing takes a number of 1, 2 or 4 bytes of which the low byte
///   counts.

#include <cstddef>
#include <cstdint>

/// The features of this family of scanners.
enum eFeatureIDs : unsigned int {
  eFeatureAuthorizationCode = 53,
  eFeatureSecretBytes = 54,
  eFeatureImageDataFormat = 55
};

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

static_assert(offsetof(osvlx3_feature, id) == 0, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, reserved) == 4, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, count) == 8, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, size) == 16, "the record is a binary contract");
static_assert(offsetof(osvlx3_feature, data) == 24, "the record is a binary contract");
static_assert(sizeof(osvlx3_feature) == 32, "the record is a binary contract");

#endif
