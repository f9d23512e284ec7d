#ifndef OSTREVANHVK3_EXPORTS_H
#define OSTREVANHVK3_EXPORTS_H

/// @file
/// What `libostrevanhvk3.so` exports.
///
/// A client loads the library at run time and looks the symbols up by the names below; it links
/// nothing. See `symbol` for names and `GetFrameGrabberFunction` and its like for pointer types.

#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/framegrabber.h"
#include "ostrevanhvk3/module_exception.h"
#include "ostrevanhvk3/visibility.h"

namespace Osv {
namespace lx {
class ClOstrevanHVK3Framegrabber;
class ClDummyFramegrabber;
}  // namespace lx
}  // namespace Osv

extern "C" {

/// The frame grabber of this process, built at the first call.
///
/// Touches no scanner and loads nothing but the optional logging facility. When it can't be built,
/// the result is an object of which every operation returns the failure's number OR 0x10000000 and
/// `GetLastError` the text; the next call tries again. Its `GetLastError` reports the size without
/// the terminating zero and wants a buffer of at least that size plus 2.
/// @return never null; owned by the plug-in until `DestroyFrameGrabber`
/// @throws std::bad_alloc when there is no memory for that object either
/// @note Any thread may call this while there is a frame grabber, and gets it without waiting. The
///   call that builds one and `DestroyFrameGrabber` come from one client thread, and no other is
///   inside meanwhile.
OSTREVANHVK3_EXPORT Osv::lx::ClFramegrabber* GetFrameGrabber();

/// Destroys the frame grabber and closes the scanner; does nothing without one.
///
/// Stop capture first: a destruction during capture can wait for ever on a worker that waits for
/// the driver, or whose callback waits for the calling thread. On the worker thread it does
/// nothing. Inside the event callback of a `GetImage`, which runs on the client's thread, it ends
/// capture and the client's use of the frame grabber at once; what this holds, the open scanner
/// among it, it gives back when that `GetImage` returns.
OSTREVANHVK3_EXPORT void DestroyFrameGrabber();

/// `ClFramegrabber::CurrentFrameInfo` with its failures turned into results. Never blocks.
/// @param handle ignored
/// @param reserved ignored
/// @param type 0: `info` receives one double, the liveness score of the last frame of fake finger
///   detection; 1: the same and behind it a signed 32-bit state of the detector
/// @param info 8 bytes for type 0, 12 for type 1
/// @return 0; 0x10000017 without a frame grabber; 0x1000003C when `info` is null; 0x10000039 for
///   another type
OSTREVANHVK3_EXPORT unsigned long FGCurrentFrameInfo(unsigned long handle, unsigned long reserved,
                                                     unsigned int type, void* info);

/// The real frame grabber, null before `GetFrameGrabber` and after `DestroyFrameGrabber`.
OSTREVANHVK3_EXPORT extern Osv::lx::ClOstrevanHVK3Framegrabber* m_pFG;

/// The object that reports a failed construction, or null.
OSTREVANHVK3_EXPORT extern Osv::lx::ClDummyFramegrabber* m_pDummy;

}  // extern "C"

/// Reads a feature; see feature.h for the features and their values.
///
/// On any client thread, also while capture runs, and from inside a callback. Opens the scanner.
/// Feature 55 and refusals of the record never wait once it is open. The others take no lock and
/// don't wait for the frame: they block for as long as the scanner library takes. One that the
/// scanner refuses then waits for a call into the scanner that is under way, up to about 2 seconds
/// while it is busy.
/// @param channel 1; another one gives 2, bare and without a text
/// @param feature `id` says which; `data`, `size` and `count` as the feature documents
/// @return 0; bare and without a text: a refusal of the feature (12 unknown, 17, 52, 82), 2 when no
///   scanner is attached, the scanner's number when the device can't be opened; other failures OR
///   0x10000000, among them 60 for a null pointer, 83 for a wrong authorization code and 0x10000017
///   when the scanner library lacks the function; 0x10000017 without a frame grabber
/// @throws Osv::lx::CLX3ModuleException 51, 53 or 60 for feature 55
OSTREVANHVK3_EXPORT unsigned long LXSP_GetFeature(unsigned int channel, osvlx3_feature* feature);

/// Writes a feature. Threads, blocking, arguments and results as with `LXSP_GetFeature`, but that
/// refusals for the record's contents are bare numbers: 17, 52, 53, and 60 for null `data`.
/// @throws Osv::lx::CLX3ModuleException 52, 53 or 60 for feature 55
OSTREVANHVK3_EXPORT unsigned long LXSP_SetFeature(unsigned int channel,
                                                  const osvlx3_feature* feature);

/// Releases memory that the feature functions allocated for the client; null does nothing. On any
/// client thread, never blocks, and needs no frame grabber.
/// @return 0
OSTREVANHVK3_EXPORT unsigned long LXSP_Free(void* memory);

namespace Osv {
namespace lx {

/// A pointer to the exported function of this name, as `dlsym` gives it.
/// @{
typedef ClFramegrabber* (*GetFrameGrabberFunction)();
typedef void (*DestroyFrameGrabberFunction)();
typedef unsigned long (*CurrentFrameInfoFunction)(unsigned long, unsigned long, unsigned int,
                                                  void*);
typedef unsigned long (*GetFeatureFunction)(unsigned int, osvlx3_feature*);
typedef unsigned long (*SetFeatureFunction)(unsigned int, const osvlx3_feature*);
typedef unsigned long (*FreeFunction)(void*);
/// @}

/// The names to look up. The feature functions carry their parameter types in their symbols.
namespace symbol {
/// The symbol of the exported function of this name.
/// @{
constexpr char GetFrameGrabber[] = "GetFrameGrabber";
constexpr char DestroyFrameGrabber[] = "DestroyFrameGrabber";
constexpr char CurrentFrameInfo[] = "FGCurrentFrameInfo";
constexpr char GetFeature[] = "_Z15LXSP_GetFeaturejP14osvlx3_feature";
constexpr char SetFeature[] = "_Z15LXSP_SetFeaturejPK14osvlx3_feature";
constexpr char Free[] = "_Z9LXSP_FreePv";
/// @}
}  // namespace symbol

}  // namespace lx
}  // namespace Osv

#endif
