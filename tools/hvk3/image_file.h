#pragma once

#include <string>

#include "hvk3/finger_image_record.h"
#include "hvk3/image.h"

/// @file
/// Images as files.

namespace hvk3 {

/// Whether the path ends in an extension that `write_image` knows: .png, .bmp, .pgm or .fir, in any
/// case.
bool is_image_path(const std::string& path);

/// Whether it is one of a finger image record: .fir.
bool is_record_path(const std::string& path);

/// The path with -1, -2, ... in front of its extension.
std::string numbered_path(const std::string& path, unsigned int number);

/// Writes an 8-bit gray PNG, BMP, PGM or finger image record, by the extension of `path`, with its
/// resolution. The file appears whole, with mode 0600, or not at all.
/// @param details only a record has them
/// @throws Failure `OutputFailed`
void write_image(const Image& image, const std::string& path, const RecordDetails& details = {});

/// Writes likewise under the first numbered path that is free, whoever else looks for one at the
/// same time.
/// @return the path
/// @throws Failure `OutputFailed`
std::string write_numbered_image(const Image& image, const std::string& path);

}  // namespace hvk3
