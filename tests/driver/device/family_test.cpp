#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "driver/calibration/calibration_header.h"
#include "driver/device/device_fixture.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t kLengthPosition = 20;
constexpr std::size_t kMemorySize = 4096;
const std::string kSignature("CAL\0GEO\0", 8);

using Bytes = std::vector<unsigned char>;

/// An extended memory with a block whose payload is little more than its signature.
Bytes memory_with(const std::string& description) {
  const std::string payload = kSignature + "more";
  const std::string revision(ClKR9CalibrationHeader::kRevisionSize, 'r');
  ClKR9CalibrationHeader header;
  header.PutCalibrationData(reinterpret_cast<const unsigned char*>(payload.data()),
                            static_cast<unsigned int>(payload.size()),
                            reinterpret_cast<const unsigned char*>(revision.data()),
                            description.c_str());
  Bytes memory = header.Block();
  memory.resize(kMemorySize);
  return memory;
}

void write(Bytes& memory, std::size_t position, const std::string& bytes) {
  std::copy(bytes.begin(), bytes.end(), memory.begin() + static_cast<std::ptrdiff_t>(position));
}

class FamilyTest : public OpenDeviceTest {
 protected:
  bool is_one() { return m_device.IsKR9Scanner(nullptr); }

  bool is_one_with(const Bytes& memory) {
    bench.set_memory(0, memory);
    return is_one();
  }

  bool is_one_with_description_of(std::size_t length) {
    return is_one_with(memory_with(std::string(length, 'd')));
  }

  /// From now on the memory's first read gives one answer, and each later one the other.
  void answer_differently(const Bytes& first, const Bytes& later) {
    s_answers = {first, later};
    m_device.table().ftrScanRestoreExtMemory = [](ScannerHandle, void* data, unsigned long offset,
                                                  std::uint32_t size) {
      const auto begin = s_answers.front().begin() + static_cast<std::ptrdiff_t>(offset);
      std::copy_n(begin, size, static_cast<unsigned char*>(data));
      s_answers.front() = s_answers.back();
      return 1;
    };
  }

 private:
  inline static std::array<Bytes, 2> s_answers;
};

TEST_F(FamilyTest, AsksForModelMemorySizeAndTheFirst46Bytes) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(is_one()); }),
              ElementsAre("ftrScanGetDeviceInfo(handle 2, buffer) = 1",
                          "ftrScanGetExtMemorySize(handle 2, buffer) = 1",
                          "ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 46) = 1"));
}

TEST_F(FamilyTest, TakesTheHandleGivenInPlaceOfTheOpenDevice) {
  bench.plug_in(7, {.model = 2});
  const ScannerHandle other = m_device.table().ftrScanOpenDeviceOnInterface(7);
  EXPECT_FALSE(m_device.IsKR9Scanner(other));
  EXPECT_TRUE(is_one());
}

TEST_F(FamilyTest, GivesTheLibraryAZeroedRecordOfSize9) {
  static ftrScanDeviceInfoRecord given;
  m_device.table().ftrScanGetDeviceInfo = [](ScannerHandle, ftrScanDeviceInfoRecord* info) {
    given = *info;
    info->nModel = 1;
    return 1;
  };
  EXPECT_TRUE(is_one());
  EXPECT_EQ(given.nSize, 9U);
  EXPECT_EQ(given.nModel, 0);
  EXPECT_THAT(given.anReserved, ElementsAre(0, 0, 0, 0));
}

TEST_F(FamilyTest, GivesTheLibraryAZeroedBufferForTheFirstRead) {
  static Bytes given;
  m_device.table().ftrScanRestoreExtMemory = [](ScannerHandle, void* data, unsigned long,
                                                std::uint32_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    given.assign(bytes, bytes + size);
    return 0;
  };
  EXPECT_FALSE(is_one());
  EXPECT_EQ(given, Bytes(46, 0));
}

