#include "hvk3/recording/replay.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "hvk3/recording/child_program.h"
#include "hvk3/recording/forwarder_folder.h"
#include "recorder/format/recording.h"
#include "recorder/session/variables.h"

namespace hvk3 {
namespace {

namespace variable = Osv::recorder::variable;
using Osv::recorder::Recording;

Osv::recorder::Header examine(const std::string& path, Console& console) {
  try {
    const Recording recording(path);
    if (recording.torn()) {
      console.message(path + " ends within a call; " + std::to_string(recording.calls().size()) +
                      " calls before it are whole");
    }
    if (!recording.end().empty()) {
      console.message(path + " ended at " + recording.end());
    }
    if (!recording.header().pixels) {
      console.message(path + " holds no images: frames are black");
    }
    return recording.header();
  } catch (const Osv::recorder::DamagedRecording& damage) {
    throw Failure(ExitStatus::Usage, damage.what());
  }
}

std::string content_of(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

ReplayEnd replay(const std::string& recording, const std::vector<std::string>& program,
                 Console& console) {
  const ForwarderFolder forwarders(examine(recording, console));
  const PrivateFolder folder;
  const std::filesystem::path report = folder.path() / "report";
  ::setenv(variable::kReplay, std::filesystem::absolute(recording).c_str(), 1);
  ::setenv(variable::kReport, report.c_str(), 1);
  ::unsetenv(variable::kRecording);
  ReplayEnd end;
  end.status = run_program(program);
  if (const std::string why = content_of(report); !why.empty()) {
    end.failure.emplace(static_cast<ExitStatus>(end.status), why);
  }
  return end;
}

bool is_replay() { return std::getenv(variable::kReplay) != nullptr; }

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
