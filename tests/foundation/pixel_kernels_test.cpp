#include "foundation/pixel_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "support/guarded_block.h"

namespace Osv::img {
namespace {

using Bytes = std::vector<unsigned char>;
using test::GuardedBlock;

constexpr std::size_t kWidths = 257;
constexpr std::size_t kHeights = 9;
constexpr std::size_t kAlignments = 32;  // of the widest vector

/// Those that the machine at hand can run.
std::vector<InstructionSet> testable_sets() {
  std::vector<InstructionSet> sets{InstructionSet::kSse2};
  if (is_supported(InstructionSet::kAvx2)) {
    sets.push_back(InstructionSet::kAvx2);
  } else {
    std::cerr << "This processor has no AVX2: the kernels for it are not tested.\n";
  }
  return sets;
}

std::string name_of(const testing::TestParamInfo<InstructionSet>& set) {
  return set.param == InstructionSet::kAvx2 ? "Avx2" : "Sse2";
}

const Bytes& noise() {
  static const Bytes bytes = [] {
    Bytes made(1 << 16);
    std::mt19937 generator(11);
    std::generate(made.begin(), made.end(),
                  [&] { return static_cast<unsigned char>(generator()); });
    return made;
  }();
  return bytes;
}

/// So many bytes of the noise, others for each size.
Bytes noise_of(std::size_t size, std::size_t seed = 0) {
  const auto from = noise().begin() + static_cast<std::ptrdiff_t>((size + seed * 977) % 9973);
  return {from, from + static_cast<std::ptrdiff_t>(size)};
}

/// Rows turned upside down, and complemented by a `flip` of 255; the middle one stays.
Bytes plainly_flipped(const Bytes& rows, std::size_t stride, std::size_t height,
                      unsigned char flip) {
  Bytes flipped = rows;
  for (std::size_t row = 0; row < height; ++row) {
    const std::size_t from = height - 1 - row;
    for (std::size_t i = 0; i < stride && from != row; ++i) {
      flipped[row * stride + i] = rows[from * stride + i] ^ flip;
    }
  }
  return flipped;
}

class PixelKernelsOf : public testing::TestWithParam<InstructionSet> {
 protected:
  using Work = std::function<void(unsigned char*)>;

  /// Lets a kernel work on a copy of `in` that ends at a guard, and on one at each distance from
  /// the other guard, and expects it to make `out` of it and to touch nothing else.
  void expect_in_place(const Bytes& in, const Bytes& out, const Work& work) {
    expect_at(block.before_guard(in.size()), in, out, work);
    for (std::size_t offset = 0; offset < kAlignments; ++offset) {
      expect_at(block.behind_guard(offset, in.size()), in, out, work);
    }
  }

  void expect_at(std::span<unsigned char> place, const Bytes& in, const Bytes& out,
                 const Work& work) {
    std::copy(in.begin(), in.end(), place.begin());
    work(place.data());
    ASSERT_TRUE(std::equal(place.begin(), place.end(), out.begin())) << in.size() << " bytes";
    ASSERT_TRUE(block.untouched_around(place)) << in.size() << " bytes";
  }

  void expect_flips(void (*flip)(unsigned char*, std::size_t, std::size_t), unsigned char flipped) {
    for (std::size_t width = 1; width <= kWidths; ++width) {
      for (std::size_t height = 0; height <= kHeights; ++height) {
        const Bytes rows = noise_of(width * height);
        expect_in_place(rows, plainly_flipped(rows, width, height, flipped),
                        [&](unsigned char* bytes) { flip(bytes, width, height); });
      }
    }
  }