TEST_F(FamilyTest, AcceptsModels1And4Only) {
  std::vector<unsigned int> accepted;
  for (unsigned int model = 0; model < 256; ++model) {
    bench.plug_in(1, {.model = static_cast<unsigned char>(model)});
    if (m_device.IsKR9Scanner(1)) {
      accepted.push_back(model);
    }
  }
  EXPECT_THAT(accepted, ElementsAre(1, 4));
}

TEST_F(FamilyTest, ReadsNothingMoreOfAnotherModel) {
  bench.plug_in(1, {.model = 3});
  m_device.ftrHandle = m_device.table().ftrScanOpenDeviceOnInterface(1);
  EXPECT_THAT(calls_of([&] { EXPECT_FALSE(is_one()); }),
              ElementsAre("ftrScanGetDeviceInfo(handle 3, buffer) = 1"));
}

TEST_F(FamilyTest, FailsWithoutTheModel) {
  bench.set_faults("ftrScanGetDeviceInfo fails with 5");
  EXPECT_THAT(calls_of([&] { EXPECT_FALSE(is_one()); }),
              ElementsAre("ftrScanGetDeviceInfo(handle 2, buffer) = 0"));
}

TEST_F(FamilyTest, FailsWithALibraryOfLevel0BehindTheModel) {
  m_device.table().m_nApiLevel = 0;
  EXPECT_THAT(calls_of([&] { EXPECT_FALSE(is_one()); }),
              ElementsAre("ftrScanGetDeviceInfo(handle 2, buffer) = 1"));
}

TEST_F(FamilyTest, FailsWithoutExtendedMemory) {
  for (const char* const fault :
       {"ftrScanGetExtMemorySize gives 0", "ftrScanGetExtMemorySize gives -1",
        "ftrScanGetExtMemorySize fails with 8"}) {
    bench.set_faults(fault);
    bench.clear_journal();
    EXPECT_FALSE(is_one()) << fault;
    EXPECT_THAT(journal("ftrScanRestoreExtMemory"), IsEmpty());
  }
}

TEST_F(FamilyTest, FailsWhenTheMemoryCantBeRead) {
  bench.set_faults("ftrScanRestoreExtMemory fails with 87");
  EXPECT_FALSE(is_one());
}

TEST_F(FamilyTest, FailsForABlockOfAnotherVersion) {
  for (const int version : {0, 2, 255}) {
    Bytes memory = memory_with("");
    memory[0] = static_cast<unsigned char>(version);
    EXPECT_FALSE(is_one_with(memory));
  }
}

TEST_F(FamilyTest, FailsForEachByteOfTheSignatureThatDiffers) {
  for (std::size_t i = 0; i < kSignature.size(); ++i) {
    Bytes memory = memory_with("simulator");
    memory[25 + 9 + i] ^= 0x20;
    EXPECT_FALSE(is_one_with(memory)) << "byte " << i;
  }
}

TEST_F(FamilyTest, LooksAtNothingBehindTheSignature) {
  Bytes memory = memory_with("simulator");
  std::fill(memory.begin() + 25 + 9 + 8, memory.end(), 0xEE);
  EXPECT_TRUE(is_one_with(memory));
}

TEST_F(FamilyTest, ReadsOnceForADescriptionOf13Bytes) {
  EXPECT_TRUE(is_one_with_description_of(13));
  EXPECT_THAT(journal("ftrScanRestoreExtMemory"),
              ElementsAre("ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 46) = 1"));
}

TEST_F(FamilyTest, ReadsAllOfItAgainForADescriptionOf14Bytes) {
  EXPECT_TRUE(is_one_with_description_of(14));
  EXPECT_THAT(journal("ftrScanRestoreExtMemory"),
              ElementsAre("ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 46) = 1",
                          "ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 47) = 1"));
}

TEST_F(FamilyTest, AcceptsADescriptionOfUpTo127Bytes) {
  EXPECT_TRUE(is_one_with_description_of(0));
  EXPECT_TRUE(is_one_with_description_of(127));
  EXPECT_EQ(journal("ftrScanRestoreExtMemory").back(),
            "ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 160) = 1");
}

