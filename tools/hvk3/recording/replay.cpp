#include "hvk3/recording/replay.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "hvk3/failure.h"
#include "hvk3/recording/forwarder_folder.h"
#include "recorder/session/variables.h"

namespace hvk3 {
namespace {

namespace variable = Osv::recorder::variable;
using Osv::recorder::ReplayReport;

std::string path_of(const std::string& recording) {
  std::error_code unreadable;  // who opens it tells why
  const std::filesystem::path path = std::filesystem::absolute(recording);
  const std::filesystem::path real = std::filesystem::weakly_canonical(path, unreadable);
  return (unreadable ? path : real).string();
}

RecordingSummary examine(const std::string& path) {
  try {
    return summary_of(path);
  } catch (const Osv::recorder::DamagedRecording& damage) {
    throw Failure(ExitStatus::Usage, damage.what());
  }
}

void warn(Console& console, const RecordingSummary& recording) {
  if (recording.is_torn) {
    console.message(recording.path + " ends within a call; " + std::to_string(recording.calls) +
                    " calls before it are whole");
  } else if (!recording.early_end.empty()) {
    console.message(recording.path + " ended at " + recording.early_end);
  }
  for (std::size_t i = 0; i < Osv::recorder::kLibraryCount; ++i) {
    if (const std::string& failure = recording.header.failures[i]; !failure.empty()) {
      console.message(std::string(Osv::recorder::kLibraryNames[i]) +
                      " was there and could not be loaded: " + failure);
    }
  }
  if (!recording.header.pixels) {
    console.message(recording.path + " holds no images: frames are black");
  }
}

}  // namespace

ReplayEnd replay(const std::string& recording, const std::vector<std::string>& program,
                 eOutput output, Console& console) {
  ReplayEnd end;
  end.recording = examine(recording);
  warn(console, end.recording);
  const ForwarderFolder forwarders(end.recording.header);
  const PrivateFolder folder;
  const std::filesystem::path path = folder.path() / "report";
  ReplayReport::create(path);
  const ReplayReport report(path);
  ::setenv(variable::kReplay, path_of(recording).c_str(), 1);
  ::setenv(variable::kReport, path.c_str(), 1);
  ::unsetenv(variable::kRecording);
  end.program = run_program(program, output);
  if (!report.has_begun()) {
    console.message("nothing was played, the program opened no closed library on this recording");
  }
  end.played = std::min<std::uint64_t>(report.played(), end.recording.answered_calls);
  end.trouble = report.trouble();
  return end;
}

void fill_report(Report& report, const ReplayEnd& end) {
  using Json = nlohmann::ordered_json;
  report.end(end.program.status, end.program.by_signal);
  auto& divergence = report["divergence"] = nullptr;
  if (!end.trouble) {
    return;
  }
  // A process of the program may have met it, and the program have ended otherwise.
  if (end.program.status == end.trouble->status) {
    report.fail(Failure(static_cast<ExitStatus>(end.trouble->status), end.trouble->text));
  }
  if (end.trouble->status == static_cast<int>(ExitStatus::Diverged)) {
    divergence = Json{{"call", end.trouble->call}, {"function", name_of(end.trouble->function)}};
  }
}

bool is_replay() { return std::getenv(variable::kReplay) != nullptr; }

bool is_replay_of(const std::string& recording) {
  return is_replay() && std::getenv(variable::kReplay) == path_of(recording);
}

bool is_recorded_on(const std::string& folder) {
  const char* const libraries = std::getenv(variable::kLibraries);
  if (std::getenv(variable::kRecording) == nullptr || libraries == nullptr) {
    return false;
  }
  const std::string all = std::string(libraries) + ':';
  const std::size_t begin = all.find_first_not_of(':');  // a library that there is not has no path
  const std::filesystem::path first = all.substr(begin, all.find(':', begin) - begin);
  std::error_code failed;
  if (!std::filesystem::equivalent(first.parent_path(), folder, failed)) {
    throw Failure(ExitStatus::Usage,
                  "simulated scanners are recorded with 'hvk3 record FILE --simulate -- ...'");
  }
  return true;
}

}  // namespace hvk3
