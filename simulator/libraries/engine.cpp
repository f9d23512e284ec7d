#include "libraries/engine.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "libraries/text_out.h"

namespace Osv::simulator {
namespace {

constexpr int kEmptyLevel = 250;  // the empty platen in a corrected image
constexpr int kWhite = 255;
constexpr double kSensitiveFactor = 1.6;  // of contrast in sensitive mode
constexpr unsigned int kFraction = 256;   // fixed point of gains and weights
constexpr std::size_t kPaletteEntries = 256;
constexpr std::size_t kHead = sizeof(tagBITMAPINFOHEADER) + 4 * kPaletteEntries;

constexpr std::array<std::pair<long, const char*>, 9> kTexts = {
    {{kEngineBadHandle, "Invalid handle"},
     {kEngineBadArgument, "Invalid argument"},
     {kEngineNoData, "No calibration data"},
     {kEngineBadData, "The calibration data is damaged"},
     {kEngineBadBitmap, "Invalid bitmap"},
     {kEngineWrongSize, "The bitmap does not fit the calibration data"},
     {kEngineBadValue, "Invalid value of an option"},
     {kEngineSmallBuffer, "The buffer is too small"},
     {kEngineNoOption, "The option is not available"}}};

std::size_t row_bytes(int width) { return (static_cast<std::size_t>(width) + 3) / 4 * 4; }

std::size_t area(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  const std::size_t last = text.find_last_not_of(' ');
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, last - first + 1);
}

using ToneTable = std::array<unsigned char, 256>;

/// Levels drawn away from `center` by `factor`.
ToneTable stretch(double center, double factor) {
  ToneTable table = {};
  for (int level = 0; level <= kWhite; ++level) {
    table[static_cast<std::size_t>(level)] = static_cast<unsigned char>(
        std::lround(std::clamp(center + (level - center) * factor, 0.0, double{kWhite})));
  }
  return table;
}

/// The corrected image in blocks, for the dynamic finger mask.
class Blocks {
 public:
  static constexpr int kSide = 8;
  static constexpr unsigned int kPixels = kSide * kSide;
  static constexpr unsigned int kFingerSum = 235 * kPixels;  // a block below this is finger

  Blocks(int width, int height, unsigned char* image)
      : m_nStride(static_cast<std::size_t>(width)),
        m_nColumns(width / kSide),
        m_nRows(height / kSide),
        m_pImage(image) {}

  int count() const { return m_nColumns * m_nRows; }

  unsigned int sum(int block) const {
    unsigned int total = 0;
    const unsigned char* row = corner(block);
    for (int y = 0; y < kSide; ++y, row += m_nStride) {
      for (int x = 0; x < kSide; ++x) {
        total += row[x];
      }
    }
    return total;
  }

  void apply(int block, const ToneTable& tones) const {
    unsigned char* row = corner(block);
    for (int y = 0; y < kSide; ++y, row += m_nStride) {
      std::transform(row, row + kSide, row, [&](unsigned char level) { return tones[level]; });
    }
  }

 private:
  unsigned char* corner(int block) const {
    const auto column = static_cast<std::size_t>(block % m_nColumns);
    const auto row = static_cast<std::size_t>(block / m_nColumns);
    return m_pImage + kSide * (row * m_nStride + column);
  }

  std::size_t m_nStride;
  int m_nColumns;
  int m_nRows;
  unsigned char* m_pImage;
};

}  // namespace

const char* engine_text(long code) {
  const auto* const found = std::find_if(kTexts.begin(), kTexts.end(),
                                         [&](const auto& entry) { return entry.first == code; });
  return found == kTexts.end() ? nullptr : found->second;
}

long CalibrationEngine::set_data(const unsigned char* data, std::size_t size) {
  Payload payload;
  if (!parse_payload(data, size, payload)) {
    return kEngineBadData;
  }
  m_sPayload = std::move(payload);
  make_sources();
  make_gains();
  m_vFlat.resize(area(m_sPayload.raw_width, m_sPayload.raw_height));
  m_vImage.resize(m_vSources.size());
  return kEngineGood;
}

