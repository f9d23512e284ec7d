#include "hvk3/bmp_file.h"

#include <array>
#include <cstring>

namespace hvk3 {
namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kSizePosition = 2;
constexpr std::size_t kPixelsPosition = 10;

using FileHeader = std::array<unsigned char, kFileHeaderSize>;

void put(FileHeader& header, std::size_t position, std::size_t value) {
  const auto number = static_cast<std::uint32_t>(value);
  std::memcpy(header.data() + position, &number, sizeof(number));
}

}  // namespace

bool write_bmp(const Image& image, std::FILE* stream) {
  const std::vector<unsigned char>& block = image.block();
  const auto pixels = static_cast<std::size_t>(image.view().pixels() - block.data());
  FileHeader header = {'B', 'M'};
  put(header, kSizePosition, kFileHeaderSize + block.size());
  put(header, kPixelsPosition, kFileHeaderSize + pixels);
  // What the plug-in delivers is what a BMP file holds behind its first 14 bytes.
  return std::fwrite(header.data(), header.size(), 1, stream) == 1 &&
         std::fwrite(block.data(), block.size(), 1, stream) == 1;
}

}  // namespace hvk3
