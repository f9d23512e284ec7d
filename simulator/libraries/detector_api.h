#pragma once

#include <cstdint>

#include "libraries/stand_in.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The fake finger detector as the stand-in has it.

OSV_STAND_IN long FakeFingerDetectionInitialize(void* reserved);
OSV_STAND_IN long FakeFingerDetectionUninitialize();
OSV_STAND_IN long FakeFingerDetectionCreateHandle(void** handle);
OSV_STAND_IN long FakeFingerDetectionDestroyHandle(void** handle);
OSV_STAND_IN long FakeFingerDetectionReset(void* handle);
OSV_STAND_IN long FakeFingerDetectionEvaluateLiveliness(void* handle, double* score);
OSV_STAND_IN long FakeFingerDetectionSetImage(void* handle, std::int32_t kind,
                                              const tagBITMAPINFOHEADER* bitmap,
                                              unsigned long size);
OSV_STAND_IN long FakeFingerDetectionSetPropertyA(void* handle, const char* name,
                                                  const char* value);
OSV_STAND_IN long FakeFingerDetectionGetPropertyA(void* handle, const char* name, char* value,
                                                  unsigned long* length);
OSV_STAND_IN const char* FakeFingerDetectionGetErrorDescriptionA(long code);
