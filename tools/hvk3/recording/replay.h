#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hvk3/console.h"
#include "hvk3/recording/child_program.h"
#include "hvk3/recording/recording_summary.h"
#include "hvk3/report.h"
#include "recorder/format/replay_report.h"

/// @file
/// Programs in front of a recording.

namespace hvk3 {

/// How a replay ended.
struct ReplayEnd {
  RecordingSummary recording;
  ProgramEnd program;
  std::uint64_t played = 0;                             ///< calls that were answered
  std::optional<Osv::recorder::ReplayTrouble> trouble;  ///< why it could not go on
};

/// Runs a program on what a recording holds.
/// @throws Failure `Usage` for what is no recording or a damaged one
ReplayEnd replay(const std::string& recording, const std::vector<std::string>& program,
                 eOutput output, Console& console);

/// Notes the end of the program, and the call at which it diverged.
void fill_report(Report& report, const ReplayEnd& end);

/// Whether this program itself runs on a recording.
bool is_replay();

/// Whether it runs on that one.
bool is_replay_of(const std::string& recording);

/// Whether this program itself is recorded, on the libraries of that folder.
/// @throws Failure `Usage` when it is recorded on others
bool is_recorded_on(const std::string& folder);

}  // namespace hvk3
