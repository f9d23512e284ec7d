#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "closed_libraries/scene.h"
#include "driver/calibration/calibration_header.h"
#include "driver/device/family.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"
#include "support/failure.h"
#include "support/memory.h"
#include "support/target.h"

/// @file
/// The scanner's extended memory, whatever it holds and answers: the family test, and the reader
/// and the writer of the calibration block.

namespace Osv::fuzz {
namespace {

using Memory = std::vector<std::uint8_t>;

constexpr int kFormatError = -1;

// A device that answers with the bytes of the run.

struct Device {
  bool tells_model = true;
  bool tells_size = true;
  unsigned int reads = 2;  ///< that succeed
  std::uint8_t model = 1;
  std::uint8_t level = 1;
  std::int32_t size = 0;    ///< of the memory, as it is told
  Memory memory;            ///< shorter than told: reads beyond fail
  std::uint8_t change = 0;  ///< what the second read adds to each byte
  unsigned int read = 0;
};

Device* g_device = nullptr;

std::int32_t tell_model(ScannerHandle /*handle*/, ftrScanDeviceInfoRecord* info) {
  require(info->nSize == sizeof(*info), "the record's size is set");
  info->nModel = g_device->model;
  return g_device->tells_model ? 1 : 0;
}

std::int32_t tell_size(ScannerHandle /*handle*/, std::int32_t* size) {
  *size = g_device->size;
  return g_device->tells_size ? 1 : 0;
}

std::int32_t read_memory(ScannerHandle /*handle*/, void* data, unsigned long offset,
                         std::uint32_t size) {
  Device& device = *g_device;
  const bool fits = offset <= device.memory.size() && size <= device.memory.size() - offset;
  if (device.read == device.reads || !fits) {
    return 0;
  }
  const auto add = static_cast<std::uint8_t>(device.change * device.read);
  std::transform(device.memory.data() + offset, device.memory.data() + offset + size,
                 static_cast<std::uint8_t*>(data),
                 [add](std::uint8_t byte) { return static_cast<std::uint8_t>(byte + add); });
  ++device.read;
  return 1;
}

Device read_device(Input& input) {
  const std::uint8_t flags = input.byte();
  Device device;
  device.tells_model = (flags & 1) == 0;
  device.tells_size = (flags & 2) == 0;
  device.reads = (flags & 4) == 0 ? 2 : (flags >> 3) % 2;
  device.level = (flags & 16) == 0 ? 1 : 0;
  device.change = (flags & 32) == 0 ? 0 : input.byte();
  device.model = input.byte();
  device.size = input.number<std::int32_t>();
  const Bytes rest = input.rest();
  device.memory.assign(rest.begin(), rest.end());
  return device;
}

/// The test in the words of its description: with a buffer of zeros, filled once or twice.
bool is_member(const Device& device) {
  const bool known = device.tells_model && (device.model == 1 || device.model == 4);
  if (!known || device.level == 0 || !device.tells_size || device.size <= 0) {
    return false;
  }
  constexpr std::size_t kFirstRead = 46;
  if (device.reads == 0 || device.memory.size() < kFirstRead || device.memory[0] != 1) {
    return false;
  }
  const std::int64_t length = static_cast<std::int8_t>(device.memory[20]);
  const auto end = static_cast<std::uint64_t>(length + 33);
  if (end >= static_cast<std::uint64_t>(device.size)) {
    return false;
  }
  const bool again = end > kFirstRead;
  if (again && (device.reads == 1 || device.memory.size() < end)) {
    return false;
  }
  constexpr std::array<std::uint8_t, 8> kSignature = {'C', 'A', 'L', 0, 'G', 'E', 'O', 0};
  const std::uint8_t add = again ? device.change : 0;
  for (std::int64_t i = 0; i < 8; ++i) {
    const std::int64_t at = length + 25 + i;
    const int found = at < 0 ? 0 : device.memory[static_cast<std::size_t>(at)] + add;
    if (static_cast<std::uint8_t>(found) != kSignature[static_cast<std::size_t>(i)]) {
      return false;
    }
  }
  return true;
}

void test_family(Device device) {
  Input nothing{Bytes()};
  scene().begin(nothing);  // a library whose functions are replaced
  g_device = &device;
  ClKR9APILib api;
  api.m_nApiLevel = device.level;
  api.ftrScanGetDeviceInfo = &tell_model;
  api.ftrScanGetExtMemorySize = &tell_size;
  api.ftrScanRestoreExtMemory = &read_memory;
  const FamilyFindings findings = TestFamily(api, nullptr);
  require(findings.result != eFamily::NotOpened, "a device that is open is tested");
  require((findings.result == eFamily::Member) == is_member(device), "a scanner is recognised");
  g_device = nullptr;
}

// The reader.

/// A memory that is read from its beginning on.
class Stream : public CXStream {
 public:
  explicit Stream(Bytes bytes) : m_bytes(bytes) {}
  void WriteRaw(const void* /*data*/, unsigned long /*count*/) override {}
  void ReadRaw(void* data, unsigned long count) override {
    if (count > m_bytes.size()) {
      errno = EIO;
      throw CXSystemException();
    }
    std::memcpy(data, m_bytes.data(), count);
    m_bytes = m_bytes.subspan(count);
  }

