#ifndef OSTREVANHVK3_FRAMEGRABBER_H
#define OSTREVANHVK3_FRAMEGRABBER_H

/// @file
/// The abstract frame grabber that a client drives.
///
/// **Words used here.** *Client thread*: any thread of the client. *Worker thread*: the thread that
/// captures for a channel; the callbacks run on it (see callbacks.h). *Lent*: valid until the
/// callback returns, never freed or changed by the client. *Client-owned*: the client's until it
/// gives it back as told.
///
/// **Threads.** Every operation may be called from any client thread, also while capture runs, and
/// from inside a callback unless it says otherwise. Two threads may be inside at once; the last
/// error is then simply that of the last failure. An operation that says nothing of blocking never
/// blocks.
///
/// **Results.** 0 is success. A failure is its number OR 0x10000000 (see errors.h); `GetLastError`
/// then yields the text. A success does not clear the last error. Unless an operation says
/// otherwise, it may also return 0x10000017, a failure that has a text and no number of its own: a
/// closed library that can't be loaded, say, or memory that ran out.
///
/// **Opening.** There is no operation that opens the scanner: each operation that needs it opens it
/// and takes the first scanner of the list when none was chosen. Opening reads the whole memory of
/// the scanner and may take a second or more. An operation that "opens the scanner" may return
/// 0x10000002 (none attached), the scanner's own number, 0x10000025 (its calibration data is
/// corrupt) or a negative number (the calibration engine refused it). If the scanner library fails
/// without naming a reason, a failed operation returns 0: set what an operation is to fill to null
/// or 0 before the call, and test it afterwards.
///
/// **Buffer sizes.** An operation that copies a text or a list out takes a pointer and a size by
/// reference: the capacity on entry, the needed size on return. With too small a size it returns
/// 0x10000011, with a null pointer and a sufficient size 0x1000003C. Ask with null and 0, then
/// again.
///
/// **Channels** are numbered from 1, and this scanner has one. Another number gives 0x10000004.

#include "ostrevanhvk3/callbacks.h"
#include "ostrevanhvk3/device_info.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/image_resolution.h"

namespace Osv {
namespace lx {

/// A frame grabber. The order of the operations is a binary contract with the plug-in.
class ClFramegrabber {
 public:
  /// Not for the client: give the object back with `DestroyFrameGrabber`.
  virtual ~ClFramegrabber() {}

  /// Describes the scanner: its name, serial number and version, each ended by a zero byte.
  ///
  /// Opens the scanner. The description is read once and kept for the life of the object, so it
  /// still names the first scanner after another was chosen: choose first. Blocks for the opening,
  /// or for a frame that is being fetched.
  /// @param text buffer of `size` bytes, or null to ask for the size
  /// @param size in: capacity in bytes; out: needed bytes, the final extra zero included
  /// @return 0; 0x10000011, 0x1000003C or 0x10000002, each with the text "More data are available";
  ///   the scanner's number when its serial
  ///   number can't be read, in which case the next call succeeds with the name alone
  virtual unsigned long GetInfo(char* text, unsigned long& size) = 0;

  /// The version of this interface, "2.0.1425.2". Never touches the scanner, never blocks.
  /// @param text buffer of `size` bytes
  /// @param size in: capacity in bytes; out: needed bytes, the terminating zero included
  /// @return 0; 0x30000011 when `size` is too small; 0x3000003C when it suffices and `text` is
  ///   null. Neither replaces the stored last error.
  virtual unsigned long GetVersion(char* text, unsigned long& size) = 0;

  /// Releases a block that `GetImage` delivered.
  /// @param image a client-owned block, or null, which does nothing. Never an image of a callback.
  /// @return 0
  virtual unsigned long FreeImage(unsigned char* image) = 0;

  /// The text of the last failure.
  /// @param text buffer of `size` bytes, or null to ask for the size
  /// @param size in: capacity in bytes; out: needed bytes, the terminating zero included
  /// @return 0, 0x10000011 or 0x1000003C. Neither replaces the stored last error.
  virtual unsigned long GetLastError(char* text, unsigned long& size) = 0;

  /// Selects a camera of the channel.
  ///
  /// Opens the scanner, and goes on when none is attached. An unknown camera is reported and
  /// selected all the same. A failure of the opening that has a text of its own, such as a missing
  /// library or corrupt calibration data, ends the operation, and nothing is selected.
  /// @param channel 1
  /// @param camera one of `AvailableCameras`
  /// @param mode `eColorModeGray`
  /// @return 0; 0x10000003 for an unknown camera; 0x10000009 for another colour mode; 0x10000004
  virtual unsigned long SetCamera(unsigned int channel, eCameraIDs camera, eColorModeIDs mode) = 0;

