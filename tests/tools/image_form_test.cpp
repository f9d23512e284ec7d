#include "tools/files.h"
#include "tools/finger_image_record_reader.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

/// The forms in which an image is written. Every frame of an empty platen is the same.
class ImageForm : public Tool {
 protected:
  std::string snapped(const std::string& name, Words more = {}) {
    more.insert(more.end(), {"--empty", "--out", m_cFolder.file(name)});
    EXPECT_EQ(simulate("snap", more).status, 0);
    return read_file(m_cFolder.file(name));
  }

  FingerImageRecord record(const Words& more = {}) {
    return FingerImageRecord(snapped("a.fir", more));
  }

  /// How a command with an option for records ends when it writes none.
  int status_without_record(const Words& option) {
    Words words = {"--out", m_cFolder.file("a.png")};
    words.insert(words.end(), option.begin(), option.end());
    return simulate("snap", words).status;
  }
};

TEST_F(ImageForm, AllOfThemHoldTheSamePixels) {
  const Levels levels = png_levels(snapped("a.png"));
  EXPECT_EQ(levels.size(), 498U * 438);
  EXPECT_EQ(Pgm(snapped("a.pgm")).levels, levels);
  EXPECT_EQ(record().levels(), levels);
  EXPECT_EQ(record({"--record-compression", "png"}).levels(), levels);
}

TEST_F(ImageForm, ARecordTellsWhatIsKnownOfTheScanner) {
  const FingerImageRecord made = record();
  EXPECT_EQ(made.width, 498U);
  EXPECT_EQ(made.height, 438U);
  EXPECT_EQ(made.scan_resolution_x, 197U);
  EXPECT_EQ(made.acquisition_level, 30U);
  EXPECT_EQ(made.impression, 0U);
}

TEST_F(ImageForm, ARecordTellsWhatTheUserSaysOfTheFinger) {
  const FingerImageRecord made =
      record({"--record-position", "left-index", "--record-quality", "71", "--record-device", "9"});
  EXPECT_EQ(made.position, 7U);
  EXPECT_EQ(made.quality, 71U);
  EXPECT_EQ(made.capture_device, 9U);
}

TEST_F(ImageForm, ARollIsARolledImpression) {
  const std::string path = m_cFolder.file("a.fir");
  simulate("roll", {"--out", path, "--timeout", "0"});
  EXPECT_EQ(FingerImageRecord(read_file(path)).impression, 1U);
}

TEST_F(ImageForm, EveryImageHasARecordOfItsOwn) {
  simulate("capture", {"--mode", "live", "--count", "2", "--out", m_cFolder.file("a.fir")});
  EXPECT_EQ(FingerImageRecord(read_file(m_cFolder.file("a-1.fir"))).fingers, 1U);
  EXPECT_EQ(FingerImageRecord(read_file(m_cFolder.file("a-2.fir"))).fingers, 1U);
}

TEST_F(ImageForm, WhatOnlyARecordHoldsIsRefusedForOthers) {
  EXPECT_EQ(status_without_record({}), 0);
  EXPECT_EQ(status_without_record({"--record-position", "unknown"}), 2);
  EXPECT_EQ(status_without_record({"--record-compression", "png"}), 2);
  EXPECT_EQ(status_without_record({"--record-quality", "5"}), 2);
  EXPECT_EQ(simulate("snap", {"--record-device", "5"}).status, 2);
}

TEST_F(ImageForm, WhatARecordCannotHoldIsRefused) {
  const std::string path = m_cFolder.file("a.fir");
  EXPECT_EQ(simulate("snap", {"--out", path, "--record-quality", "101"}).status, 2);
  EXPECT_EQ(simulate("snap", {"--out", path, "--record-device", "65536"}).status, 2);
  EXPECT_EQ(simulate("snap", {"--out", path, "--record-position", "toe"}).status, 2);
  EXPECT_EQ(m_cFolder.count(), 0);
}

}  // namespace
}  // namespace hvk3::test
