#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "recorder/format/bytes.h"

/// @file
/// The blocks of a recording. Each is compressed for itself and has a check sum, so that what comes
/// behind a damage, or is missing, leaves the ones before it readable.
///
/// A file begins with `kMagic` and a version. A block: size of its content, size as it is stored,
/// check sum of the two sizes and of the stored bytes (32 bits each), the stored bytes.

namespace Osv::recorder {

inline constexpr char kMagic[8] = {'H', 'V', 'K', '3', 'R', 'E', 'C', '\n'};
inline constexpr std::uint32_t kVersion = 1;
inline constexpr std::size_t kPrologueSize = sizeof(kMagic) + sizeof(kVersion);

/// Most bytes of one piece of an answer, such as an image, and of a block's content.
/// @{
inline constexpr std::size_t kLargestPiece = std::size_t{8} * 1024 * 1024;
inline constexpr std::size_t kLargestBlock = kLargestPiece + 8192;
/// @}

/// A descriptor, closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : m_nNumber(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;

  int get() const { return m_nNumber; }

 private:
  int m_nNumber;
};

/// The descriptor moved out of the way of the standard ones: a program that has closed these must
/// not get a recording in their place.
Descriptor beyond_the_standard_ones(int number);

/// Writes blocks to the end of a file, each with one call of the system, so that a process may end
/// at any moment.
class BlockWriter {
 public:
  /// @param file open for writing at its end
  explicit BlockWriter(Descriptor file);
  ~BlockWriter();
  BlockWriter(const BlockWriter&) = delete;
  BlockWriter& operator=(const BlockWriter&) = delete;

  /// For a new file. @throws std::system_error
  void write_prologue();

  /// @throws std::system_error; of a block that can't be written nothing stays in the file
  /// @throws std::length_error for more than `kLargestBlock`
  void write(const Bytes& content);

 private:
  struct Compressor;

  void put(const Bytes& bytes);

  Descriptor m_cFile;
  std::unique_ptr<Compressor> m_pCompressor;
  Bytes m_vStored;
};

/// Reads blocks.
class BlockReader {
 public:
  /// @throws DamagedRecording for a file that can't be read, or is no recording of this version
  explicit BlockReader(const std::string& path);
  ~BlockReader();
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;

  /// Reads the next block: its content, or as much of its front as is wanted.
  /// @return false at the end of the file, and where it ends within a block
  /// @throws DamagedRecording
  bool next(Bytes& content, std::size_t most);

  /// Reads the block at a position of before. @throws DamagedRecording
  void read(std::uint64_t position, Bytes& content);

  /// Where the next block begins.
  std::uint64_t position() const { return m_nPosition; }

  /// Bytes of the file.
  std::uint64_t size() const { return m_nSize; }

  /// Whether the file ends within a block.
  bool torn() const { return m_bTorn; }

 private:
  struct Decompressor;
  struct BlockHead;

  std::size_t get(std::uint64_t position, void* target, std::size_t size);
  bool load(std::uint64_t position, BlockHead& head);
  void unpack(const BlockHead& head, std::size_t most, Bytes& content);
  [[noreturn]] void damaged(std::uint64_t position, const std::string& what) const;

  Descriptor m_cFile;
  std::string m_sPath;
  std::unique_ptr<Decompressor> m_pDecompressor;
  Bytes m_vStored;
  std::uint64_t m_nSize = 0;
  std::uint64_t m_nPosition = kPrologueSize;
  bool m_bTorn = false;
};

}  // namespace Osv::recorder
