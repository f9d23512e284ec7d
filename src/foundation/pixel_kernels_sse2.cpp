#include <emmintrin.h>

#include "foundation/pixel_kernel_sets.h"
#include "foundation/pixel_loops.h"

namespace Osv::img {
namespace {

constexpr std::size_t kVector = sizeof(__m128i);

void invert(unsigned char* bytes, std::size_t size) { loops::invert<kVector>(bytes, size); }

void flip(unsigned char* rows, std::size_t stride, std::size_t height) {
  loops::flip<kVector, loops::kKeep>(rows, stride, height);
}

void flip_and_invert(unsigned char* rows, std::size_t stride, std::size_t height) {
  loops::flip<kVector, loops::kComplement>(rows, stride, height);
}

std::uint64_t sum(const unsigned char* bytes, std::size_t size) {
  return loops::sum_by_vectors(bytes, size);
}

void add_eight_rows(std::uint16_t* words, std::uint16_t* rights, const unsigned char* rows,
                    std::size_t stride, std::size_t pairs) {
  loops::add_rows<8>(words, rights, rows, stride, pairs);
}

void add_row(std::uint16_t* words, std::uint16_t* rights, const unsigned char* row,
             std::size_t pairs) {
  loops::add_rows<1>(words, rights, row, 0, pairs);
}

void replace_marked(unsigned char* target, const unsigned char* source, const unsigned char* marks,
                    std::size_t size) {
  loops::replace_marked(target, source, marks, size);
}

void double_row(const unsigned char* bytes, std::size_t size, unsigned char* first,
                unsigned char* second) {
  loops::double_row<kVector>(bytes, size, first, second);
}

void blend_across(const unsigned char* row, const ColumnBlends& blends, BlendedColumns* out) {
  loops::blend_across(row, blends, out);
}

void blend_down(const BlendedColumns* top, double top_weight, const BlendedColumns* bottom,
                double bottom_weight, unsigned char* out, std::size_t size) {
  loops::blend_down(top, top_weight, bottom, bottom_weight, out, size);
}

}  // namespace

const PixelKernels kSse2Kernels{invert,         flip,      flip_and_invert, sum,
                                add_eight_rows, add_row,   replace_marked,  double_row,
                                blend_across,   blend_down};

}  // namespace Osv::img
