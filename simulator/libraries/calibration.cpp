#include <memory>

#include "libraries/calibration_api.h"
#include "libraries/coded_call.h"
#include "libraries/description.h"
#include "libraries/engine.h"
#include "libraries/registry.h"
#include "libraries/text_out.h"

/// @file
/// The stand-in for the calibration library: its functions over engines.

namespace Osv::simulator {
namespace {

using Engines = Registry<CalibrationEngine>;

Engines& engines() {
  static Engines all(eInstance::Engine);
  return all;
}

/// Work on the engine of a handle with an argument that must not be null.
template <class Work>
long on_engine(const RecordedCall& call, void* handle, const void* argument, Work work) {
  return code_of(call, [&]() -> long {
    const std::shared_ptr<CalibrationEngine> engine = engines().find(handle);
    if (engine == nullptr) {
      return kEngineBadHandle;
    }
    return argument == nullptr ? kEngineBadArgument : work(*engine);
  });
}

/// Puts in what the fault plan wants for a size or length.
void replace_number(const RecordedCall& call, unsigned long* number) {
  if (number != nullptr && call.effects().size.has_value()) {
    *number = static_cast<unsigned long>(*call.effects().size);
  }
}

unsigned long number_at(const unsigned long* number) { return number == nullptr ? 0 : *number; }

/// The value of an option, or the one that the fault plan gives in its place.
long option_value(const RecordedCall& call, const CalibrationEngine& engine, const char* name,
                  char* value, unsigned long& length) {
  const auto& text = call.effects().text;
  if (call.effects().no_text) {
    return kEngineGood;
  }
  if (!text.has_value()) {
    return engine.get_option(name, value, length);
  }
  return give_text(*text, value, length) ? kEngineGood : kEngineSmallBuffer;
}

}  // namespace
}  // namespace Osv::simulator

using namespace Osv::simulator;

void* CalibrateCreate() {
  RecordedCall call(eFunction::CalibrateCreate);
  const bool fails = call.effects().null_handle || call.effects().fails_with.has_value();
  void* const handle = fails ? nullptr : engines().create();
  call.result(fails ? "null" : "handle %u", Engines::number_of(handle));
  return handle;
}

long Calibrate(void* handle, tagBITMAPINFOHEADER* input, unsigned long input_size,
               tagBITMAPINFOHEADER* output, unsigned long* output_size) {
  RecordedCall call(eFunction::Calibrate);
  call.arguments("handle %u, input %lu, output %s, size %lu", Engines::number_of(handle),
                 input_size, output == nullptr ? "null" : "buffer", number_at(output_size));
  const long code = on_engine(call, handle, output_size, [&](CalibrationEngine& engine) {
    return engine.calibrate(input, input_size, output, *output_size);
  });
  replace_number(call, output_size);
  call.result("%ld, size %lu", code, number_at(output_size));
  return code;
}

void CalibrateDelete(void** handle) {
  RecordedCall call(eFunction::CalibrateDelete);
  if (handle != nullptr) {
    call.arguments("handle %u", Engines::number_of(*handle));
    engines().destroy(*handle);
    *handle = nullptr;
  }
}

long CalibrateSetData(void* handle, const unsigned char* data, unsigned long size) {
  RecordedCall call(eFunction::CalibrateSetData);
  call.arguments("handle %u, data, size %lu", Engines::number_of(handle), size);
  const long code = on_engine(
      call, handle, data, [&](CalibrationEngine& engine) { return engine.set_data(data, size); });
  call.result("%ld", code);
  return code;
}

const char* CalibrateGetErrorDescription(long code) {
  RecordedCall call(eFunction::CalibrateGetErrorDescription);
  call.arguments("code %ld", code);
  const char* const text = described(call, engine_text(code));
  call.result("%s", Quoted(text).c_str());
  return text;
}

long ContaminationDetection(void* handle, tagBITMAPINFOHEADER* bitmap, unsigned long size,
                            double* percent) {
  RecordedCall call(eFunction::ContaminationDetection);
  call.arguments("handle %u, bitmap, size %lu", Engines::number_of(handle), size);
  const long code = on_engine(call, handle, percent, [&](CalibrationEngine& engine) {
    const long result = engine.contamination(bitmap, size, *percent);
    *percent = call.effects().number.value_or(*percent);
    return result;
  });
  call.result("%ld", code);
  return code;
}

long CalibrateSetOption(void* handle, const char* option) {
  RecordedCall call(eFunction::CalibrateSetOption, option);
  call.arguments("handle %u, %s", Engines::number_of(handle), Quoted(option).c_str());
  const long code = on_engine(call, handle, option,
                              [&](CalibrationEngine& engine) { return engine.set_option(option); });
  call.result("%ld", code);
  return code;
}

long CalibrateGetOption(void* handle, const char* name, char* value, unsigned long* length) {
  RecordedCall call(eFunction::CalibrateGetOption, name);
  call.arguments("handle %u, %s, length %lu", Engines::number_of(handle), Quoted(name).c_str(),
                 number_at(length));
  const void* const needed = name == nullptr ? nullptr : length;
  const long code = on_engine(call, handle, needed, [&](CalibrationEngine& engine) {
    return option_value(call, engine, name, value, *length);
  });
  replace_number(call, length);
  const bool told = code == kEngineGood && value != nullptr && !call.effects().no_text;
  call.result(told ? "%ld, '%s'" : "%ld", code, value);
  return code;
}
