// Reads properties and features: features [CODE-FILE]
// The file has the 7 bytes of the authorization code, with which the protected bytes are read.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

#include "plugin.h"

namespace {

void print_properties(Osv::lx::ClFramegrabber& grabber) {
  std::vector<ePropertyIDs> list(16);
  unsigned long count = list.size();
  check(grabber, grabber.AvailableProperties(list.data(), count));
  list.resize(count);
  for (const ePropertyIDs property : list) {
    unsigned int value = 0;
    check(grabber, grabber.GetFGProperty(property, value));
    std::printf("property %u: %u\n", property, value);
  }
}

// A refusal of the record comes as a bare number, without a text.
void check_feature(Osv::lx::ClFramegrabber& grabber, unsigned long result) {
  if ((result & Osv::lx::error_number::ReportedBit) != 0) {
    check(grabber, result);
  } else if (result != 0) {
    throw Failure(static_cast<long>(result), "the feature was refused");
  }
}

// With `count` 0 the plug-in allocates the value, which goes back to it.
void print_image_data_format(Plugin& plugin) {
  const auto get = plugin.function<Osv::lx::GetFeatureFunction>(Osv::lx::symbol::GetFeature);
  const auto free = plugin.function<Osv::lx::FreeFunction>(Osv::lx::symbol::Free);
  osvlx3_feature feature = {eFeatureImageDataFormat, 0, 0, 0, nullptr};
  check_feature(plugin.grabber(), get(kChannel, &feature));
  if (feature.data != nullptr) {
    std::printf("image data format: %u\n", *static_cast<unsigned char*>(feature.data));
    free(feature.data);
  }
}

// A value that is none is thrown as a bare number, which no handler for std::exception sees.
void set_image_data_format(Plugin& plugin, unsigned char format) {
  const auto set = plugin.function<Osv::lx::SetFeatureFunction>(Osv::lx::symbol::SetFeature);
  const osvlx3_feature feature = {eFeatureImageDataFormat, 0, 1, 1, &format};
  try {
    check_feature(plugin.grabber(), set(kChannel, &feature));
  } catch (const Osv::lx::CLX3ModuleException& failure) {
    std::printf("image data format %u: refused with %u\n", format, failure.value());
  }
}

void read_protected_bytes(Plugin& plugin, const char* code_file) {
  const auto get = plugin.function<Osv::lx::GetFeatureFunction>(Osv::lx::symbol::GetFeature);
  char bytes[14] = {};  // the code, and behind it what is read
  std::ifstream(code_file, std::ios::binary).read(bytes, 7);
  osvlx3_feature feature = {eFeatureSecretBytes, 0, sizeof(bytes), 1, bytes};
  check_feature(plugin.grabber(), get(kChannel, &feature));
  std::printf("the protected bytes were read\n");  // they are nothing to print
}

}  // namespace

int main(int argc, char** argv) {
  return run([&](Plugin& plugin) {
    check(plugin.grabber(), plugin.grabber().SetFGProperty(ePropGreenLED, 1));
    print_properties(plugin.grabber());
    print_image_data_format(plugin);
    set_image_data_format(plugin, 3);
    if (argc > 1) {
      read_protected_bytes(plugin, argv[1]);
    }
  });
}
