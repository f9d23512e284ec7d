#pragma once

#include <string>

#include "hvk3/context.h"
#include "hvk3/image.h"

/// @file
/// What happens to an image that a command got.

namespace hvk3 {

/// Writes and draws the image as the options say and adds it to the report.
/// @param number from 1; joins the file name when more than one image is asked for
void deliver(Context& context, const Image& image, unsigned int number);

}  // namespace hvk3
