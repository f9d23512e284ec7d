#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/image_functions.h"
#include "support/failure.h"
#include "support/memory.h"
#include "support/scratch_file.h"
#include "support/target.h"

/// @file
/// Bitmap files, and all that can be done with a bitmap whose header somebody else has written.

namespace Osv::fuzz {
namespace {

using utilities::ClSimpleBitmap;
using Block = std::vector<unsigned char>;

constexpr int kBadFile = -4000;
constexpr std::array<std::string_view, 5> kRefusals = {
    "The file is empty", "The file is not bitmap", "Only gray scale bitmap can be loaded.",
    "Only RGB compression bitmap can be loaded", "The pixel were not found."};

Block block_of(const ClSimpleBitmap& bitmap) {
  if (bitmap.Empty()) {
    return {};
  }
  const auto* const first = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {first, first + bitmap.FullSize()};
}

bool is_documented(const Failure& failure) {
  return failure.number == kBadFile &&
         std::find(kRefusals.begin(), kRefusals.end(), failure.text) != kRefusals.end();
}

/// @return whether the file was taken
bool load(ClSimpleBitmap& bitmap, const ScratchFile& file) {
  try {
    bitmap.Load(file.path().c_str());
    return true;
  } catch (const CXOtherException& failure) {
    require(is_documented({failure.GetErrorNumber(), failure.GetDescription()}),
            "a refusal has its number and one of its texts");
  } catch (const CXSystemException& failure) {
    require(failure.GetErrorNumber() == 0, "the file ends early");
  } catch (const CXMemoryAllocException&) {
  }
  return false;
}

/// The block that a file gives, which must be written whole; none when it is refused. The old one
/// stays then.
Block loaded(const ScratchFile& file) {
  ClSimpleBitmap bitmap;
  bitmap.Create(3, 2, 8, 0);
  bitmap.SetWhite();
  const Block before = block_of(bitmap);
  if (load(bitmap, file)) {
    return block_of(bitmap);
  }
  require(block_of(bitmap) == before, "a refused file leaves the bitmap as it was");
  return {};
}

void save_and_load(const ClSimpleBitmap& bitmap) {
  const ScratchFile file;
  bitmap.Save(file.path().c_str());
  ClSimpleBitmap again;
  require(load(again, file) && block_of(again) == block_of(bitmap), "a bitmap survives a file");
}

bool has_pixels(const ClSimpleBitmap& bitmap) {
  return bitmap.Width() != 0 && bitmap.Height() != 0;
}

void set_and_get_pixels(ClSimpleBitmap& bitmap, Input& input) {
  for (int i = 0; i < 16 && has_pixels(bitmap); ++i) {
    const unsigned long x = input.number<std::uint32_t>() % bitmap.Width();
    const unsigned long y = input.number<std::uint32_t>() % bitmap.Height();
    const unsigned int colour = bitmap.GetPixel(x, y);
    bitmap.SetPixel(x, y, input.number<std::uint32_t>());
    bitmap.SetPixel(x, y, colour);
  }
}

void turn_and_invert(ClSimpleBitmap& bitmap) {
  const Block before = block_of(bitmap);
  bitmap.FlipY();
  bitmap.Invert();
  bitmap.FlipY();
  bitmap.Invert();
  require(block_of(bitmap) == before, "turning and inverting take themselves back");
}

/// A piece that lies inside.
Block clipped(const ClSimpleBitmap& bitmap, Input input) {
  const unsigned long x = input.number<std::uint32_t>() % (bitmap.Width() + 1);
  const unsigned long y = input.number<std::uint32_t>() % (bitmap.Height() + 1);
  const unsigned long width = input.number<std::uint32_t>() % (bitmap.Width() - x + 1);
  const unsigned long height = input.number<std::uint32_t>() % (bitmap.Height() - y + 1);
  const std::unique_ptr<ClSimpleBitmap> piece = bitmap.clip(x, y, width, height);
  require(piece->Width() == width && piece->Height() == height, "a piece has its size");
  return block_of(*piece);
}

struct Scale {
  unsigned long width;
  unsigned long height;
  ClSimpleBitmap::eRescaleMode mode;
};

Scale read_scale(Input& input) {
  constexpr unsigned int kLargestSide = 200;
  constexpr unsigned int kModes = 3;  // the third is none
  return {input.below(kLargestSide), input.below(kLargestSide),
          static_cast<ClSimpleBitmap::eRescaleMode>(input.below(kModes))};
}

/// Whether a bitmap is too large to be doubled: no header has such sides.
bool is_too_large(const ClSimpleBitmap& bitmap) {
  constexpr unsigned long kLargestSide = 0x7FFFFFFF;
  return 2 * std::max(bitmap.Width(), bitmap.Height()) > kLargestSide;
}

Block rescaled(const ClSimpleBitmap& bitmap, const Scale& scale) {
  ClSimpleBitmap copy(bitmap);
  std::optional<Failure> failure;
  try {
    failure = failure_of<utilities::ClContextException<CXOtherException>>(
        [&] { copy.Rescale(scale.width, scale.height, scale.mode); });
  } catch (const CXMemoryAllocException&) {
    require(scale.mode == ClSimpleBitmap::eRescaleDouble && is_too_large(bitmap),
            "there is memory for what a header can tell");
    require(block_of(copy) == block_of(bitmap), "without it nothing changes");
  }
  const bool zero = scale.width == 0 || scale.height == 0;
  const int expected = zero ? -14 : scale.mode > ClSimpleBitmap::eRescaleDouble ? -33 : 0;
  require((failure ? failure->number : 0) == expected, "a rescaling is refused as documented");
  require(!failure || block_of(copy) == block_of(bitmap), "a refused one changes nothing");
  return block_of(copy);
}

void copy_block(const ClSimpleBitmap& bitmap) {
  const std::unique_ptr<unsigned char[]> copy(img::create_bmp_copy(bitmap.BI(), false));
  const unsigned long size = img::bmp_size(bitmap.BI());
  require(Block(copy.get(), copy.get() + size) == block_of(bitmap), "a copy is a copy");
  ClSimpleBitmap other;
  other = bitmap;
  other.SetBlack();
  require(other.PixelSize() == 0 || img::all_zero(other.Pixel(), other.PixelSize()), "it is black");
}

void make_others(const ClSimpleBitmap& bitmap, Input& input) {
  const Scale scale = read_scale(input);
  written_whole([&] { return rescaled(bitmap, scale); });
  written_whole([&] { return clipped(bitmap, input); });
}

void use(ClSimpleBitmap& bitmap, Input input) {
  save_and_load(bitmap);
  copy_block(bitmap);
  turn_and_invert(bitmap);
  make_others(bitmap, input);
  set_and_get_pixels(bitmap, input);
}

/// The pixels of a block that is made of rows; none above 16 bits, where the size that is reckoned
/// for it is beyond all memory.
Block created(unsigned long bits, const Block& rows) {
  constexpr unsigned long kWidth = 5;
  constexpr unsigned long kHeight = 7;
  std::unique_ptr<unsigned char[]> block;
  try {
    block.reset(img::create_bmp(kWidth, kHeight, bits, 1, 2, rows.data(), false));
  } catch (const CXMemoryAllocException&) {
    require(bits > 16, "a small block can be made");
    return {};
  }
  const auto* const bi = reinterpret_cast<const tagBITMAPINFOHEADER*>(block.get());
  const unsigned char* const pixels = img::bmp_pixel(bi);
  return {pixels, pixels + img::bmp_pixel_size(kWidth, kHeight, bits)};
}

/// Other depths never come from a file, but from whoever attaches a block.
void use_other_depth(Input input) {
  constexpr std::array<unsigned long, 8> kDepths = {1, 2, 4, 8, 12, 16, 24, 32};
  constexpr unsigned long kMasks = 3;
  const unsigned long bits = kDepths[input.below(kDepths.size())];
  const unsigned long compression = input.below(2) * kMasks;
  const Block rows(1024, input.byte());
  written_whole([&] { return created(bits, rows); });
  ClSimpleBitmap bitmap;
  bitmap.Create(1 + input.below(40), 1 + input.below(20), bits, compression);
  bitmap.SetBlack();
  turn_and_invert(bitmap);
  make_others(bitmap, input);
  set_and_get_pixels(bitmap, input);
}

}  // namespace

/// The first byte chooses between a file and a block of another depth. With a file the next bytes
/// tell what is done with its bitmap, and the rest is the file.
void run(Input input) {
  if (input.byte() % 2 != 0) {
    use_other_depth(input);
    return;
  }
  constexpr std::size_t kOperations = 64;
  constexpr std::size_t kLargestInUse = std::size_t{1} << 18;  // larger ones only take longer
  const Bytes operations = input.bytes(kOperations);
  const ScratchFile file(input.rest());
  const std::size_t block = written_whole([&] { return loaded(file); }).size();
  if (block == 0 || block > kLargestInUse) {
    return;
  }
  ClSimpleBitmap bitmap;
  load(bitmap, file);
  use(bitmap, Input(operations));
}

}  // namespace Osv::fuzz
