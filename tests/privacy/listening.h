#pragma once

#include <array>

/// @file
/// The control of libraries that listen: they stand in front of the stand-ins for scanner library
/// and calibration engine and in place of the logging facility.

namespace Osv::privacy {

/// Pixels that each frame of the scanner has in the corners, where no finger is.
constexpr std::array<unsigned char, 16> kRawPixels = {
    0xB1, 0x7D, 0xC3, 0x5E, 0x9A, 0xE7, 0x46, 0xD8, 0x65, 0xF2, 0x8B, 0x3C, 0xA6, 0x59, 0xCD, 0x72};

/// The same for each corrected image.
constexpr std::array<unsigned char, 16> kFinalPixels = {
    0x4F, 0xD3, 0x8E, 0x61, 0xBC, 0x57, 0xE9, 0x96, 0x7B, 0xC8, 0x35, 0xAD, 0xF4, 0x69, 0x93, 0xDE};

using LineVisitor = void (*)(int level, const char* text, void* user);

}  // namespace Osv::privacy

#define HVK3_LISTENING extern "C" __attribute__((visibility("default")))

/// Changes every pixel of every frame and of every corrected image by these bits, 0 to 15, from now
/// on. No pixel has then a value that any pixel has with other bits.
HVK3_LISTENING void privacy_change_pixels(unsigned char bits);

/// Gives every line that was logged since the last time, and forgets it.
HVK3_LISTENING void privacy_take_lines(Osv::privacy::LineVisitor visit, void* user);
