#pragma once

/// @file
/// What every stand-in needs.

/// Goes before each function of a closed library.
#define OSV_STAND_IN extern "C" __attribute__((visibility("default")))
