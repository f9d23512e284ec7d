#ifndef OSTREVANHVK3_ERRORS_H
#define OSTREVANHVK3_ERRORS_H

/// @file
/// The error numbers of the plug-in, with their texts.
///
/// An operation's result is 0 for success. A failure that the frame grabber reports is its number
/// OR `error_number::ReportedBit`; read the text with `GetLastError`. Negative numbers, which come
/// from the calibration engine (-1 also from the plug-in, for an engine without a usable image),
/// are widened to 64 bits with their sign. A few operations return bare numbers; they say so.
///
/// Numbers without a text here carry the text of the operation that failed. Those of 0x20000000 and
/// above come from the scanner itself, but for the two of `GetVersion`.

namespace Osv {
namespace lx {

namespace error_number {

/// Set in each result that the frame grabber reports.
constexpr unsigned long ReportedBit = 0x10000000UL;

constexpr int NotConnected = 2;          ///< no scanner, or it was unplugged
constexpr int UnknownCamera = 3;         ///< `SetCamera`
constexpr int IncorrectChannel = 4;      ///< a channel number other than 1
constexpr int ColorMode = 9;             ///< `SetCamera` with a colour mode other than gray
constexpr int UnknownDetection = 10;     ///< `StartCapture` with a mode that is not offered
constexpr int UnknownFilter = 11;        ///< `SetFilter`
constexpr int IncorrectProperty = 12;    ///< unknown property or feature
constexpr int NotSupported = 14;         ///< an operation that this scanner does not have
constexpr int BufferTooSmall = 17;       ///< the needed size was written back
constexpr int PropertyReadOnly = 18;     ///< `SetFGProperty`
constexpr int FilterNotApplicable = 21;  ///< a filter together with a colour mode
constexpr int HardwareVersion = 22;      ///< hardware or library is too old; bare: no dialogs
constexpr int NoNumber = 23;             ///< a failure that has a text and no number of its own
constexpr int DeviceIndex = 27;          ///< `SetActiveDevice` with no scanner of this family
constexpr int CalibrationCorrupt = 37;   ///< the scanner's calibration data can't be used
constexpr int ApiVersion = 40;           ///< the scanner's library is too old
constexpr int NotEnoughStorage = 51;     ///< out of memory
constexpr int OutOfRange = 52;           ///< a feature's value or size does not fit
constexpr int ElementSize = 53;          ///< a feature's element size does not fit
constexpr int FrameInfoType = 57;        ///< unknown type of frame information
constexpr int DetectionDisabled = 58;    ///< fake finger detection is not there
constexpr int DetectionNotLoaded = 59;   ///< fake finger detection can't be loaded
constexpr int NullPointer = 60;          ///< a null output pointer, feature or feature's data
constexpr int InvalidState = 65;         ///< `StopCapture`, `SetActiveDevice` inside a callback
constexpr int UnknownVersion = 74;       ///< `infver2str`
constexpr int AlreadyCapturing = 77;     ///< `StartCapture` before `StopCapture`
constexpr int WriteOnly = 82;            ///< a feature that can't be read
constexpr int AuthorizationCode = 83;    ///< the scanner refused the authorization code

/// Numbers of the scanner that `GetLastError` words itself.
/// @{
constexpr unsigned long ScannerCanceled = 0x20000003UL;
constexpr unsigned long ScannerHardware = 0x20000004UL;
constexpr unsigned long ScannerFirmware = 0x20000005UL;
constexpr unsigned long ScannerAuthorization = 0x20000006UL;
/// @}

/// Results of `GetVersion`, before the reported bit joins them.
/// @{
constexpr unsigned long VersionTooSmall = 0x20000011UL;
constexpr unsigned long VersionNullPointer = 0x2000003CUL;
/// @}

}  // namespace error_number

namespace error_text {

/// The text of the number of this name, or of the operation that failed.
/// @{
constexpr char NotConnected[] = "The scanner is not connected to the host";
constexpr char UnknownCamera[] = "The camera ID is unknown or is not supported by frame grabber";
constexpr char IncorrectChannel[] = "Incorrect channel number for frame grabber";
constexpr char ColorMode[] = "The frame grabber does not support this color mode";
constexpr char UnknownDetection[] =
    "The detection ID bad or frame grabber does not support this detection";
constexpr char UnknownFilter[] = "The filter ID bad or framegrabber does not support";
constexpr char IncorrectProperty[] = "Incorrect property or frame grabber does not support";
constexpr char NotSupported[] = "This property or function is not supported by frame grabber";
constexpr char MoreData[] = "More data are available";
constexpr char PropertyReadOnly[] = "The property is read only";
constexpr char FilterNotApplicable[] = "The filter can not be applied";
constexpr char HardwareVersion[] = "The scanner hardware version is not supported";
constexpr char DeviceIndex[] = "The device index out of range or is not supported by frame grabber";
constexpr char CalibrationIsCorrupt[] = "The calibration data is corrupt.";
constexpr char CalibrationAreCorrupt[] = "The calibration data are corrupt.";
constexpr char ApiVersion[] = "The KR9 API version isn't more supported";
constexpr char NotEnoughStorage[] = "Not enough storage is available to complete this operation";
constexpr char DetectionDisabled[] = "The live detection is disabled";
constexpr char DetectionNotLoaded[] = "Failed to load live detection module";
constexpr char BufferTooSmall[] = "The buffer is to small";
constexpr char NullFeature[] = "Feature must not be NULL";
constexpr char NullData[] = "Data must not be NULL";
constexpr char InvalidState[] = "The scanner has invalid state.";
constexpr char ScannerCanceled[] = "The user canceled the action";
constexpr char ScannerHardware[] = "The hardware is incompatible";
constexpr char ScannerFirmware[] = "The firmware is incompatible";
constexpr char ScannerAuthorization[] = "Invalid authorization code";
constexpr char InitializationFailed[] = "Initialization failed.";
constexpr char GetImageFailed[] = "GetImage function failed.";
constexpr char StartFailed[] = "Failed start capturing.";
/// @}

}  // namespace error_text

/// The failure's own number, from a result as an operation returned it. A negative number has no
/// bit to take off.
inline long ErrorNumber(unsigned long result) {
  const long number = static_cast<long>(result);
  return number < 0 ? number : static_cast<long>(result & ~error_number::ReportedBit);
}

}  // namespace lx
}  // namespace Osv

#endif
