#include "foundation/feature_value.h"

#include <cstdint>

namespace Osv::lx {
namespace {

template <typename T>
unsigned int first_element(const osvlx3_feature& feature) {
  if (feature.data == nullptr) {
    throw CLX3ModuleException(error_number::NullPointer);
  }
  T element;
  std::memcpy(&element, feature.data, sizeof(T));
  return element;
}

}  // namespace

unsigned int GetFeatureNumericValue(const osvlx3_feature& feature) {
  switch (feature.size) {
    case sizeof(std::uint8_t):
      return first_element<std::uint8_t>(feature);
    case sizeof(std::uint16_t):
      return first_element<std::uint16_t>(feature);
    case sizeof(std::uint32_t):
      return first_element<std::uint32_t>(feature);
    default:
      throw CLX3ModuleException(error_number::ElementSize);
  }
}

}  // namespace Osv::lx
