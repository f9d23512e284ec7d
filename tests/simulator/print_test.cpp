#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

#include "simulator/platen_fixture.h"

namespace Osv::simulator {
namespace {

constexpr int kDark = 128;

int level(const GrayImage& picture, int x, int y) {
  return picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                        static_cast<std::size_t>(x)];
}

/// Period of the ridges in the square around a place. Edges that a line crosses grow fewer with the
/// cosine of its angle to the ridges' normal, so those of row and column give the whole.
double period_around(const GrayImage& picture, int center_x, int center_y) {
  constexpr int kReach = 30;
  double along_rows = 0;
  double along_columns = 0;
  for (int v = -kReach; v < kReach; ++v) {
    for (int u = -kReach; u < kReach; ++u) {
      const int x = center_x + u;
      const int y = center_y + v;
      const bool dark = level(picture, x, y) < kDark;
      along_rows += dark != (level(picture, x + 1, y) < kDark);
      along_columns += dark != (level(picture, x, y + 1) < kDark);
    }
  }
  const double pixels = 4.0 * kReach * kReach;
  return 2 * pixels / std::hypot(along_rows, along_columns);
}

/// Twice the ridges' direction around a place, as a complex number of length 1.
std::complex<double> doubled_direction(const GrayImage& picture, int center_x, int center_y) {
  constexpr int kReach = 14;
  std::complex<double> sum;
  for (int y = center_y - kReach; y <= center_y + kReach; ++y) {
    for (int x = center_x - kReach; x <= center_x + kReach; ++x) {
      const std::complex<double> gradient(level(picture, x + 1, y) - level(picture, x - 1, y),
                                          level(picture, x, y + 1) - level(picture, x, y - 1));
      sum += gradient * gradient;
    }
  }
  return -sum / std::abs(sum);
}

/// The directions on a grid of places.
class DirectionGrid {
 public:
  explicit DirectionGrid(const GrayImage& picture)
      : m_nWidth((picture.width - 2 * kMargin) / kStep),
        m_nHeight((picture.height - 2 * kMargin) / kStep) {
    for (int y = 0; y < m_nHeight; ++y) {
      for (int x = 0; x < m_nWidth; ++x) {
        m_vDirections.push_back(
            doubled_direction(picture, kMargin + kStep * x, kMargin + kStep * y));
      }
    }
  }

  /// Whether there is a place around which they turn so often: 0.5 for a core, -0.5 for a delta.
  bool has_turn(double turn) const {
    for (int y = kRing; y + kRing < m_nHeight; ++y) {
      for (int x = kRing; x + kRing < m_nWidth; ++x) {
        if (turns_around(x, y) == turn) {
          return true;
        }
      }
    }
    return false;
  }

 private:
  static constexpr int kStep = 12;
  static constexpr int kMargin = 30;
  static constexpr int kRing = 2;

  std::complex<double> at(int x, int y) const {
    return m_vDirections[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                         static_cast<std::size_t>(x)];
  }

