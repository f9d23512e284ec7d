#pragma once

#include <cstring>

#include "foundation/malloc_pointer.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/module_exception.h"

/// @file
/// Values in and out of feature records. Failures go through to the client as
/// `CLX3ModuleException`.

namespace Osv::lx {

/// Writes one value into a record for which the client may have supplied the space: with `count` 0
/// the space is allocated, and is the client's.
/// @throws CLX3ModuleException 51 out of memory; 53 elements of another size; 60 null `data`
template <typename T>
void smart_alloc_feature(T value, osvlx3_feature& feature) {
  if (feature.count == 0) {
    void* const memory = MAllocPointer::alloc_memory(sizeof(T));
    if (memory == nullptr) {
      throw CLX3ModuleException(error_number::NotEnoughStorage);
    }
    feature.data = memory;
  } else if (feature.size != sizeof(T)) {
    throw CLX3ModuleException(error_number::ElementSize);
  } else if (feature.data == nullptr) {
    throw CLX3ModuleException(error_number::NullPointer);
  }
  std::memcpy(feature.data, &value, sizeof(T));
  feature.size = sizeof(T);
  feature.count = 1;
}

/// The first element as an unsigned number of `size` bytes.
/// @throws CLX3ModuleException 53 for a size other than 1, 2 or 4; 60 null `data`
[[nodiscard]] unsigned int GetFeatureNumericValue(const osvlx3_feature& feature);

}  // namespace Osv::lx