void CalibrationEngine::make_sources() {
  m_vSources.clear();
  m_vSources.reserve(area(m_sPayload.final_width, m_sPayload.final_height));
  for (int y = 0; y < m_sPayload.final_height; ++y) {
    for (int x = 0; x < m_sPayload.final_width; ++x) {
      const Point there = to_raw(m_sPayload, x, y);
      // Optics that look beyond the frame see its edge.
      const double raw_x = std::clamp(there.x, 0.0, m_sPayload.raw_width - 1.001);
      const double raw_y = std::clamp(there.y, 0.0, m_sPayload.raw_height - 1.001);
      const auto left = static_cast<std::uint32_t>(raw_x);
      const auto top = static_cast<std::uint32_t>(raw_y);
      m_vSources.push_back({top * static_cast<std::uint32_t>(m_sPayload.raw_width) + left,
                            static_cast<std::uint16_t>((raw_x - left) * kFraction),
                            static_cast<std::uint16_t>((raw_y - top) * kFraction)});
    }
  }
}

void CalibrationEngine::make_gains() {
  m_vGains.resize(m_sPayload.white.size());
  for (std::size_t i = 0; i < m_vGains.size(); ++i) {
    // A payload from elsewhere may have dead pixels, where white is no brighter than dark.
    const int span = std::max(m_sPayload.white[i] - m_sPayload.dark[i], 1);
    m_vGains[i] =
        static_cast<std::uint16_t>(kEmptyLevel * kFraction / static_cast<unsigned int>(span));
  }
}

long CalibrationEngine::check_input(const tagBITMAPINFOHEADER* input, unsigned long size,
                                    ImageIn& image) const {
  if (m_vSources.empty()) {
    return kEngineNoData;
  }
  const auto found = read_bitmap(input, size);
  if (!found.has_value()) {
    return kEngineBadBitmap;
  }
  image = *found;
  const bool fits = image.width == m_sPayload.raw_width && image.height == m_sPayload.raw_height;
  return fits ? kEngineGood : kEngineWrongSize;
}

unsigned long CalibrationEngine::output_size() const {
  return kHead +
         row_bytes(m_sPayload.final_width) * static_cast<std::size_t>(m_sPayload.final_height);
}

long CalibrationEngine::calibrate(const tagBITMAPINFOHEADER* input, unsigned long input_size,
                                  tagBITMAPINFOHEADER* output, unsigned long& size) {
  ImageIn image;
  const long code = check_input(input, input_size, image);
  if (code != kEngineGood) {
    return code;
  }
  const bool fits = output != nullptr && size >= output_size();
  size = output_size();
  if (!fits) {
    return kEngineSmallBuffer;
  }
  flatten(image);
  resample();
  if (m_bDynamicMask) {
    stretch_finger();
  }
  write(output);
  return kEngineGood;
}

void CalibrationEngine::flatten(const ImageIn& image) {
  const unsigned char* dark = m_sPayload.dark.data();
  const std::uint16_t* gain = m_vGains.data();
  unsigned char* flat = m_vFlat.data();
  for (int y = 0; y < image.height; ++y) {
    const unsigned char* const row = image.row(y);
    // The upper half of a 16-bit product: compilers have vectors for just this.
    for (int x = 0; x < image.width; ++x) {
      const int light = std::max(row[x] - dark[x], 0);
      const auto shifted = static_cast<std::uint16_t>(light << 8);
      const auto level = static_cast<std::uint16_t>((std::uint32_t{shifted} * gain[x]) >> 16U);
      flat[x] = static_cast<unsigned char>(std::min<std::uint16_t>(level, kWhite));
    }
    dark += image.width;
    gain += image.width;
    flat += image.width;
  }
}

void CalibrationEngine::resample() {
  constexpr std::uint32_t kHalf = kFraction * kFraction / 2;
  const std::size_t below = static_cast<std::size_t>(m_sPayload.raw_width);
  for (std::size_t i = 0; i < m_vSources.size(); ++i) {
    const Source source = m_vSources[i];
    const unsigned char* const pixel = m_vFlat.data() + source.index;
    const unsigned int u = source.u;
    const unsigned int v = source.v;
    const unsigned int upper = pixel[0] * (kFraction - u) + pixel[1] * u;
    const unsigned int lower = pixel[below] * (kFraction - u) + pixel[below + 1] * u;
    m_vImage[i] = static_cast<unsigned char>((upper * (kFraction - v) + lower * v + kHalf) /
                                             (kFraction * kFraction));
  }
}

