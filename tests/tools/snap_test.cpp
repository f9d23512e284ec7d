#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Snap : public Tool {
 protected:
  /// What `--show` draws on a terminal with this environment.
  static std::string drawn_with(const Words& environment) {
    Words words = {"/usr/bin/env", "--unset=NO_COLOR", "COLORTERM=", "TERM=xterm",
                   "LC_ALL=C.UTF-8"};
    words.insert(words.end(), environment.begin(), environment.end());
    const Words snap = command("snap", {"--show"});
    words.insert(words.end(), snap.begin(), snap.end());
    return run(words, {.out = true}).out;
  }
};

TEST_F(Snap, TellsSizeResolutionAndBrightness) {
  const Outcome outcome = simulate("snap", {"--empty"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("image: 498 x 438 pixels, 500 DPI, mean gray 2"));
}

TEST_F(Snap, WritesAPngWithItsResolution) {
  const std::string path = m_cFolder.file("snap.png");
  EXPECT_EQ(simulate("snap", {"--out", path}).status, 0);
  const std::string file = read_file(path);
  EXPECT_THAT(file, StartsWith("\x89PNG\r\n\x1A\n"));
  EXPECT_THAT(file, HasSubstr(chunk_of_500_dpi()));
}

TEST_F(Snap, WritesABmpWithItsResolution) {
  const std::string path = m_cFolder.file("snap.BMP");
  EXPECT_EQ(simulate("snap", {"--out", path}).status, 0);
  const std::string file = read_file(path);
  EXPECT_THAT(file, StartsWith("BM"));
  EXPECT_EQ(number_at(file, 2), file.size());
  EXPECT_EQ(number_at(file, 18), 498U);
  EXPECT_EQ(number_at(file, 22), 438U);
  EXPECT_EQ(number_at(file, 38), 19685U);
  EXPECT_EQ(number_at(file, 42), 19685U);
}

TEST_F(Snap, WritesFilesThatOnlyTheUserMayRead) {
  for (const std::string name : {"snap.png", "snap.bmp"}) {
    const std::string path = m_cFolder.file(name);
    EXPECT_EQ(simulate("snap", {"--out", path}).status, 0);
    EXPECT_EQ(mode_of(path), 0600U) << name;
  }
}

TEST_F(Snap, NamesTheFileInJson) {
  const std::string path = m_cFolder.file("snap.png");
  const Json image = simulate_json("snap", {"--out", path})["images"][0];
  EXPECT_EQ(image["file"], path);
  EXPECT_EQ(image["width"], 498);
  EXPECT_EQ(image["height"], 438);
  EXPECT_EQ(image["dpi"], 500);
  EXPECT_EQ(image["pixels_per_metre"], 19685);
}

TEST_F(Snap, HasNoFileInJsonWhenNoneIsWanted) {
  EXPECT_TRUE(simulate_json("snap")["images"][0]["file"].is_null());
}

TEST_F(Snap, DrawsPlainSignsWhereNoTerminalIs) {
  const Outcome outcome = simulate("snap", {"--empty", "--show"});
  EXPECT_THAT(outcome.out, Not(HasSubstr("\x1b")));
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1 + 35);
}

TEST_F(Snap, DrawsHalfBlocksIn24BitColoursOnATerminalThatHasThem) {
  for (const std::string colours : {"truecolor", "24bit"}) {
    const std::string drawn = drawn_with({"COLORTERM=" + colours});
    EXPECT_THAT(drawn, HasSubstr("\u2580")) << colours;
    EXPECT_THAT(drawn, HasSubstr("\x1b[38;2;")) << colours;
  }
}

TEST_F(Snap, DrawsHalfBlocksInGraysOfThePaletteOnAUsualTerminal) {
  const std::string drawn = drawn_with({});
  EXPECT_THAT(drawn, HasSubstr("\u2580"));
  EXPECT_THAT(drawn, HasSubstr("\x1b[38;5;"));
}

TEST_F(Snap, DrawsPlainSignsOnATerminalThatCanNotDoBetterOrIsNotTo) {
  for (const Words& environment : {Words{"TERM=linux"}, Words{"COLORTERM=truecolor", "NO_COLOR=1"},
                                   Words{"COLORTERM=truecolor", "LC_ALL=C"}}) {
    const std::string drawn = drawn_with(environment);
    EXPECT_THAT(drawn, StartsWith("image: "));
    EXPECT_THAT(drawn, Not(HasSubstr("\x1b")));
  }
}

TEST_F(Snap, DrawsHalfBlocksWhenTold) {
  const Outcome outcome = simulate("snap", {"--show", "--shades", "24bit"});
  EXPECT_THAT(outcome.out, HasSubstr("\u2580"));
}

TEST_F(Snap, EndsWith4AndTheNumberOfAScannerThatFails) {
  const Outcome outcome =
      simulate("snap", {"--faults", "ftrScanGetImageByVariableDose fails with 87"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.error, HasSubstr("error 87: "));
}

TEST_F(Snap, EndsWith3AndTheNumberWhenTheScannerIsUnpluggedMeanwhile) {
  for (const std::string number : {"31", "259"}) {
    const Outcome outcome =
        simulate("snap", {"--faults", "ftrScanGetImageByVariableDose fails with " + number});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.error, HasSubstr(number == "31" ? "error 31: " : "error 2: "));
  }
}

TEST_F(Snap, EndsWith4WhenALibraryFailsWithoutAReason) {
  const Outcome outcome =
      simulate("snap", {"--faults", "ftrScanGetImageByVariableDose fails with 0"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.error, HasSubstr("the scanner gives no image"));
}

TEST_F(Snap, EndsWith6WhenTheFileCannotBeWritten) {
  const Outcome outcome = simulate("snap", {"--out", m_cFolder.file("absent/snap.png")});
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error, HasSubstr("No such file or directory"));
}

}  // namespace
}  // namespace hvk3::test
