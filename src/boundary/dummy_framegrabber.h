#pragma once

#include <array>

#include "boundary/boundary_result.h"
#include "ostrevanhvk3/framegrabber.h"

/// @file
/// What a client gets when the frame grabber can't be built.

namespace Osv::lx {

/// Answers every operation with the failure of a construction, and leaves its arguments alone.
class ClDummyFramegrabber : public ClFramegrabber {
 public:
  /// @param text cut at 511 characters; null for none
  ClDummyFramegrabber(int error, const char* text);

  /// The failure's text, with a buffer protocol of its own: the size that it reports counts no
  /// terminator, and a buffer of less than the length plus 2 is refused.
  unsigned long GetLastError(char* text, unsigned long& size) override;

  unsigned long GetInfo(char*, unsigned long&) override { return Result(); }
  unsigned long GetVersion(char*, unsigned long&) override { return Result(); }
  unsigned long FreeImage(unsigned char*) override { return Result(); }
  unsigned long SetCamera(unsigned int, eCameraIDs, eColorModeIDs) override { return Result(); }
  unsigned long GetImage(unsigned int, unsigned char**) override { return Result(); }
  unsigned long StartCapture(int, unsigned int, eCaptureModeIDs, ClLiveImageCallback,
                             ClDetectedFingerCallback, ClErrorCallback, ClWarningCallback,
                             void*) override {
    return Result();
  }
  unsigned long StopCapture(unsigned int) override { return Result(); }
  unsigned long SetFilter(unsigned int, eFilterIDs) override { return Result(); }
  unsigned long RefreshBackGround(unsigned int) override { return Result(); }
  unsigned long SetResolution(unsigned int, const ClImageResolution&) override { return Result(); }
  unsigned long SetFGProperty(ePropertyIDs, unsigned int) override { return Result(); }
  unsigned long GetFGProperty(ePropertyIDs, unsigned int&) override { return Result(); }
  unsigned long Freeze(unsigned int, bool) override { return Result(); }
  unsigned long AvailableCameras(eCameraIDs*, unsigned long&) override { return Result(); }
  unsigned long AvailableColorModes(eColorModeIDs*, unsigned long&) override { return Result(); }
  unsigned long AvailableDetections(eCaptureModeIDs*, unsigned long&) override { return Result(); }
  unsigned long AvailableFilters(eFilterIDs*, unsigned long&) override { return Result(); }
  unsigned long AvailableProperties(ePropertyIDs*, unsigned long&) override { return Result(); }
  unsigned long EnableEvents(int, unsigned int, ClEventCallback, void*) override {
    return Result();
  }
  unsigned long WriteEEPROM(const unsigned char*, unsigned long&) override { return Result(); }
  unsigned long ReadEEPROM(unsigned char*, unsigned long&) override { return Result(); }
  unsigned long SetAspectRatio(unsigned int, double, double) override { return Result(); }
  unsigned long AvailableDevices(DeviceInfo*, unsigned long&) override { return Result(); }
  unsigned long SetActiveDevice(unsigned long) override { return Result(); }
  unsigned long GetActiveDevice(unsigned long&) override { return Result(); }
  unsigned long ShowDialog(eDlgIDs, unsigned long) override { return Result(); }
  unsigned long SaveSetting(unsigned int, unsigned long) override { return Result(); }
  unsigned long AvailableDialogs(unsigned long, eDlgIDs*, unsigned long&) override {
    return Result();
  }
  unsigned long SetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long) override {
    return Result();
  }
  unsigned long GetFGPropertyEx(unsigned int, ePropertyIDs, unsigned long&) override {
    return Result();
  }
  unsigned long AvailablePropertiesEx(ePropertyIDs*, unsigned long&) override { return Result(); }
  unsigned long SetCallbacks(unsigned int, ClStartCallback, ClStopCallback) override {
    return Result();
  }
  unsigned long ContaminationDetection(unsigned long, double*) override { return Result(); }
  unsigned long CurrentFrameInfo(unsigned long, unsigned int, void*) override { return Result(); }

 private:
  unsigned long Result() const { return BoundaryResult(Widened(m_nError)); }

  int m_nError;
  std::array<char, 512> m_szError;
};

}  // namespace Osv::lx
