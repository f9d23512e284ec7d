#pragma once

#include "ostrevanhvk3/framegrabber.h"

namespace Osv::test {

/// A frame grabber whose operations do nothing, and succeed unless told otherwise.
struct StubFramegrabber : lx::ClFramegrabber {
  using Result = unsigned long;
  using Size = unsigned long&;

  Result GetInfo(char*, Size) override { return Called(__func__); }
  Result GetVersion(char*, Size) override { return Called(__func__); }
  Result FreeImage(unsigned char*) override { return Called(__func__); }
  Result GetLastError(char*, Size) override { return Called(__func__); }
  Result SetCamera(unsigned int, eCameraIDs, eColorModeIDs) override { return Called(__func__); }
  Result GetImage(unsigned int, unsigned char**) override { return Called(__func__); }
  Result StartCapture(int, unsigned int, eCaptureModeIDs, ClLiveImageCallback,
                      ClDetectedFingerCallback, ClErrorCallback, ClWarningCallback,
                      void*) override {
    return Called(__func__);
  }
  Result StopCapture(unsigned int) override { return Called(__func__); }
  Result SetFilter(unsigned int, eFilterIDs) override { return Called(__func__); }
  Result RefreshBackGround(unsigned int) override { return Called(__func__); }
  Result SetResolution(unsigned int, const lx::ClImageResolution&) override {
    return Called(__func__);
  }
  Result SetFGProperty(ePropertyIDs, unsigned int) override { return Called(__func__); }
  Result GetFGProperty(ePropertyIDs, unsigned int&) override { return Called(__func__); }
  Result Freeze(unsigned int, bool) override { return Called(__func__); }
  Result AvailableCameras(eCameraIDs*, Size) override { return Called(__func__); }
  Result AvailableColorModes(eColorModeIDs*, Size) override { return Called(__func__); }
  Result AvailableDetections(eCaptureModeIDs*, Size) override { return Called(__func__); }
  Result AvailableFilters(eFilterIDs*, Size) override { return Called(__func__); }
  Result AvailableProperties(ePropertyIDs*, Size) override { return Called(__func__); }
  Result EnableEvents(int, unsigned int, ClEventCallback, void*) override {
    return Called(__func__);
  }
  Result WriteEEPROM(const unsigned char*, Size) override { return Called(__func__); }
  Result ReadEEPROM(unsigned char*, Size) override { return Called(__func__); }
  Result SetAspectRatio(unsigned int, double, double) override { return Called(__func__); }
  Result AvailableDevices(DeviceInfo*, Size) override { return Called(__func__); }
  Result SetActiveDevice(unsigned long) override { return Called(__func__); }
  Result GetActiveDevice(unsigned long&) override { return Called(__func__); }
  Result ShowDialog(eDlgIDs, unsigned long) override { return Called(__func__); }
  Result SaveSetting(unsigned int, unsigned long) override { return Called(__func__); }
  Result AvailableDialogs(unsigned long, eDlgIDs*, Size) override { return Called(__func__); }
  Result SetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long) override {
    return Called(__func__);
  }
  Result GetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long&) override {
    return Called(__func__);
  }
  Result AvailablePropertiesEx(ePropertyIDs*, Size) override { return Called(__func__); }
  Result SetCallbacks(unsigned int, ClStartCallback, ClStopCallback) override {
    return Called(__func__);
  }
  Result ContaminationDetection(unsigned long, double*) override { return Called(__func__); }
  Result CurrentFrameInfo(unsigned long, unsigned int, void*) override { return Called(__func__); }

  /// Answers each call of an operation.
  virtual Result Called(const char* /*operation*/) { return 0; }
};

}  // namespace Osv::test
