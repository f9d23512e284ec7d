#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>

#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using simulator::GrayImage;

constexpr int kWidth = 388;
constexpr int kHeight = 374;
constexpr double kAlike = 0.95;

std::size_t index_of(const GrayImage& picture, int x, int y) {
  return static_cast<std::size_t>(y * picture.width + x);
}

/// A picture that has at each place what `pixel` says of it.
template <typename Pixel>
GrayImage draw(Pixel pixel) {
  GrayImage picture{kWidth, kHeight, {}};
  picture.pixels.reserve(std::size_t{kWidth} * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      picture.pixels.push_back(static_cast<unsigned char>(pixel(x, y)));
    }
  }
  return picture;
}

/// A print like a whorl that stands askew: dark ridges of half a millimetre around a core beside
/// the middle, with one of its own at a corner and white all around.
GrayImage print() {
  return draw([](int x, int y) {
    const double u = (x - kWidth / 2.0) / (kWidth / 2.0);
    const double v = (y - kHeight / 2.0) / (kHeight / 2.0);
    const double around = std::hypot(x - 170.0, 0.8 * (y - 150.0)) + 3 * std::sin(x / 31.0);
    const double beside = 0.7 * x + 0.4 * y;
    const double ridge = std::cos((u + v > 0.6 ? beside : around) * 2 * M_PI / 9.5);
    const double skin = u * u + v * v < 0.9 ? 1 : 0;
    return std::lround(250 - skin * (110 + 90 * ridge));
  });
}

void write_number(std::ofstream& file, unsigned long number, int bytes) {
  for (int i = 0; i < bytes; ++i, number >>= 8U) {
    file.put(static_cast<char>(number & 0xFFU));
  }
}

/// Writes an 8-bit gray bitmap file, whose rows run from the bottom and are padded to 4 bytes.
void write_bmp(const GrayImage& picture, const std::string& path) {
  constexpr unsigned long kHeaders = 14 + 40;
  constexpr unsigned long kPalette = 4 * 256;
  const auto stride = static_cast<unsigned long>((picture.width + 3) / 4 * 4);
  const unsigned long size = stride * static_cast<unsigned long>(picture.height);
  std::ofstream file(path, std::ios::binary);
  file << "BM";
  for (const unsigned long field : {kHeaders + kPalette + size, 0UL, kHeaders + kPalette, 40UL}) {
    write_number(file, field, 4);
  }
  write_number(file, static_cast<unsigned long>(picture.width), 4);
  write_number(file, static_cast<unsigned long>(picture.height), 4);
  write_number(file, 1, 2);
  write_number(file, 8, 2);
  for (const unsigned long field : {0UL, size, 19685UL, 19685UL, 256UL, 0UL}) {
    write_number(file, field, 4);
  }
  for (unsigned long level = 0; level < 256; ++level) {
    write_number(file, level * 0x010101UL, 4);
  }
  for (int y = picture.height - 1; y >= 0; --y) {
    file.write(reinterpret_cast<const char*>(&picture.pixels[index_of(picture, 0, y)]),
               picture.width);
    write_number(file, 0, static_cast<int>(stride) - picture.width);
  }
}

/// A picture in a file of its own, which goes with the object.
class PictureFile {
 public:
  explicit PictureFile(const GrayImage& picture)
      : m_path(::testing::TempDir() + "hvk3_print_" + std::to_string(getpid()) + ".bmp") {
    write_bmp(picture, m_path);
  }
  ~PictureFile() { std::remove(m_path.c_str()); }
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
};

/// The piece of a delivered image in which the picture was laid down.
GrayImage cut(const Image& image, simulator::Place place) {
  const lx::ImageView view(image.data());
  return draw([&](int x, int y) {
    return view.row_from_top(static_cast<std::size_t>(place.y + y))[place.x + x];
  });
}

double mean(const GrayImage& picture) {
  double sum = 0;
  for (const unsigned char pixel : picture.pixels) {
    sum += pixel;
  }
  return sum / static_cast<double>(picture.pixels.size());
}

/// How alike two pictures of one size are: 1 when they differ in brightness and contrast only.
double correlation(const GrayImage& one, const GrayImage& other) {
  const double mean_one = mean(one);
  const double mean_other = mean(other);
  double both = 0;
  double square_one = 0;
  double square_other = 0;
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    const double a = one.pixels[i] - mean_one;
    const double b = other.pixels[i] - mean_other;
    both += a * b;
    square_one += a * a;
    square_other += b * b;
  }
  return both / std::sqrt(square_one * square_other);
}

/// The picture moved to the right and down, with its edge drawn out.
GrayImage shifted(const GrayImage& picture, int right, int down) {
  return draw([&](int x, int y) {
    return picture.pixels[index_of(picture, std::clamp(x - right, 0, kWidth - 1),
                                   std::clamp(y - down, 0, kHeight - 1))];
  });
}

using RealPicture = ClientTest;

TEST_F(RealPicture, APrintFromAFileComesOutOfPlainCaptureAsItWasAndNotOtherwise) {
  const GrayImage picture = print();
  const PictureFile file(picture);
  bench.load_finger(file.path());
  bench.set_timeline(simulator::Timeline::settled_finger());
  recorder.keep_images();
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger));
  stop();
  const GrayImage delivered =
      cut(recorder.of(eEvent::Finger).front().image, bench.place(kWidth, kHeight));
  const auto pixel = [&](int x, int y) { return picture.pixels[index_of(picture, x, y)]; };

  EXPECT_GT(correlation(delivered, picture), kAlike);

  const GrayImage flipped = draw([&](int x, int y) { return pixel(x, kHeight - 1 - y); });
  const GrayImage mirrored = draw([&](int x, int y) { return pixel(kWidth - 1 - x, y); });
  const GrayImage inverted = draw([&](int x, int y) { return 255 - pixel(x, y); });
  for (const GrayImage& wrong :
       {flipped, mirrored, inverted, shifted(picture, 3, 0), shifted(picture, -3, 0),
        shifted(picture, 0, 3), shifted(picture, 0, -3)}) {
    EXPECT_LT(correlation(delivered, wrong), kAlike);
  }
}

TEST_F(RealPicture, RidgesComeOutDarkAndTheFreePlatenBright) {
  bench.set_finger(print());
  bench.set_timeline(simulator::Timeline::settled_finger());
  const Image image = snap();
  ASSERT_FALSE(image.empty());
  const GrayImage delivered = cut(image, bench.place(kWidth, kHeight));
  EXPECT_LT(*std::min_element(delivered.pixels.begin(), delivered.pixels.end()), 80);
  EXPECT_GT(delivered.pixels.front(), 235);
}

}  // namespace
}  // namespace Osv::client
