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
/// error is then simply that of the last failure.
///
/// **Blocking.** *Waits for the frame*: while a frame is being fetched and corrected, that is
/// commonly for one frame's time, for about 2 seconds while the scanner says that it is busy, twice
/// that for the first frame of a capture, and with fake finger detection also for the event
/// callback. *Opens the scanner*: as told below; it does not wait when the scanner is open already.
///
/// **Results.** 0 is success. A failure is its number OR 0x10000000 (see errors.h); `GetLastError`
/// then yields the text. A success does not clear the last error. Unless an operation says
/// otherwise, it may also return 0x10000017, a failure that has a text and no number of its own: a
/// closed library that can't be loaded, say, or memory that ran out.
///
/// **Opening.** There is no operation that opens the scanner: each operation that needs it opens it
/// and takes the first scanner of the list when none was chosen. Opening reads the calibration data
/// in the scanner's memory and may take a second or more. An operation that "opens the scanner" may
/// return 0x10000002 (none attached), the scanner's own number, 0x10000025 (its calibration data is
/// corrupt), a negative number (the calibration engine refused it) or, if none was chosen and the
/// first one went before it could be, 0x1000001B. If the scanner library fails
/// without naming a reason, a failed operation returns 0: set what an operation is to fill to null
/// or 0 before the call, and test it afterwards.
///
/// **Buffer sizes.** An operation that copies a text or a list out takes a pointer and a size by
/// reference: the capacity on entry, the needed size on return. With too small a size it returns
/// 0x10000011, with a null pointer and a sufficient size 0x1000003C; the buffer is not written
/// then. Ask with null and 0, then again. What is copied out is the client's.
///
/// **Channels** are numbered from 1, and this scanner has one. Another number gives 0x10000004.

#include "ostrevanhvk3/callbacks.h"
#include "ostrevanhvk3/device_info.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/image_resolution.h"

namespace Osv {
namespace lx {

/// A frame grabber. The order of the operations is a binary contract with the plug-in. What they
/// have in common - threads, blocking, results, opening, buffer sizes - stands in framegrabber.h.
class ClFramegrabber {
 public:
  /// Not for the client: give the object back with `DestroyFrameGrabber`.
  virtual ~ClFramegrabber() {}

  /// Describes the scanner: its name, serial number and version, each ended by a zero byte.
  ///
  /// Opens the scanner and waits for the frame. The description is read once and kept for the life
  /// of the object, so it still names the first scanner after another was chosen: choose first.
  /// @param text buffer of `size` bytes, or null to ask for the size
  /// @param size in: capacity in bytes; out: needed bytes, the final extra zero included; left
  ///   alone when the scanner can't be opened
  /// @return 0; 0x10000011, 0x1000003C, 0x10000002 or the scanner's number when the device can't be
  ///   opened, each with the text "More data are available"; the scanner's number when its serial
  ///   number can't be read, in which case the next call succeeds with the name alone
  virtual unsigned long GetInfo(char* text, unsigned long& size) = 0;

  /// The version of this interface, "2.0.1425.2". Never touches the scanner, never blocks.
  /// @param text buffer of `size` bytes, or null to ask for the size
  /// @param size in: capacity in bytes; out: needed bytes, the terminating zero included
  /// @return 0; 0x30000011 when `size` is too small; 0x3000003C when it suffices and `text` is
  ///   null, with `size` left alone. Neither replaces the stored last error.
  virtual unsigned long GetVersion(char* text, unsigned long& size) = 0;

  /// Releases a block that `GetImage` delivered. Never blocks.
  /// @param image a client-owned block, or null, which does nothing. Never an image of a callback.
  /// @return 0
  virtual unsigned long FreeImage(unsigned char* image) = 0;

  /// The text of the last failure, of whichever operation on whichever thread. Failures that end a
  /// capture come to the error callback; those with which the scanner refuses a frame are stored
  /// here too, those of the preparation before it are not. Never blocks.
  /// @param text buffer of `size` bytes, or null to ask for the size
  /// @param size in: capacity in bytes; out: needed bytes, the terminating zero included
  /// @return 0, 0x10000011 or 0x1000003C. Neither replaces the stored last error.
  virtual unsigned long GetLastError(char* text, unsigned long& size) = 0;

  /// Selects a camera of the channel.
  ///
  /// Opens the scanner, and goes on when none is attached or the device can't be opened. An unknown
  /// camera is reported and selected all the same. Frames do not depend on the selection. A failure
  /// of the opening that has a text of its own, such as a missing library or corrupt calibration
  /// data, ends the operation, and nothing is selected.
  /// @param channel 1
  /// @param camera one of `AvailableCameras`
  /// @param mode `eColorModeGray`
  /// @return 0; 0x10000003 for an unknown camera; 0x10000009 for another colour mode, in which case
  ///   nothing is selected; 0x10000004; the number of a failure of the opening that has a text of
  ///   its own
  virtual unsigned long SetCamera(unsigned int channel, eCameraIDs camera, eColorModeIDs mode) = 0;

