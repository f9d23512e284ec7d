#pragma once

#include <filesystem>

/// @file
/// Where the program's libraries lie: beside it, where `cmake --install` puts them or where the
/// build does.

namespace hvk3 {

/// The path of the plug-in, or its bare name for the loader to find when none is beside the
/// program.
std::filesystem::path plugin_path();

/// The folder of the simulator, there or not.
std::filesystem::path simulator_folder();

/// The folder of the forwarders for recording and replay, there or not.
std::filesystem::path recorder_folder();

}  // namespace hvk3