TEST_F(FamilyTest, FailsWhenTheSecondReadFails) {
  bench.set_memory(0, memory_with(std::string(14, 'd')));
  bench.set_faults("ftrScanRestoreExtMemory call 2 fails with 87");
  EXPECT_FALSE(is_one());
}

TEST_F(FamilyTest, GoesByTheLengthOfTheFirstReadWhateverTheSecondOneGives) {
  for (const int other : {0x80, 0x7F, 0x00}) {
    const Bytes first = memory_with(std::string(14, 'd'));
    Bytes later = first;
    later[kLengthPosition] = static_cast<unsigned char>(other);
    answer_differently(first, later);
    EXPECT_TRUE(is_one()) << other;
  }
}

TEST_F(FamilyTest, FailsForAMemoryThatEndsRightBehindTheSignature) {
  bench.set_memory(0, memory_with("simulator"));
  bench.set_faults("ftrScanGetExtMemorySize gives 42");  // 9 + 33
  EXPECT_FALSE(is_one());
}

TEST_F(FamilyTest, AcceptsAMemoryOfOneByteMore) {
  bench.set_memory(0, memory_with("simulator"));
  bench.set_faults("ftrScanGetExtMemorySize gives 43");
  EXPECT_TRUE(is_one());
}

TEST_F(FamilyTest, MakesNoSecondReadForAMemoryThatIsTooSmall) {
  bench.set_memory(0, memory_with(std::string(14, 'd')));
  bench.set_faults("ftrScanGetExtMemorySize gives 47");
  EXPECT_FALSE(is_one());
  EXPECT_EQ(bench.count("ftrScanRestoreExtMemory"), 1U);
}

TEST_F(FamilyTest, FailsForEveryDescriptionOf128To255Bytes) {
  for (std::size_t length = 128; length <= 255; ++length) {
    EXPECT_FALSE(is_one_with_description_of(length)) << length;
  }
}

TEST_F(FamilyTest, FailsForADescriptionOf128To222BytesWhereverASignatureStands) {
  for (const int length : {128, 222}) {
    Bytes memory = memory_with("");
    for (std::size_t position = 24; position + 8 < kMemorySize; position += 8) {
      write(memory, position, kSignature);
    }
    memory[kLengthPosition] = static_cast<unsigned char>(length);
    EXPECT_FALSE(is_one_with(memory));
  }
}

TEST_F(FamilyTest, TakesTheLengthByteAsSignedAndFindsASignatureInFrontOfThePayload) {
  Bytes memory = memory_with(std::string(255, 'd'));
  write(memory, 24, kSignature);  // 255 is -1, and -1 + 25 is 24
  EXPECT_TRUE(is_one_with(memory));
}

TEST_F(FamilyTest, FindsASignatureInTheDateForALengthByteOf232) {
  Bytes memory = memory_with(std::string(232, 'd'));
  write(memory, 1, kSignature);  // 232 is -24, and -24 + 25 is 1
  EXPECT_TRUE(is_one_with(memory));
}

TEST_F(FamilyTest, LogsNothingWhenItFails) {
  EXPECT_THAT(lines_of([&] { EXPECT_FALSE(is_one_with(Bytes(kMemorySize))); }), IsEmpty());
}

TEST_F(FamilyTest, TellsWhatItReadOfAScannerOfTheFamily) {
  const FamilyFindings findings = m_device.Family(nullptr);
  EXPECT_EQ(findings.result, eFamily::Member);
  EXPECT_EQ(findings.model, 1);
  EXPECT_EQ(findings.memorySize, bench.memory(0).size());
  EXPECT_EQ(findings.blockVersion, 1);
  EXPECT_EQ(findings.descriptionLength, 9);
}