void CalibrationEngine::stretch_finger() {
  constexpr double kFactor = 1.15;
  std::uint64_t sum = 0;
  std::uint64_t count = 0;
  const Blocks blocks(m_sPayload.final_width, m_sPayload.final_height, m_vImage.data());
  m_vFingerBlocks.clear();
  for (int block = 0; block < blocks.count(); ++block) {
    const unsigned int block_sum = blocks.sum(block);
    if (block_sum < Blocks::kFingerSum) {
      m_vFingerBlocks.push_back(block);
      sum += block_sum;
      count += Blocks::kPixels;
    }
  }
  if (count != 0) {
    const ToneTable tones = stretch(static_cast<double>(sum) / static_cast<double>(count), kFactor);
    for (const int block : m_vFingerBlocks) {
      blocks.apply(block, tones);
    }
  }
}

void CalibrationEngine::write(tagBITMAPINFOHEADER* output) const {
  const std::size_t stride = row_bytes(m_sPayload.final_width);
  const auto width = static_cast<std::size_t>(m_sPayload.final_width);
  const auto height = static_cast<std::size_t>(m_sPayload.final_height);
  *output = {.biSize = sizeof(*output),
             .biWidth = m_sPayload.final_width,
             .biHeight = m_sPayload.final_height,
             .biPlanes = 1,
             .biBitCount = 8,
             .biCompression = 0,
             .biSizeImage = static_cast<std::uint32_t>(stride * height),
             .biXPelsPerMeter = m_sPayload.pixels_per_metre,
             .biYPelsPerMeter = m_sPayload.pixels_per_metre,
             .biClrUsed = 0,
             .biClrImportant = 0};
  auto* const bytes = reinterpret_cast<unsigned char*>(output);
  for (std::uint32_t i = 0; i < kPaletteEntries; ++i) {
    const std::uint32_t gray = i * 0x010101U;
    std::memcpy(bytes + sizeof(*output) + sizeof(gray) * i, &gray, sizeof(gray));
  }
  static const ToneTable sensitive = stretch(kEmptyLevel, kSensitiveFactor);
  for (std::size_t y = 0; y < height; ++y) {
    const unsigned char* const source = m_vImage.data() + y * width;
    unsigned char* const row = bytes + kHead + (height - 1 - y) * stride;
    if (m_bSensitive) {
      std::transform(source, source + width, row, [](unsigned char v) { return sensitive[v]; });
    } else {
      std::memcpy(row, source, width);
    }
    std::memset(row + width, 0, stride - width);
  }
}

long CalibrationEngine::contamination(const tagBITMAPINFOHEADER* bitmap, unsigned long size,
                                      double& percent) {
  constexpr int kClean = 230;  // level of the flat field below which a pixel is dirty
  ImageIn image;
  const long code = check_input(bitmap, size, image);
  if (code != kEngineGood) {
    return code;
  }
  flatten(image);
  const auto dirty = std::count_if(m_vFlat.begin(), m_vFlat.end(),
                                   [](unsigned char level) { return level < kClean; });
  constexpr double kPercent = 100;
  percent = kPercent * static_cast<double>(dirty) / static_cast<double>(m_vFlat.size());
  return kEngineGood;
}

bool CalibrationEngine::*CalibrationEngine::option_named(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, bool CalibrationEngine::*>, 2> kOptions = {
      {{"SensitiveMode", &CalibrationEngine::m_bSensitive},
       {"DynamicFingerMask", &CalibrationEngine::m_bDynamicMask}}};
  for (const auto& [option, member] : kOptions) {
    if (option == name) {
      return member;
    }
  }
  return nullptr;
}

long CalibrationEngine::set_option(std::string_view text) {
  const std::size_t sign = std::min(text.find('='), text.size());
  const auto option = option_named(trimmed(text.substr(0, sign)));
  if (option == nullptr) {
    return kEngineNoOption;
  }
  const std::string_view value = trimmed(text.substr(std::min(sign + 1, text.size())));
  if (value != "true" && value != "false") {
    return kEngineBadValue;
  }
  this->*option = value == "true";
  return kEngineGood;
}

long CalibrationEngine::get_option(std::string_view name, char* value,
                                   unsigned long& length) const {
  const auto option = option_named(name);
  if (option == nullptr) {
    return kEngineNoOption;
  }
  const std::string_view text = this->*option ? "Enabled" : "Disabled";
  return give_text(text, value, length) ? kEngineGood : kEngineSmallBuffer;
}

}  // namespace Osv::simulator
