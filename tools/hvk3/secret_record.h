#pragma once

#include <array>

#include "hvk3/secret.h"

/// @file
/// The two halves of the feature of protected bytes.

namespace hvk3 {

/// Reads the protected bytes of the scanner that was chosen.
/// @throws Failure with the plug-in's number
SecretBytes read_protected(Plugin& plugin, const SecretBytes& code);

/// Writes them. @throws Failure with the plug-in's number
void write_protected(Plugin& plugin, const SecretBytes& code, const SecretBytes& bytes);

}  // namespace hvk3
