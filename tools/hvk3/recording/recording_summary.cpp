#include "hvk3/recording/recording_summary.h"

#include <algorithm>

namespace hvk3 {

RecordingSummary summary_of(const std::string& path) {
  const Osv::recorder::Recording recording(path);
  const auto& calls = recording.calls();
  const auto lines =
      std::count_if(calls.begin(), calls.end(), [](const Osv::recorder::Recording::Call& call) {
        return is_line_to_the_log(call.head.function);
      });
  return {path,
          recording.header(),
          calls.size(),
          calls.size() - static_cast<std::size_t>(lines),
          recording.frames(),
          recording.size(),
          recording.torn(),
          recording.end()};
}

nlohmann::ordered_json to_json(const RecordingSummary& summary) {
  using Json = nlohmann::ordered_json;
  return {{"path", summary.path},
          {"calls", summary.calls},
          {"frames", summary.frames},
          {"bytes", summary.bytes},
          {"pixels", summary.header.pixels},
          {"torn", summary.is_torn},
          {"early_end", summary.early_end.empty() ? Json() : Json(summary.early_end)}};
}

}  // namespace hvk3
