#include "closed_calls.h"

#include <cstring>

#include "libraries/calibration_api.h"
#include "libraries/scanner_api.h"
#include "stand_ins/control.h"

namespace Osv::bench {
namespace {

constexpr int kDose = 60;
constexpr std::size_t kPaletteEntries = 256;
constexpr std::size_t kInFront = sizeof(tagBITMAPINFOHEADER) + 4 * kPaletteEntries;
constexpr std::uint16_t kBits = 8;

tagBITMAPINFOHEADER header_of(const Size& size) {
  tagBITMAPINFOHEADER header{};
  header.biSize = sizeof(header);
  header.biWidth = size.width;
  header.biHeight = size.height;
  header.biPlanes = 1;
  header.biBitCount = kBits;
  header.biSizeImage = static_cast<std::uint32_t>(size.pixels());
  return header;
}

}  // namespace

void set_frame_size(const Size& size) {
  ostrevan_bench_scanner()->width = size.width;
  ostrevan_bench_scanner()->height = size.height;
}

ClosedCalls::ClosedCalls(const Size& size)
    : m_size(size),
      m_scanner(ftrScanOpenDeviceOnInterface(0)),
      m_engine(CalibrateCreate()),
      m_raw(kInFront + size.pixels()),
      m_image(kInFront + size.pixels()) {
  const tagBITMAPINFOHEADER header = header_of(size);
  std::memcpy(m_raw.data(), &header, sizeof(header));
}

unsigned char* ClosedCalls::raw_pixels() { return m_raw.data() + kInFront; }

void ClosedCalls::fetch() { ftrScanGetImageByVariableDose(m_scanner, kDose, raw_pixels()); }
void ClosedCalls::fetch_dark() { ftrScanGetDarkImage(m_scanner, raw_pixels()); }
void ClosedCalls::fetch_backlight() { ftrScanGetBacklightImage(m_scanner, raw_pixels()); }

void ClosedCalls::calibrate_into(ClosedCalls& other) {
  unsigned long room = other.m_image.size();
  Calibrate(m_engine, reinterpret_cast<tagBITMAPINFOHEADER*>(m_raw.data()), m_raw.size(),
            reinterpret_cast<tagBITMAPINFOHEADER*>(other.m_image.data()), &room);
}

}  // namespace Osv::bench