  /// Takes one corrected image, independently of capture.
  ///
  /// Opens the scanner and fetches two frames. Blocks for both, up to about 2 seconds each while
  /// the scanner is busy, and for a frame that the worker is fetching.
  /// @param channel 1
  /// @param image receives a client-owned block (see image_block.h), released with `FreeImage`.
  ///   Untouched on failure: set it to null first and test it.
  /// @return 0; 0x1000003C when `image` is null; 0x10000004; 0x10000002 with the text "GetImage
  ///   function failed."; the scanner's number
  virtual unsigned long GetImage(unsigned int channel, unsigned char** image) = 0;

  /// Starts capture on a worker thread of the channel.
  ///
  /// Opens the scanner, starts the worker and returns without waiting for it; it waits for a
  /// `StopCapture` that is under way. Everything that fails from then on goes to the error
  /// callback. If no thread can be created the result is 0 and no callback comes; `StopCapture` and
  /// another `StartCapture` work then.
  /// @param handle comes back as the first argument of every callback
  /// @param channel 1
  /// @param mode one of `AvailableDetections`
  /// @param liveImage, finger, error, warning the callbacks; each may be null
  /// @param user comes back as the last argument of every callback; the client keeps what it points
  ///   at alive until `StopCapture` has returned
  /// @return 0; 0x1000000A for a mode that is not offered; 0x1000004D with an empty text while the
  ///   channel captures, or has ended with an error and was not stopped, and inside any callback;
  ///   0x10000002 with the text
  ///   "Failed start capturing."; 0x10000004
  virtual unsigned long StartCapture(int handle, unsigned int channel, eCaptureModeIDs mode,
                                     ClLiveImageCallback liveImage, ClDetectedFingerCallback finger,
                                     ClErrorCallback error, ClWarningCallback warning,
                                     void* user) = 0;

  /// Ends capture. When it returns, the worker has ended and no callback of this capture comes.
  ///
  /// Blocks until then: at most for the frame being fetched (about 2 seconds on a busy scanner),
  /// for 100 ms while frozen, and for the callbacks that are running. Does nothing on a channel
  /// that does not capture. Not from inside a callback, and not while a callback waits for the
  /// calling thread.
  /// @param channel 1
  /// @return 0; 0x10000041 from inside a callback, capture then goes on (in the stop callback after
  ///   an error it has ended already); 0 inside a callback that still runs after the client's stop;
  ///   0x10000004
  virtual unsigned long StopCapture(unsigned int channel) = 0;

  /// Selects a filter of the channel. An unknown filter is reported and set all the same.
  /// @param channel 1
  /// @param filter one of `AvailableFilters`
  /// @return 0; 0x1000000B for an unknown filter; 0x10000004
  virtual unsigned long SetFilter(unsigned int channel, eFilterIDs filter) = 0;

  /// Does nothing on this scanner.
  /// @return 0
  virtual unsigned long RefreshBackGround(unsigned int channel) = 0;

  /// Not supported: the resolution is always 500 dots per inch.
  /// @return 0x1000000E
  virtual unsigned long SetResolution(unsigned int channel,
                                      const ClImageResolution& resolution) = 0;

  /// Sets a property. Opens the scanner; fake finger detection and LEDs wait for a frame that is
  /// being fetched, the low contrast image for one that is being corrected.
  ///
  /// Properties end with the frame grabber. Fake finger detection loads the detector and counts
  /// from the next frame on, also during capture.
  /// @param property one of `AvailableProperties`
  /// @param value see `ePropertyIDs`
  /// @return 0; 0x1000000C for an unknown property; 0x10000012 for one that is read only;
  ///   0x10000002; the scanner's or engine's number; 0x10000017 with the loader's or the detector's
  ///   text, or 0x1000003B, when fake finger detection can't be turned on
  virtual unsigned long SetFGProperty(ePropertyIDs property, unsigned int value) = 0;

  /// Reads a property. Opens the scanner; may wait for a frame that is being fetched.
  /// @param property one of `AvailableProperties`
  /// @param value receives the value; a switch that is on reads as 100, whatever switched it on
  /// @return 0; 0x1000000C for an unknown property; 0x10000002; 0x10000017 with the detector's text
  virtual unsigned long GetFGProperty(ePropertyIDs property, unsigned int& value) = 0;

  /// Freezes the channel, or lets it go on. Never blocks.
  ///
  /// While frozen no frame is fetched and no image callback comes; the frame being fetched at the
  /// moment of the call is still delivered. Going on shows within 100 ms. The setting outlives
  /// `StopCapture`: a capture that starts frozen delivers nothing until it is cleared.
  /// @return 0; 0x10000004
  virtual unsigned long Freeze(unsigned int channel, bool enable) = 0;

  /// @name Lists
  /// Each copies a list out by the rule of buffer sizes; the size counts elements. They never touch
  /// the scanner and never block. @return 0, 0x10000011 or 0x1000003C, without a stored text.
  /// @{
  virtual unsigned long AvailableCameras(eCameraIDs* list, unsigned long& count) = 0;
  virtual unsigned long AvailableColorModes(eColorModeIDs* list, unsigned long& count) = 0;
  virtual unsigned long AvailableDetections(eCaptureModeIDs* list, unsigned long& count) = 0;
  virtual unsigned long AvailableFilters(eFilterIDs* list, unsigned long& count) = 0;
  virtual unsigned long AvailableProperties(ePropertyIDs* list, unsigned long& count) = 0;
  /// @}

