#pragma once

#include <filesystem>
#include <sstream>
#include <string>

#include "tools/files.h"
#include "tools/tool_fixture.h"

/// @file
/// The ground for tests that record the tool on the simulator and play the recording. The tool
/// stands in an installation without a simulator.

namespace hvk3::test {

class RecordedTool : public Tool {
 protected:
  RecordedTool() { ::setenv("HVK3_REPLAY_PATIENCE", "30000", 1); }
  ~RecordedTool() override { ::unsetenv("HVK3_REPLAY_PATIENCE"); }

  std::string recording() const { return m_cFolder.file("recording"); }

  static Words split(const std::string& line) {
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
  }

  static Words join(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  /// Runs the tool.
  static Outcome tool(const Words& words) { return run(join({HVK3_BARE_TOOL}, words)); }

  /// What records a program on simulated scanners.
  Words recording_of(const Words& program, const Words& options = {}) const {
    return join(join({HVK3_BARE_TOOL, "record", recording(), "--simulate", "--simulator",
                      HVK3_SIMULATOR_DIR},
                     options),
                join({"--"}, program));
  }

  /// Records a program on simulated scanners.
  Outcome record_program(const Words& program, const Words& options = {}) const {
    return run(recording_of(program, options));
  }

  /// A command of the tool on simulated scanners.
  static Words simulated(const std::string& command) {
    return join(join({HVK3_BARE_TOOL}, split(command)),
                {"--simulate", "--simulator", HVK3_SIMULATOR_DIR, "--pace", "unlimited"});
  }

  /// Records a command of the tool.
  /// @param scene its options for the simulation
  Outcome record(const std::string& command, const Words& scene = {},
                 const Words& options = {}) const {
    return record_program(join(simulated(command), scene), options);
  }

  Outcome replay(const std::string& command) const {
    return tool(join(split(command), {"--replay", recording()}));
  }

  /// The lines about what went wrong, without those about recording and replay.
  static std::string errors(const Outcome& outcome) {
    std::istringstream all(outcome.error);
    std::string errors;
    for (std::string line; std::getline(all, line);) {
      errors += line.rfind("hvk3: error", 0) == 0 ? line + '\n' : "";
    }
    return errors;
  }

  /// Records a command and plays it; both are to write the same, into files in the folder too.
  /// @return how it ended
  int expect_the_same(const std::string& command, const Words& scene = {}) const {
    const std::filesystem::path images = m_cFolder.file("images");
    std::filesystem::create_directory(images);
    const Outcome recorded = record(command, scene);
    const std::string kept = m_cFolder.file("kept");
    std::filesystem::rename(images, kept);
    std::filesystem::create_directory(images);
    const Outcome played = replay(command);
    EXPECT_EQ(played.status, recorded.status) << recorded.error << played.error;
    EXPECT_EQ(played.out, recorded.out);
    EXPECT_EQ(errors(played), errors(recorded));
    EXPECT_THAT(recorded.error, HasSubstr(" calls are in "));
    for (const auto& image : std::filesystem::directory_iterator(kept)) {
      EXPECT_TRUE(read_file(image.path()) == read_file(images / image.path().filename())) << image;
    }
    return played.status;
  }

  /// Where a command of `expect_the_same` writes images.
  std::string image() const { return m_cFolder.file("images/image.png"); }
};

}  // namespace hvk3::test
