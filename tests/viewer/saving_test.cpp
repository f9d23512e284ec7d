#include "tools/files.h"
#include "viewer/viewer_fixture.h"

namespace hvk3::test {
namespace {

class Saving : public Viewer {
 protected:
  void start_saving(const std::string& name = "image.png") {
    start_capturing({"--out", m_cFolder.file(name)});
  }

  void settle_and_lift() {
    say("finger on");
    wait_for("settled");
    say("finger off");
    wait_for("lifted");
  }

  /// What stands above the image on the right.
  std::vector<Colour> title() { return picture().pixels(layout().kept.title); }
};

TEST_F(Saving, WritesASnapForTheUserAlone) {
  start_saving();
  press("n", "snap");
  const std::string path = m_cFolder.file("image-1.png");
  press("s", "saved " + path);
  EXPECT_EQ(mode_of(path), 0600U);
  EXPECT_EQ(Picture(path).width(), 498);
}

TEST_F(Saving, TakesTheNextNumberThatIsFree) {
  std::ofstream(m_cFolder.file("image-1.png")) << "of another day";
  start_saving();
  press("n", "snap");
  press("s", "saved " + m_cFolder.file("image-2.png"));
  press("s", "saved " + m_cFolder.file("image-3.png"));
  EXPECT_EQ(read_file(m_cFolder.file("image-1.png")), "of another day");
}

TEST_F(Saving, WritesTheSettledFinger) {
  start_saving();
  say("finger on");
  wait_for("settled");
  const std::string path = m_cFolder.file("image-1.png");
  press("s", "saved " + path);
  EXPECT_GT(Picture(path).turns({0, 0, 498, 438}), 24);
}

TEST_F(Saving, WritesASnapInThePlaceOfTheSettledFinger) {
  start_saving();
  settle_and_lift();
  press("n", "snap");
  const std::string path = m_cFolder.file("image-1.png");
  press("s", "saved " + path);
  EXPECT_EQ(Picture(path).turns({0, 0, 498, 438}), 0);  // all of it is bright
}

TEST_F(Saving, KeepsASnapAsLongAsTheSameFingerLies) {
  start_saving();
  say("finger on");
  wait_for("settled");
  const std::vector<Colour> before = title();
  press("n", "snap");
  const std::vector<Colour> snapped = title();
  EXPECT_NE(snapped, before);
  wait_for("settled");
  EXPECT_EQ(title(), snapped);
}

TEST_F(Saving, WritesTheNextFingerInThePlaceOfASnap) {
  start_saving();
  press("n", "snap");
  const std::vector<Colour> snapped = title();
  settle_and_lift();
  EXPECT_NE(title(), snapped);
  const std::string path = m_cFolder.file("image-1.png");
  press("s", "saved " + path);
  EXPECT_GT(Picture(path).turns({0, 0, 498, 438}), 24);
}

TEST_F(Saving, SaysThatThereIsNothingToSave) {
  start_saving();
  press("s", "nothing to save");
}

TEST_F(Saving, SaysThatTheFileCantBeWritten) {
  start_saving("absent/image.bmp");
  press("n", "snap");
  press("s", "error");
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
}

TEST_F(Saving, SaysThatTheNameOfTheFileIsTooLong) {
  start_saving(std::string(300, 'n') + ".png");
  press("n", "snap");
  press("s", "error");
  EXPECT_EQ(quit().status, 0);
}

TEST_F(Saving, LeavesALinkThatLeadsNowhereAlone) {
  std::filesystem::create_symlink("absent", m_cFolder.file("image-1.png"));
  start_saving();
  press("n", "snap");
  press("s", "saved " + m_cFolder.file("image-2.png"));
}

}  // namespace
}  // namespace hvk3::test