  /// Sets the event callback; it stays until it is replaced. Never blocks.
  /// @param unused ignored
  /// @param handle comes back as the first argument of the callback
  /// @param callback null switches events off
  /// @param user comes back as the last argument of the callback
  /// @return 0
  virtual unsigned long EnableEvents(int unused, unsigned int handle, ClEventCallback callback,
                                     void* user) = 0;

  /// Not supported. @return 14, bare
  virtual unsigned long WriteEEPROM(const unsigned char* data, unsigned long& size) = 0;
  /// Not supported. @return 14, bare
  virtual unsigned long ReadEEPROM(unsigned char* data, unsigned long& size) = 0;
  /// Not supported. @return 14, bare
  virtual unsigned long SetAspectRatio(unsigned int channel, double x, double y) = 0;

  /// Lists the attached scanners of this family, whether open or not.
  ///
  /// Opens and closes each device in turn; waits for a frame that is being fetched. A device that
  /// can't be opened or carries no calibration data is left out.
  /// @param list `count` records; null with a count of 0 asks for the number
  /// @param count in: capacity in records; out: the number of scanners
  /// @return 0; 0x10000011; 0x1000003C, each with the text "Initialization failed."
  virtual unsigned long AvailableDevices(DeviceInfo* list, unsigned long& count) = 0;

  /// Chooses a scanner by its interface number, and opens it.
  ///
  /// Choosing the one that is already chosen does nothing. A new choice stops capture, so not from
  /// inside a callback and not while a callback waits for the calling thread; it then blocks as
  /// `StopCapture` does.
  /// @param index an interface number of `AvailableDevices`
  /// @return 0; 0x10000041 on the worker thread; 0x10000002 when it went meanwhile; 0x1000001B when
  ///   no scanner of this family is there, after which the scanner is
  ///   closed and the choice unchanged; the scanner's or engine's number
  virtual unsigned long SetActiveDevice(unsigned long index) = 0;

  /// The interface number given to the scanner library last; 0 before any choice. Waits for a call
  /// into the scanner that is under way.
  /// @return 0
  virtual unsigned long GetActiveDevice(unsigned long& index) = 0;

  /// The plug-in has no dialogs. @return 22, bare
  virtual unsigned long ShowDialog(eDlgIDs dialog, unsigned long parent) = 0;
  /// The plug-in has no dialogs. @return 22, bare
  virtual unsigned long SaveSetting(unsigned int channel, unsigned long setting) = 0;
  /// The plug-in has no dialogs. @return 22, bare
  virtual unsigned long AvailableDialogs(unsigned long channel, eDlgIDs* list,
                                         unsigned long& count) = 0;

  /// `SetFGProperty` with the low 32 bits of `value`.
  /// @param channel 0 or 1; a larger one gives 0x10000004
  virtual unsigned long SetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                        unsigned long value) = 0;

  /// `GetFGProperty`; only the low 32 bits of `value` change.
  /// @param channel 0 or 1; a larger one gives 0x10000004
  virtual unsigned long GetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                        unsigned long& value) = 0;

  /// The same list as `AvailableProperties`.
  virtual unsigned long AvailablePropertiesEx(ePropertyIDs* list, unsigned long& count) = 0;

  /// Sets the start and stop callbacks, also during capture. Waits while one of them runs on the
  /// worker thread; from inside one of them it does not wait. They get the handle and the user
  /// pointer of `StartCapture`.
  /// @return 0; 0x10000004
  virtual unsigned long SetCallbacks(unsigned int channel, ClStartCallback start,
                                     ClStopCallback stop) = 0;

  /// Measures the dirt on the platen. Opens the scanner and fetches one frame; blocks for it, up to
  /// about 2 seconds, and for a frame that the worker is fetching.
  /// @param channel 1
  /// @param level receives the level
  /// @return 0; 0x10000004; 0x1000003C with an empty text; 0x10000002; the scanner's or engine's
  ///   number
  virtual unsigned long ContaminationDetection(unsigned long channel, double* level) = 0;

  /// What the last frame told, for use inside a callback. Call `FGCurrentFrameInfo` instead: this
  /// one lets exceptions through. Never blocks.
  /// @param reserved ignored
  /// @param type 0: `info` receives one double, the liveness score; 1: the same and behind it a
  ///   signed 32-bit state
  /// @param info 8 bytes for type 0, 12 for type 1
  /// @return 0
  virtual unsigned long CurrentFrameInfo(unsigned long reserved, unsigned int type, void* info) = 0;
};

}  // namespace lx
}  // namespace Osv

#endif
