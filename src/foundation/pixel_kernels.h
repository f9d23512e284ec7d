#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/instruction_set.h"

/// @file
/// The loops that touch every pixel of a frame, once for each instruction set. They give the same
/// results to the bit and touch no byte but those that they are given.

namespace Osv::img {

/// Columns that are blended together.
inline constexpr std::size_t kBlendedTogether = 8;

/// Values of columns that are blended together.
struct alignas(kBlendedTogether * sizeof(double)) BlendedColumns {
  double values[kBlendedTogether];
};

/// What the two neighbours of columns that are blended together count.
struct ColumnWeights {
  BlendedColumns first;
  BlendedColumns second;
};

/// Where columns that are blended together lie in a vector of bytes that begins with the first one:
/// their places, as a shuffle that makes words of 32 bits takes them.
struct alignas(kBlendedTogether * sizeof(std::uint32_t)) BlendedPlaces {
  std::uint32_t places[kBlendedTogether];
};

/// What a place has beside its number: the other bytes of its word become 0.
inline constexpr std::uint32_t kEmptyPlaces = 0x80808000;

/// How `size` times `kBlendedTogether` columns come from a row, each from two side by side.
struct ColumnBlends {
  std::size_t size;
  const ColumnWeights* weights;
  const std::uint32_t* first;   ///< the first of the two
  const BlendedPlaces* places;  ///< null unless all of them are below 16
};

struct PixelKernels {
  /// Complements bytes.
  void (*invert)(unsigned char* bytes, std::size_t size);

  /// Turns rows upside down. Of an odd number the middle one stays.
  void (*flip)(unsigned char* rows, std::size_t stride, std::size_t height);

  /// The same, and complements each byte that is moved; the middle row of an odd number stays.
  void (*flip_and_invert)(unsigned char* rows, std::size_t stride, std::size_t height);

  std::uint64_t (*sum)(const unsigned char* bytes, std::size_t size);

  /// Adds eight rows, or one, to the sums of pairs of columns in 16 bits. A pair is read as one
  /// word with the left column in its low byte: `words` gets the words, `rights` the right columns.
  /// Both overflow freely.
  void (*add_eight_rows)(std::uint16_t* words, std::uint16_t* rights, const unsigned char* rows,
                         std::size_t stride, std::size_t pairs);
  void (*add_row)(std::uint16_t* words, std::uint16_t* rights, const unsigned char* row,
                  std::size_t pairs);

  /// Replaces the bytes whose mark is 255 and keeps those whose mark is 0.
  void (*replace_marked)(unsigned char* target, const unsigned char* source,
                         const unsigned char* marks, std::size_t size);

  /// Writes each byte twice side by side, to two rows.
  void (*double_row)(const unsigned char* bytes, std::size_t size, unsigned char* first,
                     unsigned char* second);

  /// first * its weight + second * its weight, in this order and not fused, for each column. May
  /// read 17 bytes from any first one on.
  void (*blend_across)(const unsigned char* row, const ColumnBlends& blends, BlendedColumns* out);

  /// top * top_weight + bottom * bottom_weight, cut to a whole number, which has to be a byte, for
  /// `size` columns.
  void (*blend_down)(const BlendedColumns* top, double top_weight, const BlendedColumns* bottom,
                     double bottom_weight, unsigned char* out, std::size_t size);
};

/// Those for a set, which has to be supported where they run.
const PixelKernels& pixel_kernels(InstructionSet set);

/// Those for the best set that is supported.
const PixelKernels& pixel_kernels();

}  // namespace Osv::img