TEST_F(FamilyTest, TellsNothingOfStepsThatItDidNotReach) {
  bench.plug_in(1, {.model = 3});
  const FamilyFindings findings = m_device.Family(1);
  EXPECT_EQ(findings.model, 3);
  EXPECT_FALSE(findings.memorySize.has_value());
  EXPECT_FALSE(findings.blockVersion.has_value());
  EXPECT_FALSE(findings.descriptionLength.has_value());
}

TEST_F(FamilyTest, NamesTheStepAtWhichADeviceFails) {
  struct Row {
    const char* faults;
    eFamily expected;
  };
  bench.set_memory(0, memory_with(std::string(14, 'd')));
  for (const Row& row :
       {Row{"ftrScanGetDeviceInfo fails with 5", eFamily::NoModel},
        Row{"ftrScanGetExtMemorySize fails with 8", eFamily::NoMemorySize},
        Row{"ftrScanGetExtMemorySize gives 0", eFamily::NoMemory},
        Row{"ftrScanRestoreExtMemory call 1 fails with 87", eFamily::MemoryUnreadable},
        Row{"ftrScanGetExtMemorySize gives 47", eFamily::BlockTooLong},
        Row{"ftrScanRestoreExtMemory call 2 fails with 87", eFamily::BlockUnreadable},
        Row{"", eFamily::Member}}) {
    bench.set_faults(row.faults);
    EXPECT_EQ(m_device.Family(nullptr).result, row.expected) << row.faults;
  }
}

TEST_F(FamilyTest, NamesTheStepAtWhichAMemoryFails) {
  Bytes other_version = memory_with("");
  other_version[0] = 2;
  Bytes no_signature = memory_with("");
  no_signature[25] = 'X';
  bench.set_memory(0, other_version);
  EXPECT_EQ(m_device.Family(nullptr).result, eFamily::OtherBlockVersion);
  bench.set_memory(0, no_signature);
  EXPECT_EQ(m_device.Family(nullptr).result, eFamily::NoSignature);
}

TEST_F(FamilyTest, NamesTheModelOrTheLibraryAsTheReason) {
  bench.plug_in(1, {.model = 2});
  EXPECT_EQ(m_device.Family(1).result, eFamily::OtherModel);
  m_device.table().m_nApiLevel = 0;
  EXPECT_EQ(m_device.Family(nullptr).result, eFamily::BaseApi);
}

TEST_F(FamilyTest, NamesADeviceThatCantBeOpened) {
  EXPECT_EQ(m_device.Family(9).result, eFamily::NotOpened);
}

TEST_F(FamilyTest, OfAnInterfaceUsesAHandleOfItsOwn) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.IsKR9Scanner(0)); }),
              ElementsAre("ftrScanOpenDeviceOnInterface(interface 0) = handle 3",
                          "ftrScanGetDeviceInfo(handle 3, buffer) = 1",
                          "ftrScanGetExtMemorySize(handle 3, buffer) = 1",
                          "ftrScanRestoreExtMemory(handle 3, buffer, offset 0, size 46) = 1",
                          "ftrScanCloseDevice(handle 3) = 1"));
}

TEST_F(FamilyTest, OfAnInterfaceClosesItsHandleOfADeviceThatIsNone) {
  bench.plug_in(1, {.model = 2});
  EXPECT_THAT(calls_of([&] { EXPECT_FALSE(m_device.IsKR9Scanner(1)); }),
              ElementsAre("ftrScanOpenDeviceOnInterface(interface 1) = handle 3",
                          "ftrScanGetDeviceInfo(handle 3, buffer) = 1",
                          "ftrScanCloseDevice(handle 3) = 1"));
}

TEST_F(FamilyTest, OfAnInterfaceFailsForADeviceThatCantBeOpened) {
  EXPECT_THAT(calls_of([&] { EXPECT_FALSE(m_device.IsKR9Scanner(9)); }),
              ElementsAre("ftrScanOpenDeviceOnInterface(interface 9) = null"));
}

}  // namespace
}  // namespace Osv::testing_support