  const PixelKernels& kernels = pixel_kernels(GetParam());
  GuardedBlock block{kWidths * (kHeights + 1) * 2};
  GuardedBlock second{kWidths * (kHeights + 1) * 2};
  GuardedBlock third{kWidths * (kHeights + 1) * 2};
};

INSTANTIATE_TEST_SUITE_P(EachSet, PixelKernelsOf, testing::ValuesIn(testable_sets()), name_of);

TEST_P(PixelKernelsOf, InvertComplementsEveryByteAtEverySizeAndAlignment) {
  for (std::size_t width = 1; width <= kWidths; ++width) {
    for (std::size_t height = 0; height <= kHeights; ++height) {
      const Bytes bytes = noise_of(width * height);
      Bytes inverted = bytes;
      std::for_each(inverted.begin(), inverted.end(), [](unsigned char& byte) { byte ^= 255; });
      expect_in_place(bytes, inverted,
                      [&](unsigned char* at) { kernels.invert(at, bytes.size()); });
    }
  }
}

TEST_P(PixelKernelsOf, FlipTurnsRowsAtEverySizeAndAlignment) { expect_flips(kernels.flip, 0); }

TEST_P(PixelKernelsOf, FlipAndInvertDoesBothAtEverySizeAndAlignment) {
  expect_flips(kernels.flip_and_invert, 255);
}

// Whoever counts them is never done.
TEST_P(PixelKernelsOf, FlipsGoThroughNoRowsWithoutBytes) {
  kernels.flip(nullptr, 0, ~std::size_t{0});
  kernels.flip_and_invert(nullptr, 0, ~std::size_t{0});
}

TEST_P(PixelKernelsOf, FlipsOfAFrameThatIsFetchedAheadAreTheSame) {
  constexpr std::size_t kStride = 803;
  constexpr std::size_t kHeight = 751;
  Bytes rows(kStride * kHeight);
  std::iota(rows.begin(), rows.end(), static_cast<unsigned char>(0));
  Bytes flipped = rows;
  kernels.flip(flipped.data(), kStride, kHeight);
  EXPECT_EQ(flipped, plainly_flipped(rows, kStride, kHeight, 0));
  flipped = rows;
  kernels.flip_and_invert(flipped.data(), kStride, kHeight);
  EXPECT_EQ(flipped, plainly_flipped(rows, kStride, kHeight, 255));
}

TEST_P(PixelKernelsOf, SumAddsEveryByteAtEverySizeAndAlignment) {
  for (std::size_t width = 1; width <= kWidths; ++width) {
    for (std::size_t height = 0; height <= kHeights; ++height) {
      const Bytes bytes = noise_of(width * height);
      const std::uint64_t sum = std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
      expect_in_place(bytes, bytes, [&](unsigned char* at) {
        ASSERT_EQ(kernels.sum(at, bytes.size()), sum) << bytes.size();
      });
    }
  }
}

TEST_P(PixelKernelsOf, SumOfWhiteBytesDoesNotOverflow) {
  const Bytes white(1 << 25, 255);
  EXPECT_EQ(kernels.sum(white.data(), white.size()), 255ULL << 25);
}

/// The sums of pairs of columns, added word by word.
struct PairSums {
  explicit PairSums(std::size_t pairs) : words(pairs, 60000), rights(pairs, 60000) {}

  void add(const unsigned char* row) {
    for (std::size_t pair = 0; pair < words.size(); ++pair) {
      const int word = row[2 * pair] + 256 * row[2 * pair + 1];
      words[pair] = static_cast<std::uint16_t>(words[pair] + word);
      rights[pair] = static_cast<std::uint16_t>(rights[pair] + word / 256);
    }
  }

  friend bool operator==(const PairSums&, const PairSums&) = default;

  std::vector<std::uint16_t> words;
  std::vector<std::uint16_t> rights;
};

TEST_P(PixelKernelsOf, RowsAreAddedToColumnSumsAtEveryWidthAndAlignment) {
  for (std::size_t pairs = 1; 2 * pairs <= kWidths + 1; ++pairs) {
    const std::size_t stride = 2 * pairs;
    const Bytes rows = noise_of(9 * stride);
    PairSums expected(pairs);
    for (std::size_t row = 0; row < 9; ++row) {
      expected.add(rows.data() + row * stride);
    }
    expect_in_place(rows, rows, [&](unsigned char* at) {
      PairSums sums(pairs);
      kernels.add_eight_rows(sums.words.data(), sums.rights.data(), at, stride, pairs);
      kernels.add_row(sums.words.data(), sums.rights.data(), at + 8 * stride, pairs);
      ASSERT_EQ(sums, expected) << pairs;
    });
  }
}

TEST_P(PixelKernelsOf, ColumnSumsAreWrittenWithinTheirBounds) {
  for (std::size_t pairs = 1; 2 * pairs <= kWidths + 1; ++pairs) {
    const auto words = block.before_guard(2 * pairs);
    const auto rights = second.before_guard(2 * pairs);
    const auto row = third.before_guard(2 * pairs);
    std::fill(row.begin(), row.end(), static_cast<unsigned char>(1));
    kernels.add_row(reinterpret_cast<std::uint16_t*>(words.data()),
                    reinterpret_cast<std::uint16_t*>(rights.data()), row.data(), pairs);
    ASSERT_TRUE(block.untouched_around(words) && second.untouched_around(rights)) << pairs;
  }
}

TEST_P(PixelKernelsOf, MarkedBytesAreReplacedAtEverySizeAndAlignment) {
  for (std::size_t size = 1; size <= kWidths; ++size) {
    const Bytes target = noise_of(size);
    const auto source = second.before_guard(size);
    const auto marks = third.before_guard(size);
    std::copy_n(noise().begin(), size, source.begin());
    Bytes expected = target;
    for (std::size_t i = 0; i < size; ++i) {
      marks[i] = noise()[i + size] % 3 == 0 ? 255 : 0;
      expected[i] = marks[i] == 255 ? source[i] : target[i];
    }
    expect_in_place(target, expected, [&](unsigned char* at) {
      kernels.replace_marked(at, source.data(), marks.data(), size);
    });
  }
}

TEST_P(PixelKernelsOf, BytesAreDoubledIntoTwoRowsAtEverySizeAndAlignment) {
  for (std::size_t size = 1; size <= kWidths; ++size) {
    const auto bytes = second.before_guard(size);
    std::copy_n(noise().begin() + static_cast<std::ptrdiff_t>(size), size, bytes.begin());
    Bytes doubled(4 * size);
    for (std::size_t i = 0; i < doubled.size(); ++i) {
      doubled[i] = bytes[i % (2 * size) / 2];
    }
    expect_in_place(Bytes(4 * size), doubled, [&](unsigned char* at) {
      kernels.double_row(bytes.data(), size, at, at + 2 * size);
    });
  }
}

/// Tables for so many columns, whose first neighbours rise by a step.
struct Tables {
  Tables(std::size_t groups, double step)
      : weights(groups), first(groups * kBlendedTogether), places(groups) {
    std::mt19937 generator(static_cast<unsigned int>(groups));
    std::uniform_real_distribution<double> weight(0, 1);
    for (std::size_t x = 0; x < first.size(); ++x) {
      const std::size_t group = x / kBlendedTogether;
      const std::size_t place = x % kBlendedTogether;
      first[x] = static_cast<std::uint32_t>(static_cast<double>(x) * step);
      places[group].places[place] = kEmptyPlaces | (first[x] - first[group * kBlendedTogether]);
      weights[group].first.values[place] = weight(generator);
      weights[group].second.values[place] = 1 - weights[group].first.values[place];
    }
  }

