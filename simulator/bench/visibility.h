#pragma once

/// @file
/// What the control library shows to the stand-ins.

#define OSV_SIMULATOR_API __attribute__((visibility("default")))
