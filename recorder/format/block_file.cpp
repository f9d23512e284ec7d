#include "recorder/format/block_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "recorder/format/check_sum.h"

namespace Osv::recorder {
namespace {

// Frames are noise to a good part: more effort takes time from the capture and wins little.
constexpr int kEffort = 1;

constexpr std::size_t kHeadSize = 3 * sizeof(std::uint32_t);
constexpr std::size_t kSumPosition = 2 * sizeof(std::uint32_t);

[[noreturn]] void throw_system_error(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::uint32_t sum_of(const unsigned char* head, const unsigned char* stored, std::size_t size) {
  boost::crc_32_type sum;
  sum.process_bytes(head, kSumPosition);
  sum.process_bytes(stored, size);
  return sum.checksum();
}

}  // namespace

Descriptor::~Descriptor() {
  if (m_nNumber >= 0) {
    ::close(m_nNumber);
  }
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : m_nNumber(std::exchange(other.m_nNumber, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(m_nNumber, other.m_nNumber);
  return *this;
}

Descriptor beyond_the_standard_ones(int number) {
  if (number < 0 || number > STDERR_FILENO) {
    return Descriptor(number);
  }
  const Descriptor standard(number);
  return Descriptor(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

struct BlockWriter::Compressor {
  std::unique_ptr<ZSTD_CCtx, decltype(&ZSTD_freeCCtx)> context{ZSTD_createCCtx(), &ZSTD_freeCCtx};
};

BlockWriter::BlockWriter(Descriptor file)
    : m_cFile(std::move(file)), m_pCompressor(std::make_unique<Compressor>()) {
  if (m_pCompressor->context == nullptr) {
    throw std::bad_alloc();
  }
}

BlockWriter::~BlockWriter() = default;

void BlockWriter::write_prologue() {
  Bytes prologue;
  append(prologue, kMagic, sizeof(kMagic));
  append_number(prologue, kVersion);
  put(prologue);
}

void BlockWriter::write(const Bytes& content) {
  if (content.size() > kLargestBlock) {
    throw std::length_error("an entry of " + std::to_string(content.size()) + " bytes");
  }
  m_vStored.resize(kHeadSize + ZSTD_compressBound(content.size()));
  const std::size_t stored =
      ZSTD_compressCCtx(m_pCompressor->context.get(), m_vStored.data() + kHeadSize,
                        m_vStored.size() - kHeadSize, content.data(), content.size(), kEffort);
  if (ZSTD_isError(stored) != 0) {
    throw std::bad_alloc();  // nothing else can fail
  }
  m_vStored.resize(kHeadSize + stored);
  const std::array<std::uint32_t, 2> sizes = {static_cast<std::uint32_t>(content.size()),
                                              static_cast<std::uint32_t>(stored)};
  std::memcpy(m_vStored.data(), sizes.data(), sizeof(sizes));
  const std::uint32_t sum = sum_of(m_vStored.data(), m_vStored.data() + kHeadSize, stored);
  std::memcpy(m_vStored.data() + kSumPosition, &sum, sizeof(sum));
  put(m_vStored);
}

/// All bytes or, on a full disk, none. Beyond the size that files may have, a write would send a
/// signal that ends the program.
void BlockWriter::put(const Bytes& bytes) {
  struct stat before = {};
  struct rlimit limit = {};
  if (::fstat(m_cFile.get(), &before) != 0 || ::getrlimit(RLIMIT_FSIZE, &limit) != 0) {
    throw_system_error("fstat");
  }
  if (static_cast<rlim_t>(before.st_size) + bytes.size() > limit.rlim_cur) {
    errno = EFBIG;
    throw_system_error("write");
  }
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t now = ::write(m_cFile.get(), bytes.data() + written, bytes.size() - written);
    if (now < 0 && errno != EINTR) {
      const int error = errno;
      static_cast<void>(::ftruncate(m_cFile.get(), before.st_size) == 0);
      throw std::system_error(error, std::generic_category(), "write");
    }
    written += now < 0 ? 0 : static_cast<std::size_t>(now);
  }
}

struct BlockReader::Decompressor {
  std::unique_ptr<ZSTD_DCtx, decltype(&ZSTD_freeDCtx)> context{ZSTD_createDCtx(), &ZSTD_freeDCtx};
};

struct BlockReader::BlockHead {
  std::uint64_t position = 0;
  std::uint32_t content = 0;
  std::uint32_t stored = 0;
};

BlockReader::BlockReader(const std::string& path)
    : m_cFile(beyond_the_standard_ones(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))),
      m_sPath(path),
      m_pDecompressor(std::make_unique<Decompressor>()) {
  struct stat status = {};
  if (m_cFile.get() < 0 || ::fstat(m_cFile.get(), &status) != 0) {
    throw DamagedRecording(path + ": " + std::generic_category().message(errno));
  }
  if (!S_ISREG(status.st_mode)) {
    throw DamagedRecording(path + " is no file");
  }
  if (m_pDecompressor->context == nullptr) {
    throw std::bad_alloc();
  }
  m_nSize = static_cast<std::uint64_t>(status.st_size);
  std::array<unsigned char, kPrologueSize> prologue = {};
  if (get(0, prologue.data(), prologue.size()) != prologue.size() ||
      !std::equal(std::begin(kMagic), std::end(kMagic), prologue.begin())) {
    throw DamagedRecording(path + " is no recording");
  }
  std::uint32_t version = 0;
  std::memcpy(&version, prologue.data() + sizeof(kMagic), sizeof(version));
  if (version != kVersion) {
    throw DamagedRecording(path + " is a recording of version " + std::to_string(version) +
                           ", this program reads version " + std::to_string(kVersion));
  }
}

BlockReader::~BlockReader() = default;

std::size_t BlockReader::get(std::uint64_t position, void* target, std::size_t size) {
  std::size_t got = 0;
  while (got < size) {
    const ssize_t now = ::pread(m_cFile.get(), static_cast<char*>(target) + got, size - got,
                                static_cast<off_t>(position + got));
    if (now == 0) {
      break;
    }
    if (now < 0 && errno != EINTR) {
      throw DamagedRecording(m_sPath + ": " + std::generic_category().message(errno));
    }
    got += now < 0 ? 0 : static_cast<std::size_t>(now);
  }
  return got;
}

/// Reads what is stored of a block. @return false when the file ends before it or within it
bool BlockReader::load(std::uint64_t position, BlockHead& head) {
  std::array<unsigned char, kHeadSize> front = {};
  if (get(position, front.data(), front.size()) != front.size()) {
    return false;
  }
  ByteReader reader(front);
  head = {position, reader.number<std::uint32_t>(), reader.number<std::uint32_t>()};
  if (head.content > kLargestBlock || head.stored > ZSTD_compressBound(kLargestBlock)) {
    damaged(position, "is larger than any");
  }
  if (head.stored > m_nSize - position - kHeadSize) {
    return false;
  }
  m_vStored.resize(head.stored);
  if (get(position + kHeadSize, m_vStored.data(), m_vStored.size()) != m_vStored.size()) {
    return false;
  }
  if (sum_of(front.data(), m_vStored.data(), m_vStored.size()) != reader.number<std::uint32_t>()) {
    damaged(position, "has a wrong check sum");
  }
  return true;
}

/// Takes the front of what is loaded out of its compression.
void BlockReader::unpack(const BlockHead& head, std::size_t most, Bytes& content) {
  constexpr int kLargestWindowLog = 25;
  ZSTD_DCtx* const context = m_pDecompressor->context.get();
  ZSTD_DCtx_reset(context, ZSTD_reset_session_only);
  ZSTD_DCtx_setParameter(context, ZSTD_d_windowLogMax, kLargestWindowLog);
  content.resize(std::min<std::size_t>(head.content, most));
  ZSTD_inBuffer in = {m_vStored.data(), m_vStored.size(), 0};
  ZSTD_outBuffer out = {content.data(), content.size(), 0};
  while (out.pos < out.size) {
    const std::size_t before = in.pos + out.pos;
    const std::size_t hint = ZSTD_decompressStream(context, &out, &in);
    if (ZSTD_isError(hint) != 0) {
      damaged(head.position, std::string("can't be decompressed: ") + ZSTD_getErrorName(hint));
    }
    if (in.pos + out.pos == before || (hint == 0 && out.pos < out.size)) {
      damaged(head.position, "is shorter than it says");
    }
  }
}

bool BlockReader::next(Bytes& content, std::size_t most) {
  if (m_nPosition >= m_nSize) {
    return false;
  }
  BlockHead head;
  if (!load(m_nPosition, head)) {
    m_bTorn = true;
    return false;
  }
  unpack(head, most, content);
  m_nPosition += kHeadSize + head.stored;
  return true;
}

void BlockReader::read(std::uint64_t position, Bytes& content) {
  BlockHead head;
  if (!load(position, head)) {
    damaged(position, "is gone");
  }
  unpack(head, kLargestBlock, content);
}

void BlockReader::damaged(std::uint64_t position, const std::string& what) const {
  throw DamagedRecording(m_sPath + " is damaged: the block at byte " + std::to_string(position) +
                         ' ' + what);
}

}  // namespace Osv::recorder
