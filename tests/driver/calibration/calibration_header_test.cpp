#include "driver/calibration/calibration_header.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "foundation/exceptions.h"
#include "support/failure_of.h"

namespace {

/// 7 March 2011, 23:30:00 UTC.
constexpr std::time_t kLateEvening = 1299540600;

std::time_t& present() {
  static std::time_t seconds = kLateEvening;
  return seconds;
}

}  // namespace

/// The test program's own clock.
extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* out) noexcept {
  if (out != nullptr) {
    *out = present();
  }
  return present();
}

namespace Osv {
namespace {

using testing_support::failure_of;

using Bytes = std::vector<unsigned char>;

constexpr char kRevision[] = "0123456\00089abcdef";
static_assert(sizeof(kRevision) == 17);

/// A memory that is read from the front on.
class MemoryStream : public CXStream {
 public:
  explicit MemoryStream(Bytes bytes) : m_bytes(std::move(bytes)) {}

  void WriteRaw(const void* /*data*/, unsigned long /*count*/) override {}

  void ReadRaw(void* data, unsigned long count) override {
    if (count > m_bytes.size() - m_nPosition) {
      throw CXOtherException("read beyond the memory", 99);
    }
    std::memcpy(data, m_bytes.data() + m_nPosition, count);
    m_nPosition += count;
  }

 private:
  Bytes m_bytes;
  unsigned long m_nPosition = 0;
};

Bytes joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

Bytes characters(const std::string& text) { return {text.begin(), text.end()}; }

Bytes revision() { return {kRevision, kRevision + 16}; }

Bytes little_endian(std::uint32_t number) {
  return {static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8),
          static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 24)};
}

/// A block as it stands in a scanner's memory.
Bytes block(const std::string& description, std::uint32_t size, const Bytes& payload) {
  return joined({{1, 31, 12, 111},
                 revision(),
                 {static_cast<unsigned char>(description.size())},
                 characters(description),
                 little_endian(size),
                 payload});
}

class CalibrationHeader : public testing::Test {
 protected:
  CalibrationHeader() {
    setenv("TZ", "UTC0", 1);
    tzset();
    present() = kLateEvening;
  }

  void read(const Bytes& memory) {
    MemoryStream stream(memory);
    m_header.ReadFromStream(&stream, memory.size(), &m_pData, m_nSize);
  }

  void put(const Bytes& payload, const char* description) {
    m_header.PutCalibrationData(payload.data(), static_cast<unsigned int>(payload.size()),
                                revision().data(), description);
  }

  Bytes payload() const { return {m_pData, m_pData + m_nSize}; }

  void expect_format_failure(const Bytes& memory, const char* text) {
    const auto failure = failure_of<ClHeaderFormatException>([&] { read(memory); });
    EXPECT_EQ(failure.GetErrorNumber(), -1);
    EXPECT_STREQ(failure.GetDescription(), text);
  }

  void expect_corrupt(const Bytes& memory) {
    expect_format_failure(memory, "The calibration data is corrupt.");
  }

  void expect_other_version(const Bytes& memory) {
    expect_format_failure(memory, "The calibration data are corrupt.");
  }

  ClKR9CalibrationHeader m_header;
  unsigned char m_untouched = 0;
  unsigned char* m_pData = &m_untouched;
  unsigned int m_nSize = 4711;
};

TEST_F(CalibrationHeader, ReadsABlockWithoutDescription) {
  read(block("", 3, {7, 8, 9}));
  EXPECT_EQ(m_pData, m_header.Block().data() + 25);
  EXPECT_EQ(payload(), (Bytes{7, 8, 9}));
  EXPECT_EQ(m_header.Description(), "");
}

TEST_F(CalibrationHeader, ReadsABlockWithDescription) {
  read(block("unit 7", 3, {7, 8, 9}));
  EXPECT_EQ(payload(), (Bytes{7, 8, 9}));
  EXPECT_EQ(m_header.Description(), "unit 7");
}

TEST_F(CalibrationHeader, ReadsABlockWithTheLongestDescription) {
  read(block(std::string(255, 'x'), 1, {7}));
  EXPECT_EQ(payload(), Bytes{7});
  EXPECT_EQ(m_header.Description(), std::string(255, 'x'));
}

TEST_F(CalibrationHeader, ReadsTheWholeMemoryAndIgnoresWhatLiesBehindTheBlock) {
  const Bytes memory = joined({block("d", 2, {7, 8}), Bytes(100, 0xFF)});
  read(memory);
  EXPECT_EQ(payload(), (Bytes{7, 8}));
  EXPECT_EQ(m_header.Block(), memory);
}

