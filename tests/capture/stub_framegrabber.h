#pragma once

#include "ostrevanhvk3/framegrabber.h"

namespace Osv::test {

/// A frame grabber whose operations all succeed and do nothing.
struct StubFramegrabber : lx::ClFramegrabber {
  using Result = unsigned long;
  using Size = unsigned long&;

  Result GetInfo(char*, Size) override { return 0; }
  Result GetVersion(char*, Size) override { return 0; }
  Result FreeImage(unsigned char*) override { return 0; }
  Result GetLastError(char*, Size) override { return 0; }
  Result SetCamera(unsigned int, eCameraIDs, eColorModeIDs) override { return 0; }
  Result GetImage(unsigned int, unsigned char**) override { return 0; }
  Result StartCapture(int, unsigned int, eCaptureModeIDs, ClLiveImageCallback,
                      ClDetectedFingerCallback, ClErrorCallback, ClWarningCallback,
                      void*) override {
    return 0;
  }
  Result StopCapture(unsigned int) override { return 0; }
  Result SetFilter(unsigned int, eFilterIDs) override { return 0; }
  Result RefreshBackGround(unsigned int) override { return 0; }
  Result SetResolution(unsigned int, const lx::ClImageResolution&) override { return 0; }
  Result SetFGProperty(ePropertyIDs, unsigned int) override { return 0; }
  Result GetFGProperty(ePropertyIDs, unsigned int&) override { return 0; }
  Result Freeze(unsigned int, bool) override { return 0; }
  Result AvailableCameras(eCameraIDs*, Size) override { return 0; }
  Result AvailableColorModes(eColorModeIDs*, Size) override { return 0; }
  Result AvailableDetections(eCaptureModeIDs*, Size) override { return 0; }
  Result AvailableFilters(eFilterIDs*, Size) override { return 0; }
  Result AvailableProperties(ePropertyIDs*, Size) override { return 0; }
  Result EnableEvents(int, unsigned int, ClEventCallback, void*) override { return 0; }
  Result WriteEEPROM(const unsigned char*, Size) override { return 0; }
  Result ReadEEPROM(unsigned char*, Size) override { return 0; }
  Result SetAspectRatio(unsigned int, double, double) override { return 0; }
  Result AvailableDevices(DeviceInfo*, Size) override { return 0; }
  Result SetActiveDevice(unsigned long) override { return 0; }
  Result GetActiveDevice(unsigned long&) override { return 0; }
  Result ShowDialog(eDlgIDs, unsigned long) override { return 0; }
  Result SaveSetting(unsigned int, unsigned long) override { return 0; }
  Result AvailableDialogs(unsigned long, eDlgIDs*, Size) override { return 0; }
  Result SetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long) override { return 0; }
  Result GetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long&) override { return 0; }
  Result AvailablePropertiesEx(ePropertyIDs*, Size) override { return 0; }
  Result SetCallbacks(unsigned int, ClStartCallback, ClStopCallback) override { return 0; }
  Result ContaminationDetection(unsigned long, double*) override { return 0; }
  Result CurrentFrameInfo(unsigned long, unsigned int, void*) override { return 0; }
};

}  // namespace Osv::test
