#pragma once

/// @file
/// Texts copied out by the rule of buffer sizes.

/// Copies `text` with its terminator.
/// @param size in: capacity of `buffer` in bytes; out: the needed size
/// @return 0; 17 when `size` is too small; 60 when it suffices and `buffer` is null
unsigned long StringCpy(const char* text, char* buffer, unsigned long& size);
