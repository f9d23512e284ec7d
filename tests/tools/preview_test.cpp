#include <csignal>

#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

constexpr char kTake[] = "\x1b[?1049h\x1b[2J\x1b[?25l";
constexpr char kGiveBack[] = "\x1b[0m\x1b[?25h\x1b[?1049l";
constexpr char kHome[] = "\x1b[H";
constexpr std::size_t kRows = 25;  // of the terminal

/// No frame comes behind the third.
const Words kStandstill = {"--faults",
                           "ftrScanGetImageByVariableDose from call 5 on blocks until told"};

class Preview : public Tool {
 protected:
  Preview() { set_usual_terminal(); }

  static Words preview(const Words& more = {}) {
    Words words = {"--preview"};
    words.insert(words.end(), more.begin(), more.end());
    return command("capture", words);
  }

  /// One that runs and never ends by itself, with a picture on its terminal.
  static std::unique_ptr<Process> running(Words more = {}, Terminals terminals = {.out = true}) {
    more.insert(more.end(), {"--empty", "--timeout", "0"});
    auto process = std::make_unique<Process>(preview(more), terminals);
    EXPECT_TRUE(process->wait_for_output_text("\u2580"));
    return process;
  }

  /// How a running one ends by a signal.
  static Outcome end_by(int signal) {
    const auto process = running();
    process->send(signal);
    return process->wait();
  }

  static std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + part.size())) {
      ++found;
    }
    return found;
  }

  /// The lines of a picture that comes from now on.
  static Words next_picture(Process& process) {
    const std::string end_and_begin = std::string("\x1b[K") + kHome;
    EXPECT_TRUE(process.wait_for_output_text(end_and_begin));
    EXPECT_TRUE(process.wait_for_output_text(end_and_begin));
    const std::string& output = process.output();
    const std::size_t end = output.rfind(end_and_begin);
    const std::size_t begin = output.rfind(end_and_begin, end - 1) + end_and_begin.size();
    std::istringstream picture(output.substr(begin, end - begin));
    Words lines;
    for (std::string line; std::getline(picture, line);) {
      lines.push_back(line);
    }
    return lines;
  }
};

TEST_F(Preview, DrawsOnAScreenOfItsOwnWithoutACursor) {
  const Outcome outcome = run(preview(), {.out = true});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith(kTake));
  EXPECT_EQ(count(outcome.out, kTake), 1U);
  EXPECT_EQ(count(outcome.out, kGiveBack), 1U);
  EXPECT_THAT(outcome.out.substr(outcome.out.find(kGiveBack)),
              StartsWith(std::string(kGiveBack) + "image: 498 x 438 pixels"));
}

TEST_F(Preview, DrawsOnePictureOverTheOther) {
  for (const char* const mode : {"plain", "live"}) {
    const auto process = running({"--mode", mode, "--count", "1000000"});
    const Words first = next_picture(*process);
    const Words second = next_picture(*process);
    EXPECT_EQ(first.size(), kRows);
    EXPECT_EQ(count(second[0], "\u2580"), count(first[0], "\u2580"));
  }
}

TEST_F(Preview, HasTheNumbersInTheLowestRow) {
  const Words lines = next_picture(*running());
  ASSERT_EQ(lines.size(), kRows);
  EXPECT_EQ(count(lines[0], "\u2580"), 54U);  // 498 x 438 pixels, made 48 high
  EXPECT_THAT(lines.back(), HasSubstr(" frames, 0 finger images"));
}

TEST_F(Preview, FollowsTheTerminalsSizeThoughNoFrameComes) {
  const auto process = running(kStandstill);
  EXPECT_TRUE(process->wait_for_output_text("3 frames, 0 finger images\x1b[K"));
  process->resize(20, 50);
  EXPECT_TRUE(process->wait_for_output_text(std::string("\x1b[2J") + kHome));
  EXPECT_TRUE(process->wait_for_output_text("3 frames, 0 finger \x1b[K"));
  const std::string picture = process->output().substr(process->output().rfind(kHome));
  EXPECT_EQ(count(picture.substr(0, picture.find("\r\n")), "\u2580"), 20U);
}

TEST_F(Preview, GivesTheScreenBackOnCtrlC) {
  const Outcome outcome = end_by(SIGINT);
  EXPECT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.out, EndsWith(kGiveBack));
}

