#ifndef PUBLISHED_H
#define PUBLISHED_H

/// @file
/// The declarations as the first clients were built with. They never change, whatever becomes of
/// those in include/: what was built with them has to go on working.

#include <cstdint>

// The one class that is known by its name, since it is caught by its type.
namespace Osv {
namespace lx {

class __attribute__((visibility("default"))) CLX3ModuleException {
 public:
  explicit CLX3ModuleException(unsigned int value) : m_nValue(value) {}
  unsigned int value() const { return m_nValue; }

 private:
  unsigned int m_nValue;
};

}  // namespace lx
}  // namespace Osv

namespace published {

enum Camera : unsigned int { Camera5 = 5, Camera8 = 8 };
enum ColorMode : unsigned int { Gray = 0 };
enum CaptureMode : unsigned int { Live = 0, Plain = 1, Rolled = 2, PreviewAutoDetect = 5 };
enum Filter : unsigned int { NoFilter = 0 };
enum Property : unsigned int {
  ChannelCount = 3,
  Liveliness = 6,
  RedLED = 7,
  GreenLED = 8,
  FakeDetection = 12,
  LowContrastImage = 13
};
enum Dialog : unsigned int {};
enum Kind : unsigned int { HVK3 = 19 };

typedef void (*ImageCallback)(int, unsigned int, unsigned char*, void*);
typedef void (*FingerCallback)(int, unsigned int, int, unsigned char*, void*);
typedef void (*TextCallback)(int, unsigned int, const char*, void*);
typedef void (*StateCallback)(int, unsigned int, void*);
typedef void (*EventCallback)(int, unsigned int, Kind, unsigned int, void*);

struct Device {
  char serial_number[100];
  char reserved[100];
  unsigned int interface;
};

class Resolution {
 public:
  Resolution() : m_x(0), m_y(0) {}
  virtual ~Resolution() {}
  unsigned int get_x() const { return m_x; }
  unsigned int get_y() const { return m_y; }