  /// Takes one corrected image, independently of capture.
  ///
  /// Opens the scanner and fetches two frames, the first one only for its size. Blocks for both, up
  /// to about 2 seconds each while the scanner is busy, and before each of them waits for the frame
  /// of the worker. With fake finger detection on, the event callback comes on this very thread.
  /// @param channel 1
  /// @param image receives a client-owned block (see image_block.h), to be released with
  ///   `FreeImage` before `DestroyFrameGrabber`. Untouched on failure: set it to null first and
  ///   test it.
  /// @return 0; 0x1000003C when `image` is null; 0x10000004; 0x10000002, with the text "GetImage
  ///   function failed." when none could be opened; the scanner's or engine's number; 0x10000017
  ///   with the detector's text
  virtual unsigned long GetImage(unsigned int channel, unsigned char** image) = 0;

  /// Starts capture on a worker thread of the channel.
  ///
  /// Opens the scanner, starts the worker and returns without waiting for it; it does wait for a
  /// `StopCapture` that is under way. Everything that fails from then on goes to the error
  /// callback. If no thread can be created the result is 0 and no callback comes; `StopCapture` and
  /// another `StartCapture` work then.
  /// @param handle comes back as the first argument of every callback but that of events
  /// @param channel 1
  /// @param mode one of `AvailableDetections`
  /// @param liveImage, finger, error, warning the callbacks; each may be null. They stay in force
  ///   until `StopCapture` has returned.
  /// @param user comes back as the last argument of the same callbacks; the client keeps what it
  ///   points at alive until `StopCapture` has returned
  /// @return 0; 0x1000000A for a mode that is not offered; 0x1000004D with an empty text while the
  ///   channel captures, or has ended with an error and was not stopped, and inside any callback on
  ///   the worker thread; 0x10000002 or the scanner's number with the text "Failed start
  ///   capturing."; 0x10000004
  virtual unsigned long StartCapture(int handle, unsigned int channel, eCaptureModeIDs mode,
                                     ClLiveImageCallback liveImage, ClDetectedFingerCallback finger,
                                     ClErrorCallback error, ClWarningCallback warning,
                                     void* user) = 0;

  /// Ends capture. When it returns, the worker has ended and no callback of this capture comes.
  ///
  /// Waits for the frame, or for 100 ms while frozen, and for the callbacks that are running. Does
  /// nothing on a channel that does not capture. A capture that is stopped before its worker has
  /// begun has no callback at all. Not from inside a callback on the worker thread, where it is
  /// refused, and not while a callback waits for the calling thread. In the event callback of a
  /// `GetImage`, which runs on a client thread, it works.
  /// @param channel 1
  /// @return 0; 0x10000041 from inside a callback on the worker thread: capture then goes on, or
  ///   has ended already in the stop callback after an error; 0 inside a callback that still runs
  ///   after the client's stop; 0x10000004
  virtual unsigned long StopCapture(unsigned int channel) = 0;

  /// Selects a filter of the channel. An unknown filter is reported and set all the same. Frames do
  /// not depend on it. Never blocks.
  /// @param channel 1
  /// @param filter one of `AvailableFilters`
  /// @return 0; 0x1000000B for an unknown filter; 0x10000004
  virtual unsigned long SetFilter(unsigned int channel, eFilterIDs filter) = 0;

  /// Does nothing on this scanner. Never blocks.
  /// @param channel ignored
  /// @return 0
  virtual unsigned long RefreshBackGround(unsigned int channel) = 0;

  /// Not supported: the resolution is always 500 dots per inch. Never blocks.
  /// @param channel, resolution ignored
  /// @return 0x1000000E, always
  virtual unsigned long SetResolution(unsigned int channel,
                                      const ClImageResolution& resolution) = 0;

  /// Sets a property. Opens the scanner; fake finger detection and LEDs then wait for the frame,
  /// the low contrast image for a correction that is under way. The threshold never waits.
  ///
  /// Properties end with the frame grabber. Fake finger detection loads the detector and counts
  /// from the next frame on, also during capture.
  /// @param property one of `AvailableProperties`
  /// @param value see `ePropertyIDs`
  /// @return 0; 0x1000000C for an unknown property; 0x10000012 for one that is read only;
  ///   0x10000002; the scanner's or engine's number; 0x10000017 with the loader's or the detector's
  ///   text, or 0x1000003B, when fake finger detection can't be turned on
  virtual unsigned long SetFGProperty(ePropertyIDs property, unsigned int value) = 0;

