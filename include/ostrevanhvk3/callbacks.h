#ifndef OSTREVANHVK3_CALLBACKS_H
#define OSTREVANHVK3_CALLBACKS_H

/// @file
/// The client's callbacks.
///
/// They run on the worker thread of the channel, never on a thread of the client; only the event
/// callback of a frame that `GetImage` takes runs on the thread inside `GetImage`. `handle` is the
/// number that the client gave to `StartCapture` (to `EnableEvents` for the event callback),
/// `channel` the channel number, `user` the pointer given beside the callback. A null callback is
/// skipped.
///
/// Images and texts are lent: they are valid until the callback returns, belong to the plug-in and
/// must not be freed or changed. Copy what is to be kept. An image begins with a
/// `tagBITMAPINFOHEADER` (see image_block.h).
///
/// A callback must not throw, must not wait for a thread that is inside `StopCapture`,
/// `StartCapture`, `SetActiveDevice` or `DestroyFrameGrabber`, and on the worker thread must not
/// call `StopCapture` (number 65, or nothing once the client has stopped) or `DestroyFrameGrabber`
/// (ignored). The event callback runs with the driver's lock held: it must not wait for a thread
/// that is inside `GetInfo`, `GetImage`, `AvailableDevices` or `ContaminationDetection` either, nor
/// for one that turns fake finger detection on or off, switches an LED or reads whether the
/// detection is on (`SetFGProperty` and `SetFGPropertyEx` of 6, 7 and 8, `GetFGProperty` and
/// `GetFGPropertyEx` of 6), nor call `SetCallbacks`. A start or stop callback must not wait for a
/// thread inside `SetCallbacks`. While an image callback runs, no further frame is fetched: a slow
/// callback slows capture.
///
/// In the event of a `GetImage`, on the client's thread, capture can be started and stopped and
/// another scanner chosen. A stop lets other threads take their frames while it waits. A frame
/// grabber that is destroyed there must not be used any more, and goes when the `GetImage` returns.

#include "ostrevanhvk3/enumerations.h"

/// A frame for the live view.
typedef void (*ClLiveImageCallback)(int handle, unsigned int channel, unsigned char* image,
                                    void* user);

/// A finished finger image; `type` is the capture mode's number (1 for plain).
typedef void (*ClDetectedFingerCallback)(int handle, unsigned int channel, int type,
                                         unsigned char* image, void* user);

/// The failure that ended capture, as "<text> error: <number>". At most once per capture; the stop
/// callback follows, and the client must still call `StopCapture`.
typedef void (*ClErrorCallback)(int handle, unsigned int channel, const char* text, void* user);

/// A warning; capture goes on.
typedef void (*ClWarningCallback)(int handle, unsigned int channel, const char* text, void* user);

/// Capture has started: called once, before any other callback of this capture; not at all, nor any
/// other, for a capture that was stopped before its worker had begun.
typedef void (*ClStartCallback)(int handle, unsigned int channel, void* user);

/// Capture has ended: called once, after every other callback of this capture.
typedef void (*ClStopCallback)(int handle, unsigned int channel, void* user);

/// An event of the scanner. `grabber` is always `eFG_HVK3`, `type` one of `eFG_HVK3_Events`.
typedef void (*ClEventCallback)(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                                void* user);

#endif
