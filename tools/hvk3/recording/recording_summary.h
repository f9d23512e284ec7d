#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "recorder/format/recording.h"

/// @file
/// What a recording holds, in short.

namespace hvk3 {

struct RecordingSummary {
  std::string path;
  Osv::recorder::Header header = {};
  std::size_t calls = 0;
  std::size_t answered_calls = 0;  ///< without lines to the log, which are not played
  std::size_t frames = 0;
  std::uint64_t bytes = 0;
  bool is_torn = false;   ///< ends within a call
  std::string early_end;  ///< why the recorder ended it early; empty for a usual end
};

/// @throws DamagedRecording
RecordingSummary summary_of(const std::string& path);

nlohmann::ordered_json to_json(const RecordingSummary& summary);

}  // namespace hvk3