  /// Reads a property. Opens the scanner. Fake finger detection then waits for the frame, the low
  /// contrast image for a correction that is under way. The threshold waits for the detector, whose
  /// curves it walks, while the detection is on and no threshold is known. Number of channels and
  /// LEDs never wait.
  /// @param property one of `AvailableProperties`
  /// @param value receives the value, and stays as it is on failure; a switch that is on reads as
  ///   100, whatever switched it on
  /// @return 0; 0x1000000C for an unknown property; 0x10000002; the scanner's number; the engine's,
  ///   also for the low contrast image; for the threshold 0x10000017 with the detector's text, or
  ///   0x1000003A when the detection is turned off meanwhile
  virtual unsigned long GetFGProperty(ePropertyIDs property, unsigned int& value) = 0;

  /// Freezes the channel, or lets it go on. Never blocks.
  ///
  /// While frozen no frame is fetched and no image callback comes; the frame being fetched at the
  /// moment of the call is still delivered. Going on shows within 100 ms. The setting outlives
  /// `StopCapture`: a capture that starts frozen delivers nothing until it is cleared.
  /// @param channel 1
  /// @param enable true to freeze, false to go on
  /// @return 0; 0x10000004
  virtual unsigned long Freeze(unsigned int channel, bool enable) = 0;

  /// @name Lists
  /// Each copies one list out, whole and always in the same order, by the rule of buffer sizes.
  /// They never touch the scanner and never block.
  /// @param list buffer of `count` elements, or null to ask for the number
  /// @param count in: capacity in elements; out: the number of elements
  /// @return 0, 0x10000011 or 0x1000003C. Neither replaces the stored last error.
  /// @{

  /// What `SetCamera` takes: `eCamera8`.
  virtual unsigned long AvailableCameras(eCameraIDs* list, unsigned long& count) = 0;
  /// What `SetCamera` takes beside it: `eColorModeGray`.
  virtual unsigned long AvailableColorModes(eColorModeIDs* list, unsigned long& count) = 0;
  /// What `StartCapture` takes: `eCaptureLive`, `eCapturePlain`.
  virtual unsigned long AvailableDetections(eCaptureModeIDs* list, unsigned long& count) = 0;
  /// What `SetFilter` takes: `eFilterNone`.
  virtual unsigned long AvailableFilters(eFilterIDs* list, unsigned long& count) = 0;
  /// What the property operations take: all of `ePropertyIDs`.
  virtual unsigned long AvailableProperties(ePropertyIDs* list, unsigned long& count) = 0;
  /// @}

  /// Sets the event callback; it stays until it is replaced, also from one capture to the next.
  /// Never blocks: an event that is on its way may still come to the callback before, until the
  /// `StopCapture` or `GetImage` that ends its frame has returned.
  /// @param unused ignored
  /// @param handle comes back, as a signed number, as the first argument of the callback
  /// @param callback null switches events off
  /// @param user comes back as the last argument of the callback; the client keeps what it points
  ///   at alive for as long as an event may come
  /// @return 0
  virtual unsigned long EnableEvents(int unused, unsigned int handle, ClEventCallback callback,
                                     void* user) = 0;

  /// Not supported. Never blocks.
  /// @param data, size ignored and left alone
  /// @return 14, bare and without a stored text
  virtual unsigned long WriteEEPROM(const unsigned char* data, unsigned long& size) = 0;
  /// Not supported. Never blocks.
  /// @param data, size ignored and left alone
  /// @return 14, bare and without a stored text
  virtual unsigned long ReadEEPROM(unsigned char* data, unsigned long& size) = 0;
  /// Not supported. Never blocks.
  /// @param channel, x, y ignored
  /// @return 14, bare and without a stored text
  virtual unsigned long SetAspectRatio(unsigned int channel, double x, double y) = 0;

  /// Lists the attached scanners of this family, whether open or not.
  ///
  /// Waits for the frame, then opens and closes each device in turn, as long as the scanner library
  /// takes for it. A device that can't be opened or carries no calibration data is left out.
  /// @param list `count` records; null with a count of 0 asks for the number
  /// @param count in: capacity in records; out: the number of scanners, unless `list` is null and
  ///   the capacity is not 0
  /// @return 0, also with a count of 0 when none is attached; 0x10000011 for too small a `count`;
  ///   0x1000003C when `list` is null and the capacity is not 0; both have the text "Initialization
  ///   failed."
  virtual unsigned long AvailableDevices(DeviceInfo* list, unsigned long& count) = 0;

