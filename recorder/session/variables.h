#pragma once

/// @file
/// What the tool and the programs that it runs have in common.

namespace Osv::recorder {

/// The variables that `hvk3 record` and `hvk3 replay` set for the program that they run.
namespace variable {
inline constexpr char kRecording[] = "HVK3_RECORD_FILE";
inline constexpr char kLibraries[] = "HVK3_RECORD_LIBRARIES";  ///< paths, a colon between
inline constexpr char kReplay[] = "HVK3_REPLAY_FILE";
inline constexpr char kPatience[] = "HVK3_REPLAY_PATIENCE";  ///< milliseconds, for users to set
inline constexpr char kReport[] = "HVK3_REPLAY_REPORT";      ///< a `ReplayReport`
}  // namespace variable

/// Exit statuses of a process that ends within a call; numbers of the tool's.
enum class eEnd : int { Damaged = 2, NoLibrary = 7, Diverged = 9 };

}  // namespace Osv::recorder