 private:
  Bytes m_bytes;
};

void compare_block(const ClKR9CalibrationHeader& header, Bytes block, const unsigned char* data,
                   unsigned int size) {
  constexpr std::size_t kFixed = 25;
  const std::size_t length = block[20];
  require(kFixed + length + size <= block.size(), "the payload lies within the memory");
  require((data == nullptr) == (size == 0), "an empty payload has no address");
  require(size == 0 || std::equal(data, data + size, block.data() + kFixed + length),
          "the payload is that of the block");
  require(header.GetHeaderVersion() == "1", "the version is 1");
  require(header.Description().size() == length, "the description has its length");
  require(header.RevisionString().size() == ClKR9CalibrationHeader::kRevisionSize,
          "the revision has 16 characters");
  require(header.Date() == std::to_string(block[1]) + '/' + std::to_string(block[2]) + '/' +
                               std::to_string(1900 + block[3]),
          "the date is that of the block");
}

/// Reads over what an earlier block left, from a memory of which `size` bytes are asked for.
void read_block(Input& input) {
  const std::size_t size = input.number<std::uint16_t>() % 2048;
  const bool is_new = input.below(2) == 0;
  const Bytes memory = input.rest();
  ClKR9CalibrationHeader header;
  const unsigned char revision[ClKR9CalibrationHeader::kRevisionSize] = {};
  if (!is_new) {
    header.PutCalibrationData(revision, sizeof(revision), revision, "an earlier block");
  }
  Stream stream(memory);
  unsigned char* data = nullptr;
  unsigned int found = 0;
  try {
    const auto failure = failure_of<ClHeaderFormatException>(
        [&] { header.ReadFromStream(&stream, size, &data, found); });
    if (failure) {
      require(failure->number == kFormatError, "a bad block has its number");
      require(failure->text == lx::error_text::CalibrationAreCorrupt ||
                  failure->text == lx::error_text::CalibrationIsCorrupt,
              "a bad block has one of its texts");
    } else if (size != 0) {
      compare_block(header, memory.first(size), data, found);
    }
  } catch (const CXSystemException& failure) {
    require(size > memory.size() && failure.GetErrorNumber() == EIO, "the memory ends early");
  }
}

// The writer.

Memory written(const std::string& text, Bytes payload, const unsigned char* revision) {
  ClKR9CalibrationHeader header;
  header.PutCalibrationData(payload.data(), static_cast<unsigned int>(payload.size()), revision,
                            text.c_str());
  Memory block = header.Block();
  std::fill_n(block.begin() + 1, 3, std::uint8_t{0});  // the date, which goes on
  return block;
}

void write_block(Input& input) {
  constexpr std::size_t kLongest = 255;
  const std::string given = input.text(input.number<std::uint16_t>() % 300);
  const std::string text = given.c_str();  // up to its first zero byte
  std::array<unsigned char, ClKR9CalibrationHeader::kRevisionSize> revision = {};
  input.fill(revision.data(), revision.size());
  const Bytes payload = input.rest();
  const auto failure = failure_of<ClCHeaderDesrcTooLongException>([&] {
    const Memory block = written_whole([&] { return written(text, payload, revision.data()); });
    Stream stream{Bytes(block)};
    ClKR9CalibrationHeader header;
    unsigned char* data = nullptr;
    unsigned int size = 0;
    header.ReadFromStream(&stream, block.size(), &data, size);
    require(Memory(data, data + size) == Memory(payload.begin(), payload.end()) &&
                header.Description() == text,
            "a block that was written is read back");
  });
  require(failure.has_value() == (text.size() > kLongest), "a long description is refused");
}

}  // namespace

/// The first byte chooses what is done.
void run(Input input) {
  constexpr unsigned int kSubjects = 3;
  switch (input.below(kSubjects)) {
    case 0:
      test_family(read_device(input));
      break;
    case 1:
      read_block(input);
      break;
    default:
      write_block(input);
  }
}

}  // namespace Osv::fuzz
