#pragma once

#include "libraries/stand_in.h"

/// @file
/// The logging facility as the stand-in has it. Levels: 3 error, 4 warning, 7 trace.

OSV_STAND_IN void OsvLFLog(int level, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
OSV_STAND_IN void OsvLFFlush();
