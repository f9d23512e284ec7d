#pragma once

#include <cstring>

#include "foundation/malloc_pointer.h"
#include "ostrevanhvk3/feature_schema.h"

/// @file
/// The builders behind `GetFeatureSchema`.
///
/// Asked for no condition, some write `condition` 0 and some leave it as it was; clients rely on
/// neither, and it is to stay so. Given a number that no feature has, they change nothing.

/// Gives a feature a minimum and a maximum. What `values` points to is not freed.
/// @throws std::bad_alloc
template <typename T>
void init_feature_minmax_cond(osvlx3_feature_schema& schema, T min, T max) {
  const T values[] = {min, max};
  Osv::lx::MAllocPointer memory(sizeof(values));
  std::memcpy(memory.get(), values, sizeof(values));
  schema.condition = 1;
  schema.value_count = 2;
  schema.value_size = sizeof(T);
  schema.values = memory.detach();
}

namespace Osv::lx {

/// Copies a text into a field of 255 bytes, cut at 254 characters.
void str2lx3str(const char* source, unsigned char* target);

/// @name Builders that leave `condition` alone without a condition
/// @{
void GetChannelCountFeatureSchema(osvlx3_feature_schema& schema, bool withCondition);
void GetLivelinessFeatureSchema(osvlx3_feature_schema& schema, bool withCondition);
void GetLEDFeatureSchema(unsigned int id, osvlx3_feature_schema& schema, bool withCondition);
void GetAutoCaptureBeepFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                     bool withCondition);
void GetUseFastPreviewMaskFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                        bool withCondition);
void GetUseRotateAndCropRolledImageFeatureSchema(unsigned int id, osvlx3_feature_schema& schema,
                                                 bool withCondition);
/// @}

/// @name Builders that write `condition` 0 without a condition
/// @{
void GetBeeperDataFeatureSchema(osvlx3_feature_schema& schema, bool withCondition);
void GetCaptureOptionsFeatureSchema(osvlx3_feature_schema& schema, bool withCondition);
void GetDisplayDataFeatureSchema(osvlx3_feature_schema& schema, bool withCondition);

/// Number and texts, and no condition; it clears the fields of the values too.
void GetSimpleFeatureSchema(unsigned int id, osvlx3_feature_schema& schema, const char* name,
                            const char* description);
/// @}

}  // namespace Osv::lx
