#include <gmock/gmock.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include "driver/device/device_fixture.h"
#include "foundation/exceptions.h"
#include "support/failure_of.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MemoryStream : public OpenDeviceTest {
 protected:
  void read(unsigned long count) { m_device.ReadRaw(m_bytes.data(), count); }
  void write(unsigned long count) { m_device.WriteRaw(m_bytes.data(), count); }

  std::vector<unsigned char> m_bytes = std::vector<unsigned char>(64, 'w');
};

TEST_F(MemoryStream, ReadsGoOnWhereTheLastOneEnded) {
  EXPECT_THAT(calls_of([&] {
                read(16);
                read(4);
              }),
              ElementsAre("ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 16) = 1",
                          "ftrScanRestoreExtMemory(handle 2, buffer, offset 16, size 4) = 1"));
  EXPECT_EQ(m_device.m_nReadPos, 20UL);
}

TEST_F(MemoryStream, WritesGoOnWhereTheLastOneEnded) {
  EXPECT_THAT(calls_of([&] {
                write(16);
                write(4);
              }),
              ElementsAre("ftrScanSaveExtMemory(handle 2, buffer, offset 0, size 16) = 1",
                          "ftrScanSaveExtMemory(handle 2, buffer, offset 16, size 4) = 1"));
  EXPECT_EQ(m_device.m_nWritePos, 20UL);
}

TEST_F(MemoryStream, ReadingAndWritingHavePositionsOfTheirOwn) {
  write(32);
  read(16);
  EXPECT_EQ(m_device.m_nReadPos, 16UL);
  EXPECT_EQ(m_device.m_nWritePos, 32UL);
}

TEST_F(MemoryStream, ReadsBackWhatWasWritten) {
  write(8);
  std::vector<unsigned char> bytes(8);
  m_device.ReadRaw(bytes.data(), bytes.size());
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "wwwwwwww");
}

TEST_F(MemoryStream, ResetPutsBothPositionsToZero) {
  write(32);
  read(16);
  m_device.ResetStream();
  EXPECT_EQ(m_device.m_nReadPos, 0UL);
  EXPECT_EQ(m_device.m_nWritePos, 0UL);
}

TEST_F(MemoryStream, CutsTheCountTo32BitsForTheLibraryAlone) {
  static std::vector<std::uint32_t> given;
  given.clear();
  const auto note = [](ScannerHandle, void*, unsigned long, std::uint32_t size) {
    given.push_back(size);
    return 1;
  };
  m_device.table().ftrScanRestoreExtMemory = note;
  m_device.table().ftrScanSaveExtMemory = note;
  read(0x100000005);
  write(0x700000009);
  EXPECT_THAT(given, ElementsAre(5U, 9U));
  EXPECT_EQ(m_device.m_nReadPos, 0x100000005UL);
  EXPECT_EQ(m_device.m_nWritePos, 0x700000009UL);
}

/// A way into the memory, and the library function behind it.
struct MemoryOperation {
  const char* name;
  const char* function;
  void (*run)(DeviceProbe& device, unsigned char* bytes);
};

class MemoryOperations : public OpenDeviceTest,
                         public ::testing::WithParamInterface<MemoryOperation> {
 protected:
  void run() { GetParam().run(m_device, m_frame.data()); }

  template <class Failure>
  Failure failure() {
    return failure_of<Failure>([&] { run(); });
  }

  void fail_with(const std::string& error) {
    bench.set_faults(std::string(GetParam().function) + " fails with " + error);
  }
};

using MemoryOfAnOlderLibrary = MemoryOperations;

TEST_P(MemoryOfAnOlderLibrary, IsRefusedWithNumber22) {
  m_device.table().m_nApiLevel = 0;
  bench.clear_journal();
  const auto refusal = failure<lx::ClKR9NOTImplException>();
  EXPECT_EQ(refusal.GetErrorNumber(), 22);
  EXPECT_STREQ(refusal.GetDescription(), "The scanner hardware version is not supported");
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_P(MemoryOfAnOlderLibrary, LetsTheMutexGoWhenItIsRefused) {
  m_device.table().m_nApiLevel = 0;
  EXPECT_THROW(run(), lx::ClKR9NOTImplException);
  EXPECT_FALSE(is_held(m_device.m_cScannerLock));
}

const MemoryOperation kReading = {"ReadRaw", "ftrScanRestoreExtMemory",
                                  [](auto& device, auto* bytes) { device.ReadRaw(bytes, 4); }};
const MemoryOperation kWriting = {"WriteRaw", "ftrScanSaveExtMemory",
                                  [](auto& device, auto* bytes) { device.WriteRaw(bytes, 4); }};
const MemoryOperation kAskingTheSize = {"GetEPROMSize", "ftrScanGetExtMemorySize",
                                        [](auto& device, auto*) {
                                          int size = 0;
                                          (void)device.GetEPROMSize(&size);
                                        }};

INSTANTIATE_TEST_SUITE_P(OfTheDevice, MemoryOfAnOlderLibrary,
                         ::testing::Values(kReading, kWriting, kAskingTheSize),
                         [](const auto& operation) { return operation.param.name; });

TEST_P(MemoryOperations, ThatFailWithCode8AreNotSupported) {
  fail_with("8");
  const auto refusal = failure<lx::ClKR9NOTImplException>();
  EXPECT_EQ(refusal.GetErrorNumber(), 22);
  EXPECT_STREQ(refusal.GetDescription(), "The scanner hardware version is not supported");
}

TEST_P(MemoryOperations, ThatFailWithAnyOtherCodeThrowTheSystemsError) {
  fail_with("87");
  errno = ENOSPC;
  EXPECT_EQ(failure<CXSystemException>().GetErrorNumber(), ENOSPC);
}

TEST_P(MemoryOperations, ThatFailLeaveThePositionsAndLetTheMutexGo) {
  run();
  const unsigned long read = m_device.m_nReadPos;
  const unsigned long written = m_device.m_nWritePos;
  fail_with("87");
  EXPECT_THROW(run(), CXSystemException);
  EXPECT_EQ(m_device.m_nReadPos, read);
  EXPECT_EQ(m_device.m_nWritePos, written);
  EXPECT_FALSE(is_held(m_device.m_cScannerLock));
}

INSTANTIATE_TEST_SUITE_P(OfTheDevice, MemoryOperations, ::testing::Values(kReading, kWriting),
                         [](const auto& operation) { return operation.param.name; });

TEST_F(MemoryStream, TellsTheSizeOfTheMemory) {
  int size = 0;
  EXPECT_TRUE(m_device.GetEPROMSize(&size));
  EXPECT_EQ(static_cast<std::size_t>(size), bench.memory(0).size());
}

TEST_F(MemoryStream, TellsThatTheSizeCantBeRead) {
  int size = 0;
  bench.set_faults("ftrScanGetExtMemorySize fails with 5");
  EXPECT_FALSE(m_device.GetEPROMSize(&size));
}

}  // namespace
}  // namespace Osv::testing_support