TEST_F(Preview, GivesTheScreenBackWhenItIsEndedAtOnce) {
  constexpr const char* kSanitizers[] = {"ASAN_OPTIONS", "TSAN_OPTIONS"};
  for (const char* const options : kSanitizers) {
    ::setenv(options, "handle_segv=0:handle_abort=0", 1);  // else they take the signals
  }
  for (const int signal : {SIGQUIT, SIGABRT, SIGSEGV}) {
    const Outcome outcome = end_by(signal);
    EXPECT_EQ(outcome.status, 128 + signal);
    EXPECT_THAT(outcome.out, EndsWith(kGiveBack));
  }
  for (const char* const options : kSanitizers) {
    ::unsetenv(options);
  }
}

TEST_F(Preview, GivesTheScreenBackBeforeItWaitsForTheWorker) {
  const auto process = running(kStandstill);
  EXPECT_TRUE(process->wait_for_output_text("3 frames, "));
  process->send(SIGINT);
  EXPECT_TRUE(process->wait_for_output_text(kGiveBack));
  process->send(SIGINT);
  EXPECT_EQ(process->wait().status, 130);
}

TEST_F(Preview, GivesTheScreenBackWhenTheScannerIsUnplugged) {
  const Outcome outcome =
      run(preview({"--faults", "ftrScanGetImageByVariableDose from call 5 on fails with 31"}),
          {.out = true});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, EndsWith(kGiveBack));
}

TEST_F(Preview, GivesTheScreenBackWhileItIsSuspended) {
  const auto process = running();
  process->send(SIGTSTP);
  EXPECT_TRUE(process->wait_for_output_text(kGiveBack));
  EXPECT_TRUE(process->wait_for_suspension());
  process->send(SIGCONT);
  EXPECT_TRUE(process->wait_for_output_text(kTake));
  EXPECT_TRUE(process->wait_for_output_text("\u2580"));
  process->send(SIGTERM);
  EXPECT_EQ(process->wait().status, 143);
}

TEST_F(Preview, KeepsMessagesBackUntilTheScreenIsGivenBack) {
  Words words = {"/bin/sh", "-c", "exec \"$@\" 2>&1", "sh"};
  const Words tool = preview({"--empty", "--timeout", "0", "--script", "-"});
  words.insert(words.end(), tool.begin(), tool.end());
  Process process(words, {.out = true}, eInput::Written);
  EXPECT_TRUE(process.wait_for_output_text("\u2580"));
  process.write("unknown\nunplug 0\n");
  const Outcome outcome = process.wait();
  const std::size_t end = outcome.out.find(kGiveBack);
  EXPECT_THAT(outcome.out.substr(0, end), Not(HasSubstr("hvk3: ")));
  EXPECT_THAT(outcome.out.substr(end), HasSubstr("hvk3: script: not understood"));
}

TEST_F(Preview, TellsMessagesAtOnceWhereTheyStandElsewhere) {
  Process process(preview({"--empty", "--timeout", "0", "--script", "-"}), {.out = true},
                  eInput::Written);
  process.write("unknown\n");
  EXPECT_TRUE(process.wait_for_error_text("hvk3: script: not understood"));
}

TEST_F(Preview, NeverSlowsCaptureOnATerminalThatTakesNothing) {
  // A picture is larger than all that the system keeps for a terminal.
  Process process(preview({"--mode", "live", "--count", "100", "--verbose"}),
                  {.out = true, .columns = 498, .rows = 220});
  process.leave_output();
  EXPECT_TRUE(process.wait_for_error_text("Calling StopCapture function"));
  EXPECT_EQ(process.wait().status, 0);
}

TEST_F(Preview, NeedsATerminal) {
  const Outcome outcome = run(preview());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "hvk3: error: a preview needs a terminal, and standard output is none\n");
}

TEST_F(Preview, NeedsATerminalWhoseCursorCanBeMoved) {
  for (const char* const type : {"dumb", ""}) {
    ::setenv("TERM", type, 1);
    EXPECT_EQ(run(preview(), {.out = true}).status, 2);
  }
}

TEST_F(Preview, IsRefusedTogetherWithJson) {
  EXPECT_EQ(run(preview({"--json"}), {.out = true}).status, 2);
}

TEST_F(Preview, IsRefusedWhereDetailsWouldStandInIt) {
  EXPECT_EQ(run(preview({"--verbose"}), {.out = true, .error = true}).status, 2);
}

TEST_F(Preview, IsOnlyForCapture) {
  EXPECT_EQ(run(command("snap", {"--preview"}), {.out = true}).status, 2);
}

}  // namespace
}  // namespace hvk3::test