 private:
  unsigned int m_x;
  unsigned int m_y;
};

class Grabber {
 public:
  virtual ~Grabber() {}
  virtual unsigned long GetInfo(char*, unsigned long&) = 0;
  virtual unsigned long GetVersion(char*, unsigned long&) = 0;
  virtual unsigned long FreeImage(unsigned char*) = 0;
  virtual unsigned long GetLastError(char*, unsigned long&) = 0;
  virtual unsigned long SetCamera(unsigned int, Camera, ColorMode) = 0;
  virtual unsigned long GetImage(unsigned int, unsigned char**) = 0;
  virtual unsigned long StartCapture(int, unsigned int, CaptureMode, ImageCallback, FingerCallback,
                                     TextCallback, TextCallback, void*) = 0;
  virtual unsigned long StopCapture(unsigned int) = 0;
  virtual unsigned long SetFilter(unsigned int, Filter) = 0;
  virtual unsigned long RefreshBackGround(unsigned int) = 0;
  virtual unsigned long SetResolution(unsigned int, const Resolution&) = 0;
  virtual unsigned long SetFGProperty(Property, unsigned int) = 0;
  virtual unsigned long GetFGProperty(Property, unsigned int&) = 0;
  virtual unsigned long Freeze(unsigned int, bool) = 0;
  virtual unsigned long AvailableCameras(Camera*, unsigned long&) = 0;
  virtual unsigned long AvailableColorModes(ColorMode*, unsigned long&) = 0;
  virtual unsigned long AvailableDetections(CaptureMode*, unsigned long&) = 0;
  virtual unsigned long AvailableFilters(Filter*, unsigned long&) = 0;
  virtual unsigned long AvailableProperties(Property*, unsigned long&) = 0;
  virtual unsigned long EnableEvents(int, unsigned int, EventCallback, void*) = 0;
  virtual unsigned long WriteEEPROM(const unsigned char*, unsigned long&) = 0;
  virtual unsigned long ReadEEPROM(unsigned char*, unsigned long&) = 0;
  virtual unsigned long SetAspectRatio(unsigned int, double, double) = 0;
  virtual unsigned long AvailableDevices(Device*, unsigned long&) = 0;
  virtual unsigned long SetActiveDevice(unsigned long) = 0;
  virtual unsigned long GetActiveDevice(unsigned long&) = 0;
  virtual unsigned long ShowDialog(Dialog, unsigned long) = 0;
  virtual unsigned long SaveSetting(unsigned int, unsigned long) = 0;
  virtual unsigned long AvailableDialogs(unsigned long, Dialog*, unsigned long&) = 0;
  virtual unsigned long SetFGPropertyEx(unsigned int, Property, unsigned long) = 0;
  virtual unsigned long GetFGPropertyEx(unsigned int, Property, unsigned long&) = 0;
  virtual unsigned long AvailablePropertiesEx(Property*, unsigned long&) = 0;
  virtual unsigned long SetCallbacks(unsigned int, StateCallback, StateCallback) = 0;
  virtual unsigned long ContaminationDetection(unsigned long, double*) = 0;
  virtual unsigned long CurrentFrameInfo(unsigned long, unsigned int, void*) = 0;
};

struct Feature {
  std::uint32_t id;
  std::uint32_t reserved;
  std::uint64_t count;
  std::uint64_t size;
  void* data;
};

struct FeatureSchema {
  std::uint32_t id;
  unsigned char name[255];
  unsigned char description[255];
  std::uint16_t reserved;
  std::uint32_t condition;
  std::uint32_t value_size;
  std::uint32_t value_count;
  void* values;
};

struct UnitSchema {
  std::uint32_t id;
  unsigned char reserved1[264];
  std::uint32_t channels;
  unsigned char reserved2[510];
  unsigned char name[255];
  unsigned char reserved3[255];
};

struct BiometricData {
  std::uint8_t tag1;
  unsigned char reserved1[3];
  std::uint32_t tag2;
  std::uint32_t tag3;
  std::uint32_t reserved2;
  std::uint64_t size;
  std::uint64_t count;
  void* data;
};

struct BiometricImage {
  std::int32_t width;
  std::int32_t height;
  std::uint32_t bytes_per_row;
  std::uint8_t bits_per_pixel;
  unsigned char reserved[3];
  std::int32_t x_pels_per_meter;
  std::int32_t y_pels_per_meter;
  std::uint64_t pixel_size;
  std::uint64_t count;
  unsigned char* pixels;
};

struct ImageHeader {
  std::uint32_t size;
  std::int32_t width;
  std::int32_t height;
  std::uint16_t planes;
  std::uint16_t bit_count;
  std::uint32_t compression;
  std::uint32_t size_image;
  std::int32_t x_pels_per_meter;
  std::int32_t y_pels_per_meter;
  std::uint32_t used;
  std::uint32_t important;
};

typedef Grabber* (*GetFrameGrabber)();
typedef void (*DestroyFrameGrabber)();
typedef unsigned long (*FGCurrentFrameInfo)(unsigned long, unsigned long, unsigned int, void*);
typedef unsigned long (*LXSP_GetFeature)(unsigned int, Feature*);
typedef unsigned long (*LXSP_SetFeature)(unsigned int, const Feature*);
typedef unsigned long (*LXSP_Free)(void*);
typedef void (*GetFeatureSchema)(unsigned int, FeatureSchema&, bool);
typedef void (*CopyFeatures1)(const FeatureSchema*, unsigned int, FeatureSchema**);
typedef void (*UnitToDevice)(const UnitSchema&, Device&);
typedef void (*DeviceToUnit)(const Device&, UnitSchema&, unsigned int);
typedef void (*ImageToBiodata)(const unsigned char*, BiometricData*);
typedef const char* (*VersionText)(unsigned short);
typedef bool (*CaptureOption)(unsigned int);
typedef CaptureMode (*CaptureModeOf)(unsigned int);

}  // namespace published

#endif