  double plainly(std::size_t x, std::span<const unsigned char> row) const {
    const std::size_t group = x / kBlendedTogether;
    const std::size_t place = x % kBlendedTogether;
    return row[first[x]] * weights[group].first.values[place] +
           row[first[x] + 1] * weights[group].second.values[place];
  }

  std::vector<ColumnWeights> weights;
  std::vector<std::uint32_t> first;
  std::vector<BlendedPlaces> places;
};

/// Blends a row that ends at a guard, 17 bytes from the last neighbour on.
void expect_blend(const PixelKernels& kernels, GuardedBlock& block, std::size_t groups, double step,
                  bool near) {
  const Tables tables(groups, step);
  const std::span<unsigned char> row = block.before_guard(tables.first.back() + 17);
  std::copy_n(noise().begin(), row.size(), row.begin());
  std::vector<BlendedColumns> out(groups);
  kernels.blend_across(
      row.data(),
      {groups, tables.weights.data(), tables.first.data(), near ? tables.places.data() : nullptr},
      out.data());
  for (std::size_t x = 0; x < groups * kBlendedTogether; ++x) {
    ASSERT_EQ(out[x / kBlendedTogether].values[x % kBlendedTogether], tables.plainly(x, row))
        << "column " << x << ", step " << step;
  }
}

TEST_P(PixelKernelsOf, ColumnsNearEachOtherAreBlendedToTheBit) {
  for (std::size_t groups = 1; groups <= kWidths / kBlendedTogether + 1; ++groups) {
    for (const double step : {0.0, 0.3, 0.8, 1.0, 1.25, 2.0, 2.1}) {
      expect_blend(kernels, block, groups, step, true);
    }
  }
}

TEST_P(PixelKernelsOf, ColumnsFarFromEachOtherAreBlendedToTheBit) {
  for (std::size_t groups = 1; groups <= kWidths / kBlendedTogether + 1; ++groups) {
    expect_blend(kernels, block, groups, 7.7, false);
  }
}

TEST_P(PixelKernelsOf, RowsAreBlendedToTheBitAtEverySizeAndAlignment) {
  std::vector<BlendedColumns> top(kWidths / kBlendedTogether + 1);
  std::vector<BlendedColumns> bottom(top.size());
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> gray(0, 255.999);
  for (std::size_t x = 0; x < top.size() * kBlendedTogether; ++x) {
    top[x / kBlendedTogether].values[x % kBlendedTogether] = gray(generator);
    bottom[x / kBlendedTogether].values[x % kBlendedTogether] = gray(generator);
  }
  for (std::size_t size = 1; size <= kWidths; ++size) {
    Bytes expected(size);
    for (std::size_t x = 0; x < size; ++x) {
      expected[x] = static_cast<unsigned char>(
          static_cast<int>(0.37 * top[x / kBlendedTogether].values[x % kBlendedTogether] +
                           0.63 * bottom[x / kBlendedTogether].values[x % kBlendedTogether]));
    }
    expect_in_place(Bytes(size), expected, [&](unsigned char* at) {
      kernels.blend_down(top.data(), 0.37, bottom.data(), 0.63, at, size);
    });
  }
}

TEST(PixelKernels, AreThoseOfTheBestSetThatTheMachineHas) {
  EXPECT_EQ(&pixel_kernels(), &pixel_kernels(testable_sets().back()));
}

TEST(InstructionSets, TheFirstIsEverywhere) { EXPECT_TRUE(is_supported(InstructionSet::kSse2)); }

TEST(InstructionSets, TheSecondIsUsedUnlessProcessorOrTunableHoldsItBack) {
  const char* tunables = std::getenv("GLIBC_TUNABLES");
  const bool held_back =
      tunables != nullptr && std::string(tunables).find("-AVX2") != std::string::npos;
  EXPECT_EQ(is_supported(InstructionSet::kAvx2), !held_back && __builtin_cpu_supports("avx2") != 0);
}

}  // namespace
}  // namespace Osv::img
