#include <cstring>

#include "libraries/calibration_api.h"
#include "ostrevanhvk3/image_block.h"
#include "stand_ins/control.h"

/// @file
/// A calibration engine of which a correction costs one copy: the image is the frame.

namespace {

constexpr long kGood = 0;
constexpr long kSmallBuffer = -21;
constexpr long kNoOption = -37;

Osv::bench::EngineControl g_control;
int g_engine = 0;

}  // namespace

Osv::bench::EngineControl* ostrevan_bench_engine() { return &g_control; }

void* CalibrateCreate() { return &g_engine; }
void CalibrateDelete(void**) {}
long CalibrateSetData(void*, const unsigned char*, unsigned long) { return kGood; }

long Calibrate(void*, tagBITMAPINFOHEADER* input, unsigned long input_size,
               tagBITMAPINFOHEADER* output, unsigned long* output_size) {
  const bool fits = output != nullptr && *output_size >= input_size;
  *output_size = input_size;
  if (!fits) {
    return kSmallBuffer;
  }
  std::memcpy(output, input, input_size);
  g_control = {input, output};
  return kGood;
}

const char* CalibrateGetErrorDescription(long) { return "refused"; }

long ContaminationDetection(void*, tagBITMAPINFOHEADER*, unsigned long, double* percent) {
  *percent = 0.0;
  return kGood;
}

long CalibrateSetOption(void*, const char*) { return kGood; }
long CalibrateGetOption(void*, const char*, char*, unsigned long*) { return kNoOption; }
