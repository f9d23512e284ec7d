#pragma once

#include "boundary/boundary_result.h"
#include "boundary/framegrabber_impl.h"
#include "boundary/version.h"
#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/framegrabber.h"

/// @file
/// The facade that a client drives.

namespace Osv::lx {

/// The frame grabber of this plug-in. Checks arguments against the capability lists, passes calls
/// on to the driver that it inherits, and turns exceptions into error numbers and a stored text.
/// What each operation promises stands with `ClFramegrabber`. Takes no lock.
class ClOstrevanHVK3Framegrabber : public ClFramegrabber,
                                   public ClFramegrabberImpl,
                                   public ClOstrevanHVK3SDK {
 public:
  explicit ClOstrevanHVK3Framegrabber(void* context);

  /// Stops the channels while the object is whole: a worker calls operations that only the facade
  /// has.
  ~ClOstrevanHVK3Framegrabber() override { FreeSDK(); }

  /// Ends capture and deletes a frame grabber, which may be null. From inside the event of an image
  /// that it takes it goes with the end of that call.
  static void Destroy(ClOstrevanHVK3Framegrabber* grabber);

  unsigned long GetInfo(char* text, unsigned long& size) override;
  unsigned long GetVersion(char* text, unsigned long& size) override;
  unsigned long FreeImage(unsigned char* image) override;
  unsigned long GetLastError(char* text, unsigned long& size) override;
  unsigned long SetCamera(unsigned int channel, eCameraIDs camera, eColorModeIDs mode) override;
  unsigned long GetImage(unsigned int channel, unsigned char** image) override;
  unsigned long StartCapture(int handle, unsigned int channel, eCaptureModeIDs mode,
                             ClLiveImageCallback liveImage, ClDetectedFingerCallback finger,
                             ClErrorCallback error, ClWarningCallback warning, void* user) override;
  unsigned long StopCapture(unsigned int channel) override;
  unsigned long SetFilter(unsigned int channel, eFilterIDs filter) override;
  unsigned long RefreshBackGround(unsigned int channel) override;
  unsigned long SetResolution(unsigned int channel, const ClImageResolution& resolution) override;
  unsigned long SetFGProperty(ePropertyIDs property, unsigned int value) override;
  unsigned long GetFGProperty(ePropertyIDs property, unsigned int& value) override;
  unsigned long Freeze(unsigned int channel, bool enable) override;
  unsigned long AvailableCameras(eCameraIDs* list, unsigned long& count) override;
  unsigned long AvailableColorModes(eColorModeIDs* list, unsigned long& count) override;
  unsigned long AvailableDetections(eCaptureModeIDs* list, unsigned long& count) override;
  unsigned long AvailableFilters(eFilterIDs* list, unsigned long& count) override;
  unsigned long AvailableProperties(ePropertyIDs* list, unsigned long& count) override;
  unsigned long EnableEvents(int unused, unsigned int handle, ClEventCallback callback,
                             void* user) override;
  unsigned long WriteEEPROM(const unsigned char* data, unsigned long& size) override;
  unsigned long ReadEEPROM(unsigned char* data, unsigned long& size) override;
  unsigned long SetAspectRatio(unsigned int channel, double x, double y) override;
  unsigned long AvailableDevices(DeviceInfo* list, unsigned long& count) override;
  unsigned long SetActiveDevice(unsigned long index) override;
  unsigned long GetActiveDevice(unsigned long& index) override;
  unsigned long ShowDialog(eDlgIDs dialog, unsigned long parent) override;
  unsigned long SaveSetting(unsigned int channel, unsigned long setting) override;
  unsigned long AvailableDialogs(unsigned long channel, eDlgIDs* list,
                                 unsigned long& count) override;
  unsigned long SetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                unsigned long value) override;
  unsigned long GetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                unsigned long& value) override;
  unsigned long AvailablePropertiesEx(ePropertyIDs* list, unsigned long& count) override;
  unsigned long SetCallbacks(unsigned int channel, ClStartCallback start,
                             ClStopCallback stop) override;
  unsigned long ContaminationDetection(unsigned long channel, double* level) override;
  unsigned long CurrentFrameInfo(unsigned long reserved, unsigned int type, void* info) override;

  /// Starts the logging client; without the facility the plug-in goes on in silence. @return 0
  virtual unsigned long Initizalize();

  /// Stops the channels and the logging client. Nothing in the plug-in calls it.
  virtual unsigned long Uninitialize();

  /// This scanner needs nothing done when a channel freezes.
  void FreezeSDK(ClFrameGrabberChannel& channel, bool enable) override;

  /// Reads a feature. A number that the driver returns goes to the client bare; a channel other
  /// than 1 is a bare 2.
  unsigned long GetFeature(unsigned int channel, osvlx3_feature* feature);
  unsigned long SetFeature(unsigned int channel, const osvlx3_feature* feature);

  /// Runs `operation` and returns its result; a failure of the three families that the boundary
  /// knows is stored and becomes its boundary form. Anything else goes on to the client.
  template <typename Operation>
  unsigned long Translated(Operation operation) {
    try {
      return operation();
    } catch (const ClLXException& failure) {
      return Stored(Widened(failure.GetErrorNumber()), failure.GetDescription());
    } catch (const ClOstrevanException& failure) {
      return Stored(error_number::NoNumber, failure.What());
    } catch (const std::exception& failure) {
      return Stored(error_number::NoNumber, failure.what());
    }
  }

 private:
  /// Stores number and text for the client and gives the number its boundary form.
  unsigned long Stored(unsigned long number, const char* text);

  /// The rule of results of operations that need the scanner.
  unsigned long ScannerResult(unsigned long result);

  template <typename Operation>
  unsigned long OnChannel(unsigned int channel, Operation operation);

  ClVersion m_Version;
  TXRelaxed<bool> m_bGoesWithImage = false;
};

}  // namespace Osv::lx