TEST_F(CalibrationHeader, GivesNoPayloadForSizeZero) {
  read(block("d", 0, {}));
  EXPECT_EQ(m_pData, nullptr);
  EXPECT_EQ(m_nSize, 0U);
}

TEST_F(CalibrationHeader, ReadsItsFields) {
  read(block("d", 0, {}));
  EXPECT_EQ(m_header.GetHeaderVersion(), "1");
  EXPECT_EQ(m_header.Date(), "31/12/2011");
  EXPECT_EQ(m_header.RevisionString(), std::string(kRevision, 16));
}

TEST_F(CalibrationHeader, WritesADateWithoutLeadingZeros) {
  Bytes memory = block("", 0, {});
  memory[1] = 7;
  memory[2] = 3;
  read(memory);
  EXPECT_EQ(m_header.Date(), "7/3/2011");
}

TEST_F(CalibrationHeader, ChangesNothingForAMemoryOfSizeZero) {
  read(block("d", 2, {7, 8}));
  const Bytes before = m_header.Block();
  const unsigned char* const data = m_pData;
  m_header.ReadFromStream(nullptr, 0, &m_pData, m_nSize);
  EXPECT_EQ(m_header.Block(), before);
  EXPECT_EQ(m_pData, data);
  EXPECT_EQ(m_nSize, 2U);
}

TEST_F(CalibrationHeader, RefusesAnotherVersion) {
  Bytes memory = block("", 1, {7});
  for (const unsigned char version : Bytes{0, 2, 255}) {
    memory[0] = version;
    expect_other_version(memory);
  }
}

TEST_F(CalibrationHeader, TellsAnotherVersionBeforeItLooksAtAnyLength) {
  expect_other_version({2});
  expect_other_version(Bytes(24, 2));
  Bytes memory = block("d", 3, {7, 8});
  memory[0] = 2;
  expect_other_version(memory);
}

TEST_F(CalibrationHeader, RefusesAMemoryThatIsTooShortForTheFields) {
  Bytes memory = block("", 0, {});
  for (memory.pop_back(); !memory.empty(); memory.pop_back()) {
    expect_corrupt(memory);
  }
}

TEST_F(CalibrationHeader, RefusesADescriptionThatLeavesNoRoomForTheSize) {
  Bytes memory = block("d", 0, {});
  memory[20] = 2;
  expect_corrupt(memory);
  memory[20] = 255;
  expect_corrupt(memory);
}

TEST_F(CalibrationHeader, RefusesAPayloadThatLiesBeyondTheMemory) {
  expect_corrupt(block("d", 3, {7, 8}));
  expect_corrupt(block("d", 0xFFFFFFFF, {7, 8}));
}

TEST_F(CalibrationHeader, LetsTheStreamsFailureThrough) {
  MemoryStream stream(Bytes(10));
  EXPECT_THROW(m_header.ReadFromStream(&stream, 11, &m_pData, m_nSize), CXOtherException);
  EXPECT_EQ(m_pData, &m_untouched);
  EXPECT_EQ(m_nSize, 4711U);
}

TEST_F(CalibrationHeader, ReadsOnFromBehindTheFirstRead) {
  const Bytes first = block("first", 1, {7});
  const Bytes second = block("other", 1, {8});
  MemoryStream stream(joined({first, second}));
  m_header.ReadFromStream(&stream, first.size(), &m_pData, m_nSize);
  EXPECT_EQ(m_header.Description(), "first");
  m_header.ReadFromStream(&stream, second.size(), &m_pData, m_nSize);
  EXPECT_EQ(m_header.Description(), "other");
  EXPECT_EQ(payload(), Bytes{8});
}

TEST_F(CalibrationHeader, CutsALongerBlockToTheSizeOfTheNextRead) {
  read(block("a long description", 2, {7, 8}));
  read(block("", 1, {9}));
  EXPECT_EQ(m_header.Block().size(), 26U);
  EXPECT_EQ(payload(), Bytes{9});
}

TEST_F(CalibrationHeader, BuildsABlockByteForByte) {
  put({7, 8, 9}, "unit 7");
  EXPECT_EQ(
      m_header.Block(),
      joined({{1, 7, 3, 111}, revision(), {6}, characters("unit 7"), {3, 0, 0, 0}, {7, 8, 9}}));
}

