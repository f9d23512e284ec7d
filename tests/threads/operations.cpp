#include "threads/operations.h"

#include <array>

#include "client/client_fixture.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/image_block.h"
#include "support/module_failure.h"

namespace Osv::threads {
namespace {

using client::kChannel;
using client::kHandle;

constexpr unsigned long kReported = lx::error_number::ReportedBit;
constexpr unsigned long kRefusedInside = kReported | 65;
constexpr unsigned int kOtherChannel = 2;
constexpr unsigned long kRoom = 16;  // for a list

void on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*kind*/, unsigned int /*type*/,
              void* /*user*/) {}

unsigned long get_info(const Caller& c) {
  std::array<char, 256> text{};
  unsigned long size = text.size();
  return c.grabber.GetInfo(text.data(), size);
}

unsigned long get_info_size(const Caller& c) {
  unsigned long size = 0;
  return c.grabber.GetInfo(nullptr, size);
}

unsigned long get_version(const Caller& c) {
  std::array<char, 32> text{};
  unsigned long size = text.size();
  return c.grabber.GetVersion(text.data(), size);
}

unsigned long get_last_error(const Caller& c) {
  std::array<char, 2048> text{};
  unsigned long size = text.size();
  return c.grabber.GetLastError(text.data(), size);
}

unsigned long free_no_image(const Caller& c) { return c.grabber.FreeImage(nullptr); }

template <unsigned int Camera, unsigned int Mode>
unsigned long set_camera(const Caller& c) {
  return c.grabber.SetCamera(kChannel, eCameraIDs{Camera}, eColorModeIDs{Mode});
}

unsigned long get_image(const Caller& c) {
  unsigned char* image = nullptr;
  const unsigned long result = c.grabber.GetImage(kChannel, &image);
  c.grabber.FreeImage(image);
  return result;
}

unsigned long get_image_into_nothing(const Caller& c) {
  return c.grabber.GetImage(kChannel, nullptr);
}

template <unsigned int Filter>
unsigned long set_filter(const Caller& c) {
  return c.grabber.SetFilter(kChannel, eFilterIDs{Filter});
}

unsigned long refresh_background(const Caller& c) { return c.grabber.RefreshBackGround(kChannel); }

unsigned long set_resolution(const Caller& c) {
  return c.grabber.SetResolution(kChannel, lx::ClImageResolution());
}

template <unsigned int Property, unsigned int Value>
unsigned long set_property(const Caller& c) {
  return c.grabber.SetFGProperty(ePropertyIDs{Property}, Value);
}

template <unsigned int Property>
unsigned long get_property(const Caller& c) {
  unsigned int value = 0;
  return c.grabber.GetFGProperty(ePropertyIDs{Property}, value);
}

template <unsigned int Channel>
unsigned long set_property_ex(const Caller& c) {
  return c.grabber.SetFGPropertyEx(Channel, ePropFakeDetection, 30);
}

template <unsigned int Channel>
unsigned long get_property_ex(const Caller& c) {
  unsigned long value = 0;
  return c.grabber.GetFGPropertyEx(Channel, ePropRedLED, value);
}

template <bool Enable>
unsigned long freeze(const Caller& c) {
  return c.grabber.Freeze(kChannel, Enable);
}

template <typename Id, unsigned long (lx::ClFramegrabber::*List)(Id*, unsigned long&)>
unsigned long list(const Caller& c) {
  std::array<Id, kRoom> ids{};
  unsigned long count = ids.size();
  return (c.grabber.*List)(ids.data(), count);
}

unsigned long enable_events(const Caller& c) {
  return c.grabber.EnableEvents(kHandle, 1, &on_event, nullptr);
}

unsigned long write_eeprom(const Caller& c) {
  unsigned long size = 0;
  return c.grabber.WriteEEPROM(nullptr, size);
}

unsigned long read_eeprom(const Caller& c) {
  unsigned long size = 0;
  return c.grabber.ReadEEPROM(nullptr, size);
}

unsigned long set_aspect_ratio(const Caller& c) { return c.grabber.SetAspectRatio(kChannel, 1, 1); }

unsigned long get_active_device(const Caller& c) {
  unsigned long index = 0;
  return c.grabber.GetActiveDevice(index);
}

unsigned long show_dialog(const Caller& c) { return c.grabber.ShowDialog(eDlgIDs{}, 0); }

unsigned long save_setting(const Caller& c) { return c.grabber.SaveSetting(kChannel, 0); }

unsigned long available_dialogs(const Caller& c) {
  unsigned long count = 0;
  return c.grabber.AvailableDialogs(kChannel, nullptr, count);
}

unsigned long set_callbacks(const Caller& c) {
  return c.grabber.SetCallbacks(kChannel, c.start, c.stop);
}

template <unsigned int Channel>
unsigned long measure(const Caller& c) {
  double level = 0;
  return c.grabber.ContaminationDetection(Channel, &level);
}

unsigned long current_frame_info(const Caller& c) {
  double score = 0;
  return c.grabber.CurrentFrameInfo(0, 0, &score);
}

template <unsigned int Type>
unsigned long frame_info(const Caller& c) {
  std::array<unsigned char, 12> info{};
  return c.plugin.frame_info()(0, 0, Type, info.data());
}

unsigned long get_image_data_format(const Caller& c) {
  osvlx3_feature feature{eFeatureImageDataFormat, 0, 0, 0, nullptr};
  const unsigned long result = c.plugin.get_feature()(kChannel, &feature);
  c.plugin.free()(feature.data);
  return result;
}

template <unsigned char Format>
unsigned long set_image_data_format(const Caller& c) {
  unsigned char format = Format;
  const osvlx3_feature feature{eFeatureImageDataFormat, 0, 1, 1, &format};
  unsigned long result = 0;
  const unsigned long thrown =
      testing_support::module_number([&] { result = c.plugin.set_feature()(kChannel, &feature); });
  return thrown != 0 ? thrown : result;
}

template <unsigned int Id, unsigned int Count>
unsigned long get_bytes(const Caller& c) {
  std::array<unsigned char, Count> bytes{};
  osvlx3_feature feature{Id, 0, Count, 1, bytes.data()};
  return c.plugin.get_feature()(kChannel, &feature);
}

template <unsigned int Id, unsigned int Count>
unsigned long set_bytes(const Caller& c) {
  std::array<unsigned char, Count> bytes{};
  const osvlx3_feature feature{Id, 0, Count, 1, bytes.data()};
  return c.plugin.set_feature()(kChannel, &feature);
}

unsigned long free_nothing(const Caller& c) { return c.plugin.free()(nullptr); }

unsigned long get_frame_grabber(const Caller& c) {
  return &c.plugin.grabber() == &c.grabber ? 0 : 1;
}

unsigned long destroy_frame_grabber(const Caller& c) {
  c.plugin.destroy();
  return c.plugin.pointer("m_pFG") == &c.grabber ? 0 : 1;
}

unsigned long get_schema(const Caller& c) {
  osvlx3_feature_schema schema{};
  c.plugin.function<lx::GetFeatureSchemaFunction>(lx::symbol::GetFeatureSchema)(12, schema, true);
  c.plugin.free()(schema.values);
  return schema.condition;
}

unsigned long copy_schema(const Caller& c) {
  const osvlx3_feature_schema schema{};
  osvlx3_feature_schema* copy = nullptr;
  c.plugin.function<lx::CopyFeatures1Function>(lx::symbol::CopyFeatures1)(&schema, 1, &copy);
  c.plugin.free()(copy);
  return copy == nullptr ? 1 : 0;
}

unsigned long make_unit(const Caller& c) {
  const DeviceInfo device{};
  osvlx3_unit_schema unit{};
  c.plugin.function<lx::DeviceToUnitFunction>(lx::symbol::DeviceToUnit)(device, unit, 3);
  return unit.channels;
}

unsigned long make_device(const Caller& c) {
  osvlx3_unit_schema unit{};
  unit.id = 5;
  DeviceInfo device{};
  c.plugin.function<lx::UnitToDeviceFunction>(lx::symbol::UnitToDevice)(unit, device);
  return device.nInterface;
}

/// An envelope around an image without pixels.
unsigned long make_envelope(const Caller& c) {
  const tagBITMAPINFOHEADER header = {sizeof(tagBITMAPINFOHEADER), 0, 0, 1, 8, 0, 0, 0, 0, 0, 0};
  osvlx3_biometric_data data{};
  c.plugin.function<lx::ImageToBiodataFunction>(lx::symbol::ImageToBiodata)(
      reinterpret_cast<const unsigned char*>(&header), &data);
  c.plugin.free()(data.data);
  return data.size;
}

template <unsigned short Version>
unsigned long version_text(const Caller& c) {
  return testing_support::module_number(
      [&] { c.plugin.function<lx::VersionTextFunction>(lx::symbol::VersionText)(Version); });
}

/// Each of the questions about a set of options, a bit for each yes.
unsigned long capture_options(const Caller& c) {
  unsigned long answers = 0;
  for (const char* const symbol :
       {lx::symbol::IsLiveMode, lx::symbol::IsPlainMode, lx::symbol::IsPreviewMode,
        lx::symbol::IsPreviewAutoDetectMode, lx::symbol::IsRollMode, lx::symbol::IsSignatureMode}) {
    const bool answer = c.plugin.function<lx::CaptureOptionFunction>(symbol)(0x7F);
    answers = 2 * answers + (answer ? 1 : 0);
  }
  return answers;
}

unsigned long capture_mode(const Caller& c) {
  return c.plugin.function<lx::CaptureModeFunction>(lx::symbol::CaptureMode)(0x10);
}

unsigned long start_capture(const Caller& c) {
  return c.grabber.StartCapture(kHandle, kChannel, eCaptureLive, nullptr, nullptr, nullptr, nullptr,
                                c.user);
}

unsigned long stop_capture(const Caller& c) { return c.grabber.StopCapture(kChannel); }

template <unsigned long Index>
unsigned long set_active_device(const Caller& c) {
  return c.grabber.SetActiveDevice(Index);
}

constexpr auto kEverybody = eOwner::Everybody;
constexpr auto kOne = eOwner::OneThread;
constexpr auto kNothing = eWaitsFor::Nothing;
constexpr auto kFrame = eWaitsFor::Frame;

}  // namespace

