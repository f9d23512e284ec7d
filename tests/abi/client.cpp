// A client of the first days: C++11, the declarations of those days and nothing of this tree. It
// calls every operation through its old slot and uses every symbol, and exits with the number of
// what did not come out as it did then.
#include <dlfcn.h>

#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <mutex>
#include <string>
#include <typeinfo>
#include <vector>

#include "published.h"

namespace {

using namespace published;

int g_nFailures = 0;

void expect(bool good, const char* what) {
  if (!good) {
    std::cerr << "not as it was: " << what << "\n";
    ++g_nFailures;
  }
}

void expect_result(unsigned long result, unsigned long expected, const char* what) {
  if (result != expected) {
    std::cerr << std::hex << "0x" << result << " for 0x" << expected << ": " << what << "\n";
    ++g_nFailures;
  }
}

// The library, which a missing symbol makes useless.
class Library {
 public:
  Library() : m_library(dlopen("libostrevanhvk3.so", RTLD_NOW)) {
    if (m_library == nullptr) {
      std::cerr << dlerror() << "\n";
      std::exit(1);
    }
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { dlclose(m_library); }

  template <typename Function>
  Function symbol(const char* name) const {
    void* const address = dlsym(m_library, name);
    if (address == nullptr) {
      std::cerr << dlerror() << "\n";
      std::exit(1);
    }
    return reinterpret_cast<Function>(address);
  }

 private:
  void* m_library;
};

// What the callbacks have told.
struct Told {
  std::mutex lock;
  std::condition_variable changed;
  int starts, stops, lives, fingers, errors, events;
  ImageHeader header;
  Told() : starts(0), stops(0), lives(0), fingers(0), errors(0), events(0), header() {}
};

const int kHandle = 4711;
const unsigned int kEventHandle = 23;

void count(void* user, int Told::*counter) {
  Told& told = *static_cast<Told*>(user);
  const std::lock_guard<std::mutex> guard(told.lock);
  ++(told.*counter);
  told.changed.notify_all();
}

void on_start(int handle, unsigned int channel, void* user) {
  expect(handle == kHandle && channel == 1, "the arguments of the start callback");
  count(user, &Told::starts);
}

void on_stop(int handle, unsigned int channel, void* user) {
  expect(handle == kHandle && channel == 1, "the arguments of the stop callback");
  count(user, &Told::stops);
}

void on_live(int handle, unsigned int channel, unsigned char*, void* user) {
  expect(handle == kHandle && channel == 1, "the arguments of the live image callback");
  count(user, &Told::lives);
}

void on_finger(int handle, unsigned int channel, int type, unsigned char* image, void* user) {
  expect(handle == kHandle && channel == 1 && type == Plain, "the arguments of a finger image");
  std::memcpy(&static_cast<Told*>(user)->header, image, sizeof(ImageHeader));
  count(user, &Told::fingers);
}

void on_error(int, unsigned int, const char* text, void* user) {
  std::cerr << text << "\n";
  count(user, &Told::errors);
}

void on_event(int handle, unsigned int channel, Kind kind, unsigned int type, void* user) {
  expect(handle == static_cast<int>(kEventHandle) && channel == 1 && kind == HVK3 && type == 0,
         "the arguments of the event callback");
  count(user, &Told::events);
}

std::string last_error(Grabber& grabber) {
  char text[1100] = "";
  unsigned long size = sizeof(text);
  expect_result(grabber.GetLastError(text, size), 0, "GetLastError");
  return text;
}

void expect_text(Grabber& grabber, const char* text) { expect(last_error(grabber) == text, text); }

template <typename Element>
void expect_list(Grabber& grabber, unsigned long (Grabber::*operation)(Element*, unsigned long&),
                 const std::vector<Element>& expected, const char* what) {
  unsigned long count = 0;
  expect_result((grabber.*operation)(nullptr, count), 0x10000011, what);
  std::vector<Element> list(count);
  expect_result((grabber.*operation)(list.data(), count), 0, what);
  expect(list == expected, what);
}

void ask_for_lists(Grabber& grabber) {
  const std::vector<Property> properties = {ChannelCount, Liveliness,    RedLED,
                                            GreenLED,     FakeDetection, LowContrastImage};
  expect_list(grabber, &Grabber::AvailableCameras, {Camera8}, "cameras");
  expect_list(grabber, &Grabber::AvailableColorModes, {Gray}, "colour modes");
  expect_list(grabber, &Grabber::AvailableDetections, {Live, Plain}, "detections");
  expect_list(grabber, &Grabber::AvailableFilters, {NoFilter}, "filters");
  expect_list(grabber, &Grabber::AvailableProperties, properties, "properties");
  expect_list(grabber, &Grabber::AvailablePropertiesEx, properties, "extended properties");
}

void ask_for_descriptions(Grabber& grabber) {
  char text[200] = "";
  unsigned long size = sizeof(text);
  expect_result(grabber.GetVersion(text, size), 0, "GetVersion");
  expect(std::string(text) == "2.0.1425.2" && size == 11, "the version");
  size = sizeof(text);
  expect_result(grabber.GetInfo(text, size), 0, "GetInfo");
  expect(std::string(text) == "Ostrevan KR9 scanner", "the name");
  expect(std::string(text + 21) == "HVK30001", "the serial number");
}

void choose_device(Grabber& grabber) {
  Device device = Device();
  unsigned long count = 1;
  unsigned long index = 77;
  expect_result(grabber.AvailableDevices(&device, count), 0, "AvailableDevices");
  expect(count == 1 && std::memcmp(device.serial_number, "HVK30001", 8) == 0, "the device");
  expect_result(grabber.SetActiveDevice(device.interface), 0, "SetActiveDevice");
  expect_result(grabber.GetActiveDevice(index), 0, "GetActiveDevice");
  expect(index == 0, "the active device");
  expect_result(grabber.SetActiveDevice(0x80000000UL), 0x1000001B, "SetActiveDevice");
  expect_text(grabber, "The device index out of range or is not supported by frame grabber");
}

void use_settings(Grabber& grabber) {
  expect_result(grabber.SetCamera(1, Camera8, Gray), 0, "SetCamera");
  expect_result(grabber.SetCamera(1, Camera5, Gray), 0x10000003, "SetCamera");
  expect_text(grabber, "The camera ID is unknown or is not supported by frame grabber");
  expect_result(grabber.SetFilter(1, NoFilter), 0, "SetFilter");
  expect_result(grabber.SetFilter(2, NoFilter), 0x10000004, "SetFilter");
  expect_text(grabber, "Incorrect channel number for frame grabber");
  expect_result(grabber.SetResolution(1, Resolution()), 0x1000000E, "SetResolution");
  expect_text(grabber, "This property or function is not supported by frame grabber");
  expect_result(grabber.RefreshBackGround(1), 0, "RefreshBackGround");
  expect_result(grabber.SetFilter(1, static_cast<Filter>(3)), 0x1000000B, "SetFilter");
}

void use_properties(Grabber& grabber) {
  unsigned int value = 0;
  unsigned long wide = 0x500000000UL;
  expect_result(grabber.GetFGProperty(ChannelCount, value), 0, "GetFGProperty");
  expect(value == 1, "the number of channels");
  expect_result(grabber.SetFGProperty(ChannelCount, 1), 0x10000012, "SetFGProperty");
  expect_result(grabber.SetFGPropertyEx(1, GreenLED, 1), 0, "SetFGPropertyEx");
  expect_result(grabber.GetFGPropertyEx(1, GreenLED, wide), 0, "GetFGPropertyEx");
  expect(wide == 0x500000064UL, "the green LED");
  expect_result(grabber.GetFGProperty(RedLED, value), 0, "GetFGProperty");
  expect(value == 0, "the red LED");
}

void call_what_is_missing(Grabber& grabber) {
  unsigned char byte = 0;
  unsigned long size = 1;
  expect_result(grabber.WriteEEPROM(&byte, size), 14, "WriteEEPROM");
  expect_result(grabber.ReadEEPROM(&byte, size), 14, "ReadEEPROM");
  expect_result(grabber.SetAspectRatio(1, 1.0, 1.0), 14, "SetAspectRatio");
  expect_result(grabber.ShowDialog(Dialog(), 0), 22, "ShowDialog");
  expect_result(grabber.SaveSetting(1, 0), 22, "SaveSetting");
  expect_result(grabber.AvailableDialogs(0, nullptr, size), 22, "AvailableDialogs");
}

void take_image(Grabber& grabber, const Library& library) {
  double level = -1;
  expect_result(grabber.ContaminationDetection(1, &level), 0, "ContaminationDetection");
  expect(level >= 0, "the dirt");
  unsigned char* image = nullptr;
  expect_result(grabber.GetImage(1, &image), 0, "GetImage");
  BiometricData data = BiometricData();
  library.symbol<ImageToBiodata>("_ZN3Osv2lx13image2biodataEPKhP21osvlx3_biometric_data")(image,
                                                                                          &data);
  const BiometricImage& sample = *static_cast<const BiometricImage*>(data.data);
  expect(sample.width == 498 && sample.height == 438 && sample.bits_per_pixel == 8 &&
             sample.bytes_per_row == 500 && sample.x_pels_per_meter == 19685,
         "the sample");
  expect(data.tag1 == 1 && data.tag2 == 1 && data.tag3 == 0 && data.count == 1, "the envelope");
  expect(data.size == sizeof(BiometricImage) + sample.pixel_size, "the size of the envelope");
  library.symbol<LXSP_Free>("_Z9LXSP_FreePv")(data.data);
  expect_result(grabber.FreeImage(image), 0, "FreeImage");
}

// Captures a settled finger with fake finger detection on.
void capture(Grabber& grabber) {
  Told told;
  expect_result(grabber.SetFGProperty(Liveliness, 1), 0, "SetFGProperty");
  expect_result(grabber.SetFGProperty(FakeDetection, 100), 0, "SetFGProperty");
  expect_result(grabber.EnableEvents(0, kEventHandle, &on_event, &told), 0, "EnableEvents");
  expect_result(grabber.SetCallbacks(1, &on_start, &on_stop), 0, "SetCallbacks");
  expect_result(grabber.Freeze(1, false), 0, "Freeze");
  expect_result(
      grabber.StartCapture(kHandle, 1, Plain, &on_live, &on_finger, &on_error, nullptr, &told), 0,
      "StartCapture");
  expect_result(grabber.StartCapture(kHandle, 1, Rolled, nullptr, nullptr, nullptr, nullptr, &told),
                0x1000000A, "StartCapture of what is not offered");
  {
    std::unique_lock<std::mutex> guard(told.lock);
    told.changed.wait(guard, [&] { return told.fingers > 0 || told.stops > 0; });
  }
  expect_result(grabber.StopCapture(1), 0, "StopCapture");
  expect(told.starts == 1 && told.stops == 1 && told.errors == 0, "start and stop");
  expect(told.fingers > 0 && told.lives >= told.fingers, "live images and finger images");
  expect(told.events > 0, "events");
  expect(told.header.size == 40 && told.header.width == 498 && told.header.height == 438 &&
             told.header.bit_count == 8 && told.header.x_pels_per_meter == 19685,
         "the header of a finger image");
}

void ask_for_frame_information(Grabber& grabber, const Library& library) {
  unsigned char told[12] = {};
  unsigned char same[12] = {};
  expect_result(library.symbol<FGCurrentFrameInfo>("FGCurrentFrameInfo")(0, 0, 1, told), 0,
                "FGCurrentFrameInfo");
  expect_result(grabber.CurrentFrameInfo(0, 1, same), 0, "CurrentFrameInfo");
  double score = 0;
  std::memcpy(&score, told, sizeof(score));
  expect(score > 0 && std::memcmp(told, same, sizeof(told)) == 0, "the score");
}

void use_features(const Library& library) {
  const auto get = library.symbol<LXSP_GetFeature>("_Z15LXSP_GetFeaturejP14osvlx3_feature");
  const auto set = library.symbol<LXSP_SetFeature>("_Z15LXSP_SetFeaturejPK14osvlx3_feature");
  unsigned char bytes[15] = "\0\0\0\0\0\0\0secret7";
  Feature feature = {54, 0, 14, 1, bytes};
  expect_result(set(1, &feature), 0, "writing feature 54");
  std::memset(bytes + 7, 0, 7);
  expect_result(get(1, &feature), 0, "reading feature 54");
  expect(std::memcmp(bytes + 7, "secret7", 7) == 0, "the protected bytes");
  feature.count = 13;
  expect_result(get(1, &feature), 17, "reading feature 54 without room");
  expect(feature.count == 14, "the room that feature 54 needs");
  feature.id = 53;
  expect_result(get(1, &feature), 82, "reading feature 53");
}

template <typename Call>
void expect_thrown(Call call, unsigned int number, const char* what) {
  try {
    call();
    expect(false, what);
  } catch (const Osv::lx::CLX3ModuleException& failure) {
    expect_result(failure.value(), number, what);
  } catch (...) {
    expect(false, what);
  }
}

void catch_what_is_thrown(const Library& library) {
  const auto get = library.symbol<LXSP_GetFeature>("_Z15LXSP_GetFeaturejP14osvlx3_feature");
  const auto set = library.symbol<LXSP_SetFeature>("_Z15LXSP_SetFeaturejPK14osvlx3_feature");
  const auto text = library.symbol<VersionText>("_ZN3Osv2lx10infver2strEt");
  unsigned char format = 9;
  Feature wide = {55, 0, 1, 2, &format};
  const Feature unknown = {55, 0, 1, 1, &format};
  expect_thrown([&] { get(1, &wide); }, 53, "reading feature 55 into two bytes");
  expect_thrown([&] { set(1, &unknown); }, 52, "writing a format that there isn't");
  expect_thrown([&] { text(258); }, 74, "the text of a version that there isn't");
  const std::type_info& thrown = typeid(Osv::lx::CLX3ModuleException);
  expect(*library.symbol<const std::type_info*>("_ZTIN3Osv2lx19CLX3ModuleExceptionE") == thrown,
         "the type of what is thrown");
  expect(std::strcmp(library.symbol<const char*>("_ZTSN3Osv2lx19CLX3ModuleExceptionE"),
                     thrown.name()) == 0,
         "the name of what is thrown");
}

void describe_feature(const Library& library) {
  FeatureSchema schema = FeatureSchema();
  FeatureSchema* copy = nullptr;
  library.symbol<GetFeatureSchema>("_ZN3Osv2lx16GetFeatureSchemaEjR21osvlx3_feature_schemab")(
      24, schema, true);
  library.symbol<CopyFeatures1>("_ZN3Osv2lx13CopyFeatures1EPK21osvlx3_feature_schemajPPS1_")(
      &schema, 1, &copy);
  const char* const name = reinterpret_cast<const char*>(copy->name);
  const char* const description = reinterpret_cast<const char*>(copy->description);
  expect(copy->id == 24 && std::string(name) == "Signature Filter", "the name of feature 24");
  expect(std::string(description) == "Sigma value for signature filter 10000 == 1.0.",
         "the description of feature 24");
  expect(copy->condition == 1 && copy->value_size == 4 && copy->value_count == 2,
         "the condition of feature 24");
  expect(static_cast<const int*>(copy->values)[1] == 500000, "the maximum of feature 24");
  const auto free = library.symbol<LXSP_Free>("_Z9LXSP_FreePv");
  free(schema.values);
  free(copy->values);
  free(copy);
}

void convert_unit(const Library& library) {
  Device device = Device();
  Device again = Device();
  UnitSchema unit = UnitSchema();
  std::strcpy(device.serial_number, "HVK30007");
  device.interface = 7;
  library.symbol<DeviceToUnit>(
      "_ZN3Osv2lx20dev_info2unit_schemaERK10DeviceInfoR18osvlx3_unit_schemaj")(device, unit, 3);
  expect(unit.id == 7 && unit.channels == 3 &&
             std::strcmp(reinterpret_cast<const char*>(unit.name), "HVK30007") == 0,
         "the unit");
  library.symbol<UnitToDevice>(
      "_ZN3Osv2lx20unit_schema2dev_infoERK18osvlx3_unit_schemaR10DeviceInfo")(unit, again);
  expect(std::memcmp(&device, &again, sizeof(device)) == 0, "the device of a unit");
}

void ask_for_options(const Library& library) {
  struct Row {
    const char* symbol;
    unsigned int options;
    bool answer;
  };
  const Row rows[] = {{"_ZN3Osv2lx10isLiveModeEj", 4, true},
                      {"_ZN3Osv2lx11isPlainModeEj", 1, false},
                      {"_ZN3Osv2lx13isPreviewModeEj", 0x10, true},
                      {"_ZN3Osv2lx23isPreviewAutoDetectModeEj", 0x30, true},
                      {"_ZN3Osv2lx10isRollModeEj", 8, true},
                      {"_ZN3Osv2lx15isSignatureModeEj", 0x40, true}};
  for (const Row& row : rows) {
    expect(library.symbol<CaptureOption>(row.symbol)(row.options) == row.answer, row.symbol);
  }
  expect(
      library.symbol<CaptureModeOf>("_ZN3Osv2lx17CapOption2CapModeEj")(0x30) == PreviewAutoDetect,
      "the mode of options");
  expect(std::string(library.symbol<VersionText>("_ZN3Osv2lx10infver2strEt")(257)) == "1.0",
         "a version of the interface");
}

}  // namespace

int main() {
  const Library library;
  Grabber& grabber = *library.symbol<GetFrameGrabber>("GetFrameGrabber")();
  expect(*library.symbol<void**>("m_pFG") == &grabber, "m_pFG");
  expect(*library.symbol<void**>("m_pDummy") == nullptr, "m_pDummy");
  ask_for_lists(grabber);
  choose_device(grabber);
  ask_for_descriptions(grabber);
  use_settings(grabber);
  use_properties(grabber);
  call_what_is_missing(grabber);
  take_image(grabber, library);
  capture(grabber);
  ask_for_frame_information(grabber, library);
  use_features(library);
  catch_what_is_thrown(library);
  describe_feature(library);
  convert_unit(library);
  ask_for_options(library);
  library.symbol<DestroyFrameGrabber>("DestroyFrameGrabber")();
  expect(*library.symbol<void**>("m_pFG") == nullptr, "m_pFG after the end");
  return g_nFailures;
}
