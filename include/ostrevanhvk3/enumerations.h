#ifndef OSTREVANHVK3_ENUMERATIONS_H
#define OSTREVANHVK3_ENUMERATIONS_H

/// @file
/// The numbered enumerations of the interface.
///
/// Only the numbers are part of the contract. Each enumeration is 32 bits wide, and a client may
/// pass a number that has no name here: the operation then answers with the error that it
/// documents.

/// Cameras, as `SetCamera` takes them and `AvailableCameras` lists them. They have numbers only;
/// this family of scanners offers 8.
enum eCameraIDs : unsigned int {
  eCamera1 = 1,
  eCamera2 = 2,
  eCamera3 = 3,
  eCamera4 = 4,
  eCamera5 = 5,
  eCamera6 = 6,
  eCamera7 = 7,
  eCamera8 = 8,
  eCamera9 = 9
};

/// Colour modes. Gray is the only one; any other is refused with number 9.
enum eColorModeIDs : unsigned int { eColorModeGray = 0 };

/// Capture modes, called detections in the lists. This family of scanners offers live and plain.
enum eCaptureModeIDs : unsigned int {
  eCaptureLive = 0,              ///< every frame to the live image callback, no detection
  eCapturePlain = 1,             ///< one flat finger, each frame judged by itself
  eCaptureRolled = 2,            ///< not offered by this family of scanners
  eCaptureFastPlain = 3,         ///< not offered by this family of scanners
  eCapturePreview = 4,           ///< not offered by this family of scanners
  eCapturePreviewAutoDetect = 5  ///< not offered by this family of scanners
};

/// Filters. There is none to choose.
enum eFilterIDs : unsigned int { eFilterNone = 0 };

/// Properties of `SetFGProperty` and `GetFGProperty`.
enum ePropertyIDs : unsigned int {
  ePropChannelCount = 3,  ///< number of channels, read only: always 1

  /// Fake finger detection: 0 off, 2 security level 2, any other value level 1. Reads as 100 while
  /// it is on, and not as the level.
  ePropLiveliness = 6,

  ePropRedLED = 7,    ///< red LED: 0 off, any other value on
  ePropGreenLED = 8,  ///< green LED: 0 off, any other value on

  /// Fake detection threshold: a finger counts as live when its score is greater. The detector's
  /// error curves give it unless the client sets it; once known it stays, also for another security
  /// level. 0 counts as 1. Reads as 0 while fake finger detection is off.
  ePropFakeDetection = 12,

  ePropLowContrastImage = 13  ///< low contrast image: 0 off, any other value on
};

/// Dialogs. The plug-in has none; the dialog operations answer 22.
enum eDlgIDs : unsigned int {};

/// Kinds of frame grabber, as the event callback reports them.
enum eFGs : unsigned int { eFG_HVK3 = 19 };

/// Events of this kind of frame grabber, the fourth argument of the event callback.
enum eFG_HVK3_Events : unsigned int {
  eFG_HVK3_FakeFinger = 0  ///< the last frame was judged to show a fake finger
};

#endif
