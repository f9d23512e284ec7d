#include "hvk3/finger_image_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hvk3/failure.h"
#include "hvk3/image_file.h"
#include "support/temporary_folder.h"
#include "tools/files.h"
#include "tools/finger_image_record_reader.h"
#include "tools/image_builder.h"

namespace hvk3::test {
namespace {

class FingerImageRecordFile : public testing::Test {
 protected:
  FingerImageRecord written(const Image& image, const RecordDetails& details = {}) const {
    write_image(image, m_cFolder.file("a.fir"), details);
    return FingerImageRecord(read_file(m_cFolder.file("a.fir")));
  }

  std::uint64_t level_of(int pixels_per_metre) const {
    return written(make_gray_image(2, 2, 7, {pixels_per_metre, pixels_per_metre}))
        .acquisition_level;
  }

  TemporaryFolder m_cFolder;
  const Image m_cImage = make_image(3, 2, [](int x, int y) { return 200 + 10 * y + x; });
  const Levels m_vLevels = {200, 201, 202, 210, 211, 212};
};

TEST_F(FingerImageRecordFile, NamesItsFormatAndEdition) {
  const FingerImageRecord record = written(m_cImage);
  EXPECT_EQ(record.format, std::string("FIR\0", 4));
  EXPECT_EQ(record.version, std::string("010\0", 4));
}

TEST_F(FingerImageRecordFile, HoldsTheRowsFromTheTopWithoutPadding) {
  const FingerImageRecord record = written(m_cImage);
  EXPECT_EQ(record.compression, 0U);
  EXPECT_EQ(record.width, 3U);
  EXPECT_EQ(record.height, 2U);
  EXPECT_EQ(record.length, 32U + 14 + 6);
  EXPECT_EQ(record.levels(), m_vLevels);
}

TEST_F(FingerImageRecordFile, HoldsThemAsPngOnRequest) {
  const FingerImageRecord record = written(m_cImage, {.compression = eRecordCompression::Png});
  EXPECT_EQ(record.compression, 5U);
  EXPECT_EQ(record.width, 3U);
  EXPECT_EQ(record.height, 2U);
  EXPECT_EQ(record.levels(), m_vLevels);
}

TEST_F(FingerImageRecordFile, TellsTheResolutionInPixelsPerCentimetre) {
  const FingerImageRecord record = written(m_cImage);
  EXPECT_EQ(record.scale_units, 2U);
  EXPECT_EQ(record.scan_resolution_x, 197U);
  EXPECT_EQ(record.scan_resolution_y, 197U);
  EXPECT_EQ(record.image_resolution_x, 197U);
  EXPECT_EQ(record.image_resolution_y, 197U);
  EXPECT_EQ(record.pixel_depth, 8U);
}

TEST_F(FingerImageRecordFile, ClaimsTheLevelThatItsResolutionAllows) {
  EXPECT_EQ(level_of(39370), 40U);
  EXPECT_EQ(level_of(29528), 35U);
  EXPECT_EQ(level_of(19685), 30U);
  EXPECT_EQ(level_of(19640), 20U);
  EXPECT_EQ(level_of(9700), 10U);
}

TEST_F(FingerImageRecordFile, ClaimsTheLevelOfTheCoarserDirection) {
  EXPECT_EQ(written(make_gray_image(2, 2, 7, {39370, 19685})).acquisition_level, 30U);
}

TEST_F(FingerImageRecordFile, SaysOfItsFingerOnlyThatItIsOne) {
  const FingerImageRecord record = written(m_cImage);
  EXPECT_EQ(record.capture_device, 0U);
  EXPECT_EQ(record.fingers, 1U);
  EXPECT_EQ(record.views, 1U);
  EXPECT_EQ(record.view, 1U);
  EXPECT_EQ(record.position, 0U);
  EXPECT_EQ(record.quality, 254U);
  EXPECT_EQ(record.impression, 0U);
  EXPECT_EQ(record.reserved + record.finger_reserved, 0U);
}

TEST_F(FingerImageRecordFile, TellsWhatItIsTold) {
  const FingerImageRecord record = written(m_cImage, {.position = eFingerPosition::LeftLittle,
                                                      .impression = eImpression::LiveRolled,
                                                      .quality = 87,
                                                      .device_id = 0x1234});
  EXPECT_EQ(record.position, 10U);
  EXPECT_EQ(record.impression, 1U);
  EXPECT_EQ(record.quality, 87U);
  EXPECT_EQ(record.capture_device, 0x1234U);
}

TEST_F(FingerImageRecordFile, RefusesAnImageThatIsTooLargeForOne) {
  EXPECT_EQ(written(make_gray_image(65535, 1, 7)).width, 65535U);
  EXPECT_THROW(written(make_gray_image(65536, 1, 7)), Failure);
  EXPECT_EQ(m_cFolder.count(), 1);
}

TEST_F(FingerImageRecordFile, ReportsAFullDisk) {
  std::FILE* const full = std::fopen("/dev/full", "wb");
  ASSERT_NE(full, nullptr);
  std::setvbuf(full, nullptr, _IONBF, 0);
  EXPECT_FALSE(write_finger_image_record(m_cImage, {}, full));
  std::fclose(full);
}

}  // namespace
}  // namespace hvk3::test