  /// Chooses a scanner by its interface number, and opens it.
  ///
  /// Choosing the one that is already chosen does nothing, also while it is closed. A new choice
  /// stops capture, so not from inside a callback on the worker thread and not while a callback
  /// waits for the calling thread; it then blocks as `StopCapture` does, and for the opening. The
  /// choice is told to the scanner library, and the first scanner that this lists from then on is
  /// opened.
  /// @param index an interface number of `AvailableDevices`
  /// @return 0; 0x10000041 for a new choice inside a callback on the worker thread, unless the
  ///   callback still runs after the client's stop; 0x1000001B when no scanner of this family is at
  ///   `index`, after which capture has ended, the scanner is closed and the choice unchanged (a
  ///   number of 0x80000000 or more gives it on every thread, and leaves capture and scanner
  ///   alone); 0x10000002 when it went meanwhile; the scanner's or engine's number. After a failure
  ///   of the opening the choice stands, and the next operation that opens the scanner tries again.
  virtual unsigned long SetActiveDevice(unsigned long index) = 0;

  /// The interface number given to the scanner library last, by `SetActiveDevice` or by an opening
  /// that had to choose; 0 before that. Never opens the scanner. Waits for a call into the scanner
  /// that is under way, up to about 2 seconds while it is busy.
  /// @param index receives the number
  /// @return 0
  virtual unsigned long GetActiveDevice(unsigned long& index) = 0;

  /// The plug-in has no dialogs. Never blocks.
  /// @param dialog, parent ignored
  /// @return 22, bare and without a stored text
  virtual unsigned long ShowDialog(eDlgIDs dialog, unsigned long parent) = 0;
  /// The plug-in has no dialogs. Never blocks.
  /// @param channel, setting ignored
  /// @return 22, bare and without a stored text
  virtual unsigned long SaveSetting(unsigned int channel, unsigned long setting) = 0;
  /// The plug-in has no dialogs. Never blocks.
  /// @param channel, list, count ignored and left alone
  /// @return 22, bare and without a stored text
  virtual unsigned long AvailableDialogs(unsigned long channel, eDlgIDs* list,
                                         unsigned long& count) = 0;

  /// `SetFGProperty` with the low 32 bits of `value`; blocks and opens as it does.
  /// @param channel 0 or 1; a larger one gives 0x10000004
  /// @param property, value as with `SetFGProperty`
  /// @return 0x10000004, or what `SetFGProperty` returns
  virtual unsigned long SetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                        unsigned long value) = 0;

  /// `GetFGProperty`; only the low 32 bits of `value` change. Blocks and opens as it does.
  /// @param channel 0 or 1; a larger one gives 0x10000004
  /// @param property, value as with `GetFGProperty`
  /// @return 0x10000004, or what `GetFGProperty` returns
  virtual unsigned long GetFGPropertyEx(unsigned int channel, ePropertyIDs property,
                                        unsigned long& value) = 0;

  /// The same list as `AvailableProperties`, with the same arguments and results.
  virtual unsigned long AvailablePropertiesEx(ePropertyIDs* list, unsigned long& count) = 0;

  /// Sets the start and stop callbacks, also during capture; they stay until they are replaced,
  /// also from one capture to the next. Waits while one of them runs on the worker thread, so that
  /// the ones before come no more when it returns; from inside one of them it does not wait. They
  /// get the handle and the user pointer of `StartCapture`.
  /// @param channel 1
  /// @param start, stop each may be null, for none
  /// @return 0; 0x10000004
  virtual unsigned long SetCallbacks(unsigned int channel, ClStartCallback start,
                                     ClStopCallback stop) = 0;

  /// Measures the dirt on the platen, on which nothing may lie. Opens the scanner, waits for the
  /// frame and fetches one more, up to about 2 seconds while the scanner is busy.
  /// @param channel 1
  /// @param level receives the level, as the calibration engine measures it; left alone when the
  ///   arguments are refused or the scanner can't be opened, 0 after any later failure
  /// @return 0; 0x10000004; 0x1000003C with an empty text; 0x10000002; the scanner's or engine's
  ///   number
  virtual unsigned long ContaminationDetection(unsigned long channel, double* level) = 0;

  /// What the last frame told, for use inside a callback. Call `FGCurrentFrameInfo` instead: this
  /// one lets exceptions through, where that one returns 0x1000003C or 0x10000039. Never blocks.
  /// @param reserved ignored
  /// @param type 0: `info` receives one double, the liveness score of the last frame of fake finger
  ///   detection, 0 before any; 1: the same and behind it a signed 32-bit state of the detector
  /// @param info the client's buffer of 8 bytes for type 0, 12 for type 1
  /// @return 0
  virtual unsigned long CurrentFrameInfo(unsigned long reserved, unsigned int type, void* info) = 0;
};

}  // namespace lx
}  // namespace Osv

#endif