  double turns_around(int x, int y) const {
    constexpr std::array<std::array<int, 2>, 4> kSides = {{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
    int u = x - kRing;
    int v = y - kRing;
    double angle = 0;
    for (const auto& side : kSides) {
      for (int step = 0; step < 2 * kRing; ++step) {
        const std::complex<double> last = at(u, v);
        u += side[0];
        v += side[1];
        angle += std::arg(at(u, v) / last);
      }
    }
    return std::round(angle / std::numbers::pi / 2) / 2;
  }

  int m_nWidth;
  int m_nHeight;
  std::vector<std::complex<double>> m_vDirections;
};

/// Mean length of what is dark in a row, in pixels.
double mean_ridge_width(const Block& image) {
  double dark = 0;
  double runs = 0;
  for (int y = 0; y < image.height(); ++y) {
    const unsigned char* const row = image.row(y);
    for (int x = 1; x < image.width(); ++x) {
      dark += row[x] < kDark;
      runs += row[x] < kDark && row[x - 1] >= kDark;
    }
  }
  return dark / runs;
}

double darkness(const GrayImage& picture, int x, int y, int reach) {
  double sum = 0;
  for (int v = y - reach; v <= y + reach; ++v) {
    for (int u = x - reach; u <= x + reach; ++u) {
      sum += 255 - level(picture, u, v);
    }
  }
  return sum / ((2 * reach + 1) * (2 * reach + 1));
}

class BuiltInPrint : public PlatenFixture {
 protected:
  GrayImage print(unsigned int seed, ePrint shape = ePrint::Plain) {
    bench.set_print(seed, shape);
    return bench.finger();
  }

  double ridge_width(eSkin skin) {
    bench.set_skin(skin);
    return mean_ridge_width(settled_image());
  }
};

TEST_F(BuiltInPrint, HasItsRidgesAboutNinePixelsApart) {
  for (const unsigned int seed : {1U, 2U, 3U, 4U}) {
    const GrayImage picture = print(seed);
    for (const int x : {100, 220}) {
      for (const int y : {120, 200, 280}) {
        EXPECT_NEAR(period_around(picture, x, y), 9, 1.2) << seed << ' ' << x << ' ' << y;
      }
    }
  }
}

TEST_F(BuiltInPrint, OfOneSeedIsTheSameAgain) {
  const Bytes first = print(7).pixels;
  print(8);
  bench.reset();
  EXPECT_EQ(print(7).pixels, first);
}

TEST_F(BuiltInPrint, OfAnotherSeedIsAnother) {
  const GrayImage first = print(7);
  EXPECT_LT(std::abs(correlation(first, print(8))), 0.4);
}

TEST_F(BuiltInPrint, AtFirstIsThatOfSeedOneLaidFlat) {
  const GrayImage first = bench.finger();
  EXPECT_EQ(first.pixels, print(1).pixels);
  EXPECT_EQ(first.width, 320);
  EXPECT_EQ(first.height, 400);
}

TEST_F(BuiltInPrint, FromNailToNailIsWider) {
  const GrayImage rolled = print(1, ePrint::Rolled);
  EXPECT_EQ(rolled.width, 440);
  EXPECT_EQ(rolled.height, 410);
}

TEST_F(BuiltInPrint, HasACoreAndADelta) {
  for (const unsigned int seed : {1U, 4U}) {
    const DirectionGrid directions(print(seed, ePrint::Rolled));
    EXPECT_TRUE(directions.has_turn(0.5) || directions.has_turn(1)) << seed;
    EXPECT_TRUE(directions.has_turn(-0.5)) << seed;
  }
}

TEST_F(BuiltInPrint, IsAnOvalThatFadesAtItsEdge) {
  const GrayImage picture = print(1);
  const double middle = darkness(picture, 160, 200, 15);
  EXPECT_EQ(darkness(picture, 20, 20, 15), 0);
  EXPECT_EQ(darkness(picture, 300, 380, 15), 0);
  EXPECT_GT(middle, 60);
  const double edge = darkness(picture, 12, 200, 8);
  EXPECT_GT(edge, 0);
  EXPECT_LT(edge, middle / 2);
}

TEST_F(BuiltInPrint, IsPressedUnevenly) {
  const GrayImage picture = print(1);
  double lightest = 255;
  double darkest = 0;
  for (int y = 100; y <= 300; y += 25) {
    for (int x = 100; x <= 220; x += 20) {
      lightest = std::min(lightest, darkness(picture, x, y, 22));
      darkest = std::max(darkest, darkness(picture, x, y, 22));
    }
  }
  EXPECT_GT(darkest, lightest * 1.3);
}

TEST_F(BuiltInPrint, IsDeliveredAsItIs) {
  const GrayImage picture = bench.finger();
  const Block delivered = settled_image();
  const Place place = bench.place(picture.width, picture.height);
  EXPECT_GT(correlation(cut_out(delivered, place, picture.width, picture.height), picture), 0.95);
}

TEST_F(BuiltInPrint, HasThinnerRidgesOnDrySkinAndWiderOnesOnWetSkin) {
  const double normal = ridge_width(eSkin::Normal);
  EXPECT_LT(ridge_width(eSkin::Dry), normal * 0.85);
  EXPECT_GT(ridge_width(eSkin::Wet), normal * 1.2);
}

TEST_F(BuiltInPrint, OfDrySkinIsBrokenIntoMorePieces) {
  const auto starts = [this](eSkin skin) {
    bench.set_skin(skin);
    const Block image = settled_image();
    // Pieces of a ridge that runs down the picture: what begins below a bright pixel.
    int count = 0;
    for (int y = 1; y < image.height(); ++y) {
      for (int x = 1; x + 1 < image.width(); ++x) {
        const unsigned char* const above = image.row(y - 1) + x;
        count += image.row(y)[x] < kDark && above[-1] >= kDark && above[0] >= kDark &&
                 above[1] >= kDark && image.row(y)[x - 1] >= kDark;
      }
    }
    return count;
  };
  EXPECT_GT(starts(eSkin::Dry), starts(eSkin::Normal) * 3 / 2);
}

TEST_F(BuiltInPrint, KeepsItsPictureWhateverTheSkin) {
  const Bytes normal = bench.finger().pixels;
  bench.set_skin(eSkin::Wet);
  EXPECT_EQ(bench.finger().pixels, normal);
}

TEST_F(BuiltInPrint, PressedLessIsLighter) {
  const double firm = mean(settled_image());
  bench.set_pressure(40);
  EXPECT_GT(mean(settled_image()), firm + 5);
  bench.set_pressure(0);
  EXPECT_NEAR(mean(settled_image()), 249, 1.5);
}

TEST_F(BuiltInPrint, AcceptsNoPressureAboveTheWhole) {
  EXPECT_THROW(bench.set_pressure(101), std::invalid_argument);
}

}  // namespace
}  // namespace Osv::simulator