TEST_F(CalibrationHeader, BuildsABlockThatItCanRead) {
  for (const std::size_t length : {0U, 1U, 255U}) {
    const std::string description(length, 'd');
    put({7, 8, 9}, description.c_str());
    read(Bytes(m_header.Block()));
    EXPECT_EQ(payload(), (Bytes{7, 8, 9})) << length;
    EXPECT_EQ(m_header.Description(), description);
    EXPECT_EQ(m_header.RevisionString(), std::string(kRevision, 16));
  }
}

TEST_F(CalibrationHeader, BuildsABlockWithoutPayload) {
  m_header.PutCalibrationData(nullptr, 0, revision().data(), "d");
  EXPECT_EQ(m_header.Block().size(), 26U);
  EXPECT_EQ(m_header.Description(), "d");
}

TEST_F(CalibrationHeader, LeavesOutTheLengthByteWithoutADescription) {
  put({7, 8, 9}, nullptr);
  EXPECT_EQ(m_header.Block(), joined({{1, 7, 3, 111}, revision(), {3, 0, 0, 0}, {7, 8, 9}, {0}}));
}

TEST_F(CalibrationHeader, LeavesTheLastByteAsItWasWithoutADescription) {
  put({7, 8, 9, 10}, "");
  put({1, 2, 3, 4}, nullptr);
  EXPECT_EQ(m_header.Block()[28], 10);
}

TEST_F(CalibrationHeader, RefusesADescriptionOf256CharactersHalfway) {
  const std::string description(256, 'd');
  const auto failure = failure_of<ClCHeaderDesrcTooLongException>([&] {
    put({7, 8, 9}, description.c_str());
  });
  EXPECT_EQ(failure.GetErrorNumber(), -1);
  EXPECT_STREQ(failure.GetDescription(), "The description is too long.");
  EXPECT_EQ(m_header.Block(), joined({{1, 7, 3, 111}, revision(), Bytes(256 + 25 + 3 - 20, 0)}));
}

TEST_F(CalibrationHeader, CutsALongerBlockWhenItBuildsAShorterOne) {
  put(Bytes(100, 7), "a description");
  put({7}, "d");
  EXPECT_EQ(m_header.Block().size(), 27U);
  read(Bytes(m_header.Block()));
  EXPECT_EQ(payload(), Bytes{7});
}

TEST_F(CalibrationHeader, WritesEverythingAnewOverABlockOfTheSameSize) {
  put({1, 2, 3}, "old");
  present() += 24L * 60 * 60;
  m_header.PutCalibrationData(Bytes{4, 5, 6}.data(), 3, Bytes(16, 'r').data(), "new");
  EXPECT_EQ(
      m_header.Block(),
      joined({{1, 8, 3, 111}, Bytes(16, 'r'), {3}, characters("new"), {3, 0, 0, 0}, {4, 5, 6}}));
}

TEST_F(CalibrationHeader, RefusesAPayloadWhoseBlockWouldNotFitItsSize) {
  const unsigned char byte = 0;
  EXPECT_THROW(m_header.PutCalibrationData(&byte, 0xFFFFFFFF, revision().data(), "d"),
               CXMemoryAllocException);
}

TEST_F(CalibrationHeader, CalculatesTheSizeOfABlock) {
  EXPECT_EQ(m_header.CalculateSize(100, "abc"), 128U);
  EXPECT_EQ(m_header.CalculateSize(100, ""), 125U);
  EXPECT_EQ(m_header.CalculateSize(100, nullptr), 125U);
  EXPECT_EQ(m_header.CalculateSize(0xFFFFFFFF, "a"), 25U);
}

TEST_F(CalibrationHeader, WritesTheLocalDateAndMovesThePosition) {
  setenv("TZ", "EAST-1", 1);
  tzset();
  Bytes date(5, 99);
  unsigned long position = 1;
  m_header.SetDate(date, position);
  EXPECT_EQ(position, 4U);
  EXPECT_EQ(date, (Bytes{99, 8, 3, 111, 99}));
}

TEST_F(CalibrationHeader, KeepsTheLowBitsOfAFarYear) {
  present() = 5869540800;  // 31 December 2155
  Bytes date(3);
  unsigned long position = 0;
  m_header.SetDate(date, position);
  EXPECT_EQ(date, (Bytes{31, 12, 255}));
  present() += 24L * 60 * 60;
  position = 0;
  m_header.SetDate(date, position);
  EXPECT_EQ(date, (Bytes{1, 1, 0}));
}

TEST(Endianness, IsLittleOnThisMachine) { EXPECT_TRUE(SXEndian::m_fIsLittleEndianMachine); }

}  // namespace
}  // namespace Osv
