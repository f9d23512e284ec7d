#include "simulator/images.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include "libraries/scanner_api.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kHead = sizeof(tagBITMAPINFOHEADER) + 4 * 256;
constexpr int kNominalDose = 60;

std::size_t stride_of(int width) { return (static_cast<std::size_t>(width) + 3) / 4 * 4; }

std::size_t row_position(int width, int height, int y) {
  return kHead + static_cast<std::size_t>(height - 1 - y) * stride_of(width);
}

}  // namespace

Block::Block(int width, int height)
    : m_vBytes(kHead + stride_of(width) * static_cast<std::size_t>(height)) {
  *header() = {};
  header()->biSize = sizeof(tagBITMAPINFOHEADER);
  header()->biWidth = width;
  header()->biHeight = height;
  header()->biPlanes = 1;
  header()->biBitCount = 8;
}

unsigned char* Block::row(int y) { return m_vBytes.data() + row_position(width(), height(), y); }

const unsigned char* Block::row(int y) const {
  return m_vBytes.data() + row_position(width(), height(), y);
}

Block prepare(const Bytes& frame, int width, int height) {
  Block block(width, height);
  for (int y = 0; y < height; ++y) {
    const unsigned char* const source = frame.data() + y * width;
    std::transform(source, source + width, block.row(y),
                   [](unsigned char level) { return static_cast<unsigned char>(~level); });
  }
  return block;
}

Bytes take_dose_frame(void* scanner) {
  Bytes frame(std::size_t{kRawWidth} * kRawHeight);
  ftrScanGetImageByVariableDose(scanner, kNominalDose, frame.data());
  return frame;
}

Engine::Engine(const Bytes& payload) : m_hEngine(CalibrateCreate()) {
  CalibrateSetData(m_hEngine, payload.data(), payload.size());
}

unsigned long Engine::needed_size(Block& input) const {
  unsigned long size = 0;
  Calibrate(m_hEngine, input.header(), input.size(), nullptr, &size);
  return size;
}

Block Engine::correct(Block input) const {
  unsigned long size = needed_size(input);
  Block output(size);
  Calibrate(m_hEngine, input.header(), input.size(), output.header(), &size);
  return output;
}

Bytes payload_of_scanner(const Bench& bench, unsigned int interface) {
  const Bytes memory = bench.memory(interface);
  const std::size_t position = 21U + memory[20];
  std::uint32_t size = 0;
  std::memcpy(&size, memory.data() + position, sizeof(size));
  const auto payload = memory.begin() + static_cast<std::ptrdiff_t>(position + sizeof(size));
  return {payload, payload + static_cast<std::ptrdiff_t>(size)};
}

GrayImage cut_out(const Block& image, Place place, int width, int height) {
  GrayImage picture{width, height, {}};
  for (int y = 0; y < height; ++y) {
    const unsigned char* const row = image.row(place.y + y) + place.x;
    picture.pixels.insert(picture.pixels.end(), row, row + width);
  }
  return picture;
}

double correlation(const GrayImage& first, const GrayImage& second) {
  const auto count = static_cast<double>(first.pixels.size());
  const double mean_x = std::accumulate(first.pixels.begin(), first.pixels.end(), 0.0) / count;
  const double mean_y = std::accumulate(second.pixels.begin(), second.pixels.end(), 0.0) / count;
  double xy = 0;
  double xx = 0;
  double yy = 0;
  for (std::size_t i = 0; i < first.pixels.size(); ++i) {
    const double x = first.pixels[i] - mean_x;
    const double y = second.pixels[i] - mean_y;
    xy += x * y;
    xx += x * x;
    yy += y * y;
  }
  return xy / std::sqrt(xx * yy);
}

double mean_of_row(const Block& image, int y) {
  const unsigned char* const row = image.row(y);
  return std::accumulate(row, row + image.width(), 0.0) / image.width();
}

double mean(const Block& image) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    sum += mean_of_row(image, y);
  }
  return sum / image.height();
}

unsigned char darkest(const Block& image) {
  unsigned char level = 255;
  for (int y = 0; y < image.height(); ++y) {
    level = std::min(level, *std::min_element(image.row(y), image.row(y) + image.width()));
  }
  return level;
}

}  // namespace Osv::simulator
