#pragma once

#include "libraries/stand_in.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The calibration library as the stand-in has it.

OSV_STAND_IN void* CalibrateCreate();
OSV_STAND_IN long Calibrate(void* handle, tagBITMAPINFOHEADER* input, unsigned long input_size,
                            tagBITMAPINFOHEADER* output, unsigned long* output_size);
OSV_STAND_IN void CalibrateDelete(void** handle);
OSV_STAND_IN long CalibrateSetData(void* handle, const unsigned char* data, unsigned long size);
OSV_STAND_IN const char* CalibrateGetErrorDescription(long code);
OSV_STAND_IN long ContaminationDetection(void* handle, tagBITMAPINFOHEADER* bitmap,
                                         unsigned long size, double* percent);
OSV_STAND_IN long CalibrateSetOption(void* handle, const char* option);
OSV_STAND_IN long CalibrateGetOption(void* handle, const char* name, char* value,
                                     unsigned long* length);
