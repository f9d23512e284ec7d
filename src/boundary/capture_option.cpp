#include "ostrevanhvk3/feature_schema.h"

namespace Osv::lx {
namespace {

constexpr unsigned int kLive = 0x7;
constexpr unsigned int kRoll = 0x8;
constexpr unsigned int kPreview = 0x10;
constexpr unsigned int kAutoDetect = 0x20;
constexpr unsigned int kSignature = 0x40;

}  // namespace

bool isLiveMode(unsigned int options) { return options == 0 || (options & kLive) != 0; }

bool isPlainMode(unsigned int /*options*/) { return false; }

bool isPreviewMode(unsigned int options) { return (options & kPreview) != 0; }

bool isPreviewAutoDetectMode(unsigned int options) {
  return isPreviewMode(options) && (options & kAutoDetect) != 0;
}

bool isRollMode(unsigned int options) { return (options & kRoll) != 0; }

bool isSignatureMode(unsigned int options) { return (options & kSignature) != 0; }

eCaptureModeIDs CapOption2CapMode(unsigned int options) {
  if (isLiveMode(options)) {
    return eCaptureLive;
  }
  if (isRollMode(options)) {
    return eCaptureRolled;
  }
  if (isPreviewAutoDetectMode(options)) {
    return eCapturePreviewAutoDetect;
  }
  if (isPreviewMode(options)) {
    return eCapturePreview;
  }
  return isPlainMode(options) ? eCapturePlain : eCaptureLive;
}

}  // namespace Osv::lx
