#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

/// What a preview shows on a large terminal that names no colours: half the image's size, so that
/// ridges can be told apart.
class PreviewPicture : public Tool {
 protected:
  PreviewPicture() { set_usual_terminal(); }

  /// A finger comes behind frame 15, lies from 26 to 70 and has gone behind 75. Capture stands
  /// still at the frames 3, 43 and 83, and goes on with `go_on`.
  void start() {
    const std::string frame = "ftrScanGetImageByVariableDose ";
    const std::string effect = " blocks until told;";
    const Words words = command(
        "capture",
        {"--preview", "--timeout", "0", "--settle", "1000", "--script", "-", "--faults",
         frame + "call 5" + effect + frame + "call 45" + effect + frame + "call 85" + effect});
    const Terminals terminals = {.out = true, .columns = kColumns, .rows = kRows};
    m_pTool = std::make_unique<Process>(words, terminals, eInput::Written);
  }

  void go_on() const { m_pTool->write("release\n"); }

  /// The lines that show this frame.
  Words picture_of(unsigned int frame) {
    const std::string status = '\n' + std::to_string(frame) + " frames, ";
    EXPECT_TRUE(m_pTool->wait_for_output_text(status));
    const std::string& output = m_pTool->output();
    const std::size_t end = output.find(status);
    std::istringstream picture(output.substr(0, end).substr(output.rfind("\x1b[H", end)));
    Words lines;
    for (std::string line; std::getline(picture, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  /// Gray levels of the upper pixels in the middle of a line of half-blocks.
  static std::vector<int> grays(const std::string& line) {
    const std::string mark = "\x1b[38;5;";
    std::vector<int> levels;
    for (std::size_t at = line.find(mark); at != std::string::npos; at = line.find(mark, at + 1)) {
      levels.push_back(gray_of(std::stoi(line.substr(at + mark.size()))));
    }
    EXPECT_EQ(levels.size(), kColumns);
    return {levels.begin() + kColumns / 4, levels.end() - kColumns / 4};
  }

  /// Of a colour of the palette.
  static int gray_of(int colour) {
    EXPECT_TRUE(colour == 16 || colour >= 231) << colour << " is no gray";
    return colour == 16 ? 0 : colour == 231 ? 255 : 8 + 10 * (colour - 232);
  }

  static int dark(const std::vector<int>& grays) {
    return static_cast<int>(
        std::count_if(grays.begin(), grays.end(), [](int gray) { return gray < 128; }));
  }

  /// How often dark and bright take turns: at every ridge twice.
  static int turns(const std::vector<int>& grays) {
    int count = 0;
    for (std::size_t i = 1; i < grays.size(); ++i) {
      count += (grays[i] < 128) != (grays[i - 1] < 128) ? 1 : 0;
    }
    return count;
  }

  static constexpr unsigned short kColumns = 249;
  static constexpr unsigned short kRows = 111;
  std::unique_ptr<Process> m_pTool;
};

TEST_F(PreviewPicture, IsThePrintAsItComesAndGoes) {
  constexpr std::size_t kMiddle = kRows / 2;
  start();
  EXPECT_EQ(dark(grays(picture_of(3).at(kMiddle))), 0);
  go_on();
  const std::vector<int> print = grays(picture_of(43).at(kMiddle));
  EXPECT_GT(turns(print), 24);
  EXPECT_GT(dark(print), kColumns / 2 / 5);
  EXPECT_LT(dark(print), kColumns / 2 * 4 / 5);
  go_on();
  EXPECT_EQ(dark(grays(picture_of(83).at(kMiddle))), 0);
}

TEST_F(PreviewPicture, HasPlainSignsWhereNothingElseCanBeWritten) {
  ::setenv("LC_ALL", "C", 1);
  start();
  EXPECT_THAT(picture_of(3).at(kRows / 2), StartsWith(std::string(kColumns / 2, ' ')));
}

}  // namespace
}  // namespace hvk3::test