const std::vector<Operation>& operations() {
  using Grabber = lx::ClFramegrabber;
  static const std::vector<Operation> all = {
      {"GetInfo", kEverybody, kFrame, get_info, 0},
      {"GetInfo, size", kEverybody, kFrame, get_info_size, kReported | 17},
      {"GetVersion", kEverybody, kNothing, get_version, 0},
      {"GetLastError", kEverybody, kNothing, get_last_error, 0},
      {"FreeImage, null", kEverybody, kNothing, free_no_image, 0},
      {"SetCamera 5", kEverybody, kNothing, set_camera<5, 0>, kReported | 3},
      {"SetCamera 8", kEverybody, kNothing, set_camera<8, 0>, 0},
      {"SetCamera in colour", kEverybody, kNothing, set_camera<8, 1>, kReported | 9},
      {"GetImage", kEverybody, kFrame, get_image, 0},
      {"GetImage, null", kEverybody, kNothing, get_image_into_nothing, kReported | 60},
      {"SetFilter 3", kEverybody, kNothing, set_filter<3>, kReported | 11},
      {"SetFilter 0", kEverybody, kNothing, set_filter<0>, 0},
      {"RefreshBackGround", kEverybody, kNothing, refresh_background, 0},
      {"SetResolution", kEverybody, kNothing, set_resolution, kReported | 14},
      {"SetFGProperty 3", kEverybody, kNothing, set_property<3, 1>, kReported | 18},
      {"SetFGProperty 5", kEverybody, kNothing, set_property<5, 1>, kReported | 12},
      {"SetFGProperty 6 on", kEverybody, kFrame, set_property<6, 2>, 0},
      {"GetFGProperty 6", kEverybody, kFrame, get_property<6>, 0},
      {"GetFGProperty 12", kEverybody, kNothing, get_property<12>, 0},
      {"SetFGProperty 12", kEverybody, kNothing, set_property<12, 30>, 0},
      {"GetImage with detection", kEverybody, kFrame, get_image, 0},
      {"SetFGProperty 6 off", kEverybody, kFrame, set_property<6, 0>, 0},
      {"SetFGProperty 7 on", kEverybody, kFrame, set_property<7, 1>, 0},
      {"SetFGProperty 8 on", kEverybody, kFrame, set_property<8, 1>, 0},
      {"GetFGProperty 7", kEverybody, kNothing, get_property<7>, 0},
      {"GetFGProperty 8", kEverybody, kNothing, get_property<8>, 0},
      {"SetFGProperty 7 off", kEverybody, kFrame, set_property<7, 0>, 0},
      {"SetFGProperty 8 off", kEverybody, kFrame, set_property<8, 0>, 0},
      {"SetFGProperty 13 on", kEverybody, kNothing, set_property<13, 1>, 0},
      {"GetFGProperty 13", kEverybody, kNothing, get_property<13>, 0},
      {"SetFGProperty 13 off", kEverybody, kNothing, set_property<13, 0>, 0},
      {"GetFGProperty 3", kEverybody, kNothing, get_property<3>, 0},
      {"GetFGProperty 5", kEverybody, kNothing, get_property<5>, kReported | 12},
      {"SetFGPropertyEx", kEverybody, kNothing, set_property_ex<kChannel>, 0},
      {"SetFGPropertyEx of 2", kEverybody, kNothing, set_property_ex<kOtherChannel>, kReported | 4},
      {"GetFGPropertyEx", kEverybody, kNothing, get_property_ex<kChannel>, 0},
      {"GetFGPropertyEx of 2", kEverybody, kNothing, get_property_ex<kOtherChannel>, kReported | 4},
      {"Freeze", kEverybody, kNothing, freeze<true>, 0},
      {"Freeze no more", kEverybody, kNothing, freeze<false>, 0},
      {"AvailableCameras", kEverybody, kNothing, list<eCameraIDs, &Grabber::AvailableCameras>, 0},
      {"AvailableColorModes", kEverybody, kNothing,
       list<eColorModeIDs, &Grabber::AvailableColorModes>, 0},
      {"AvailableDetections", kEverybody, kNothing,
       list<eCaptureModeIDs, &Grabber::AvailableDetections>, 0},
      {"AvailableFilters", kEverybody, kNothing, list<eFilterIDs, &Grabber::AvailableFilters>, 0},
      {"AvailableProperties", kEverybody, kNothing,
       list<ePropertyIDs, &Grabber::AvailableProperties>, 0},
      {"AvailablePropertiesEx", kEverybody, kNothing,
       list<ePropertyIDs, &Grabber::AvailablePropertiesEx>, 0},
      {"EnableEvents", kEverybody, kNothing, enable_events, 0},
      {"WriteEEPROM", kEverybody, kNothing, write_eeprom, 14},
      {"ReadEEPROM", kEverybody, kNothing, read_eeprom, 14},
      {"SetAspectRatio", kEverybody, kNothing, set_aspect_ratio, 14},
      {"AvailableDevices", kEverybody, kFrame, list<DeviceInfo, &Grabber::AvailableDevices>, 0},
      {"GetActiveDevice", kEverybody, kFrame, get_active_device, 0},
      {"ShowDialog", kEverybody, kNothing, show_dialog, 22},
      {"SaveSetting", kEverybody, kNothing, save_setting, 22},
      {"AvailableDialogs", kEverybody, kNothing, available_dialogs, 22},
      {"SetCallbacks", kEverybody, kNothing, set_callbacks, 0},
      {"ContaminationDetection", kEverybody, kFrame, measure<kChannel>, 0},
      {"ContaminationDetection of 2", kEverybody, kFrame, measure<kOtherChannel>, kReported | 4},
      {"CurrentFrameInfo", kEverybody, kNothing, current_frame_info, 0},
      {"FGCurrentFrameInfo", kEverybody, kNothing, frame_info<1>, 0},
      {"FGCurrentFrameInfo 2", kEverybody, kNothing, frame_info<2>, kReported | 57},
      {"LXSP_GetFeature 55", kEverybody, kNothing, get_image_data_format, 0},
      {"LXSP_SetFeature 55", kEverybody, kNothing, set_image_data_format<1>, 0},
      {"LXSP_SetFeature 55, unknown", kEverybody, kNothing, set_image_data_format<3>, 52},
      {"LXSP_GetFeature 53", kEverybody, kNothing, get_bytes<53, 7>, 82},
      {"LXSP_SetFeature 53", kEverybody, kNothing, set_bytes<53, 7>, 0},
      {"LXSP_GetFeature 54", kEverybody, kNothing, get_bytes<54, 14>, 0},
      {"LXSP_SetFeature 54", kEverybody, kNothing, set_bytes<54, 14>, 0},
      {"LXSP_GetFeature 99", kEverybody, kNothing, get_bytes<99, 1>, 12},
      {"LXSP_SetFeature 99", kEverybody, kNothing, set_bytes<99, 1>, 12},
      {"LXSP_Free", kEverybody, kNothing, free_nothing, 0},
      {"GetFeatureSchema", kEverybody, kNothing, get_schema, 1},
      {"CopyFeatures1", kEverybody, kNothing, copy_schema, 0},
      {"dev_info2unit_schema", kEverybody, kNothing, make_unit, 3},
      {"unit_schema2dev_info", kEverybody, kNothing, make_device, 5},
      {"image2biodata", kEverybody, kNothing, make_envelope, 48},
      {"infver2str", kEverybody, kNothing, version_text<513>, 0},
      {"infver2str, unknown", kEverybody, kNothing, version_text<512>, 74},
      {"is...Mode", kEverybody, kNothing, capture_options, 0b101111},
      {"CapOption2CapMode", kEverybody, kNothing, capture_mode, eCapturePreview},
      {"GetFrameGrabber", kEverybody, kNothing, get_frame_grabber, 0},
      {"DestroyFrameGrabber", kOne, kFrame, destroy_frame_grabber, 0},
      {"StartCapture", kOne, kNothing, start_capture, kReported | 77},
      {"StopCapture", kOne, kFrame, stop_capture, kRefusedInside},
      {"SetActiveDevice 5", kOne, kFrame, set_active_device<5>, kRefusedInside},
      {"SetActiveDevice 0", kOne, kNothing, set_active_device<0>, 0},
      {"SetActiveDevice, too large", kOne, kNothing, set_active_device<0x80000000>, kReported | 27},
  };
  return all;
}

}  // namespace Osv::threads
