// A client of the feature interface as its makers build it: C++11, the public headers and nothing
// else of this tree. It exits with the number of what did not come out as expected.
#include <dlfcn.h>

#include <cstring>
#include <iostream>

#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/feature_schema.h"

namespace {

using Osv::lx::CLX3ModuleException;
namespace symbol = Osv::lx::symbol;

int g_nFailures = 0;

void expect(bool good, const char* what) {
  if (!good) {
    std::cerr << "not so: " << what << "\n";
    ++g_nFailures;
  }
}

template <typename Function>
Function function(void* library, const char* name) {
  void* const address = dlsym(library, name);
  expect(address != nullptr, name);
  return reinterpret_cast<Function>(address);
}

/// What is thrown when the format of image data is asked for in elements of two bytes.
unsigned int thrown_number(Osv::lx::GetFeatureFunction get) {
  unsigned char value[2] = {0, 0};
  osvlx3_feature feature = {eFeatureImageDataFormat, 0, 1, 2, value};
  try {
    get(1, &feature);
  } catch (const CLX3ModuleException& failure) {
    return failure.value();
  }
  return 0;
}

/// The format of image data, in memory that goes back to the plug-in.
unsigned int image_data_format(void* library) {
  const auto get = function<Osv::lx::GetFeatureFunction>(library, symbol::GetFeature);
  const auto free = function<Osv::lx::FreeFunction>(library, symbol::Free);
  osvlx3_feature feature = {eFeatureImageDataFormat, 0, 0, 0, nullptr};
  if (get(1, &feature) != 0 || feature.data == nullptr) {
    return 0;
  }
  const unsigned int format = *static_cast<unsigned char*>(feature.data);
  free(feature.data);
  return format;
}

void copy_schema(void* library) {
  const auto describe =
      function<Osv::lx::GetFeatureSchemaFunction>(library, symbol::GetFeatureSchema);
  const auto copy = function<Osv::lx::CopyFeatures1Function>(library, symbol::CopyFeatures1);
  const auto free = function<Osv::lx::FreeFunction>(library, symbol::Free);
  osvlx3_feature_schema schema = osvlx3_feature_schema();
  describe(eFeatureImageDataFormat, schema, true);
  osvlx3_feature_schema* copies = nullptr;
  copy(&schema, 1, &copies);
  expect(std::strcmp(reinterpret_cast<char*>(copies->name), "Image data format") == 0, "the name");
  expect(std::memcmp(copies->values, "\1\2", 2) == 0, "minimum and maximum");
  free(schema.values);
  free(copies->values);
  free(copies);
}

}  // namespace

int main() {
  void* const library = dlopen("libostrevanhvk3.so", RTLD_NOW);
  if (library == nullptr) {
    std::cerr << dlerror() << "\n";
    return 1;
  }
  function<Osv::lx::GetFrameGrabberFunction>(library, symbol::GetFrameGrabber)();
  const auto get = function<Osv::lx::GetFeatureFunction>(library, symbol::GetFeature);
  expect(thrown_number(get) == 53, "LXSP_GetFeature throws 53, and it is caught by its type");
  expect(image_data_format(library) == 1, "the format of image data is 1");
  copy_schema(library);
  function<Osv::lx::DestroyFrameGrabberFunction>(library, symbol::DestroyFrameGrabber)();
  dlclose(library);
  return g_nFailures;
}
