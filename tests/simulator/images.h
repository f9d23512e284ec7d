#pragma once

#include <cstdint>
#include <vector>

#include "libraries/calibration_api.h"
#include "ostrevanhvk3/image_block.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Images on their way through the stand-ins, as the plug-in brings them there.

namespace Osv::simulator {

using Bytes = std::vector<unsigned char>;

/// An 8-bit bitmap in one block. Rows count from the top.
class Block {
 public:
  Block(int width, int height);
  explicit Block(unsigned long size) : m_vBytes(size) {}

  tagBITMAPINFOHEADER* header() { return reinterpret_cast<tagBITMAPINFOHEADER*>(m_vBytes.data()); }
  const tagBITMAPINFOHEADER& head() const {
    return *reinterpret_cast<const tagBITMAPINFOHEADER*>(m_vBytes.data());
  }
  unsigned char* row(int y);
  const unsigned char* row(int y) const;
  int width() const { return head().biWidth; }
  int height() const { return head().biHeight; }
  unsigned long size() const { return m_vBytes.size(); }
  Bytes& bytes() { return m_vBytes; }

 private:
  Bytes m_vBytes;
};

/// A raw frame as a bitmap, upright and positive.
Block prepare(const Bytes& frame, int width = kRawWidth, int height = kRawHeight);

/// A raw frame from the scanner of a handle at the nominal dose.
Bytes take_dose_frame(void* scanner);

/// An engine with a payload.
class Engine {
 public:
  explicit Engine(const Bytes& payload);
  ~Engine() { CalibrateDelete(&m_hEngine); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void* handle() const { return m_hEngine; }
  unsigned long needed_size(Block& input) const;
  Block correct(Block input) const;

 private:
  void* m_hEngine;
};

/// The payload in the memory of the scanner at an interface.
Bytes payload_of_scanner(const Bench& bench, unsigned int interface);

/// The piece of a corrected image where the bench lays a picture of that size.
GrayImage cut_out(const Block& image, Place place, int width, int height);

/// Pearson's correlation of two pictures of one size.
double correlation(const GrayImage& first, const GrayImage& second);

double mean_of_row(const Block& image, int y);
double mean(const Block& image);
unsigned char darkest(const Block& image);

}  // namespace Osv::simulator
