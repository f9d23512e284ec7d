#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "detection/bitmap_utilities.h"
#include "detection/finger_utilities.h"
#include "detection/image_detection.h"
#include "detection/rolled_finger.h"
#include "detection/rolled_finger_lx1.h"
#include "support/memory.h"
#include "support/target.h"

/// @file
/// Detection strategies on frames of any size, depth and content, as a calibration engine may
/// deliver them, also when each frame differs from the one before.

namespace Osv::fuzz {
namespace {

using lx::ClImageDetection;
using utilities::ClSimpleBitmap;
using Block = std::vector<unsigned char>;
using Strategy = std::unique_ptr<ClImageDetection>;

constexpr unsigned int kMostFrames = 12;

/// A frame as it stands in memory, ended by the end of its memory.
struct Frame {
  Block block;

  void give_to(ClSimpleBitmap& bitmap) const {
    auto memory = std::make_unique<unsigned char[]>(block.size());
    std::memcpy(memory.get(), block.data(), block.size());
    bitmap.Attach(reinterpret_cast<tagBITMAPINFOHEADER*>(memory.release()));
  }
};

/// Small mostly, now and then wide, as the seams of the kernels lie at 64, 256 and 2048 columns.
unsigned long read_side(Input& input) {
  constexpr unsigned int kWide = 250;
  const unsigned int side = input.byte();
  return side < kWide ? side / 2 : input.number<std::uint16_t>() % 4200;
}

tagBITMAPINFOHEADER read_header(Input& input) {
  constexpr std::array<std::uint16_t, 4> kDepths = {8, 16, 24, 32};
  const unsigned int form = input.byte();
  tagBITMAPINFOHEADER bi{};
  bi.biSize = sizeof(bi);
  bi.biPlanes = 1;
  bi.biWidth = static_cast<std::int32_t>(read_side(input));
  bi.biHeight = static_cast<std::int32_t>(bi.biWidth > 300 ? input.below(4) : read_side(input));
  bi.biBitCount = form < 200 ? 8 : kDepths[form % kDepths.size()];
  bi.biClrUsed = form % 5 == 0 ? form : 0;
  bi.biYPelsPerMeter = form % 3 == 0 ? 19685 : input.number<std::int32_t>();
  if (bi.biHeight > 600) {
    bi.biHeight %= 600;
  }
  return bi;
}

/// Pixels of one gray, with noise and bytes of the run in it.
void draw(unsigned char* pixels, std::size_t size, Input& input) {
  const std::uint8_t gray = input.byte();
  const std::uint8_t noise = input.byte();
  std::uint32_t random = noise;
  for (std::size_t i = 0; i < size; ++i) {
    random = random * 1664525 + 1013904223;
    pixels[i] = static_cast<unsigned char>(gray - (noise == 0 ? 0 : (random >> 24) % noise));
  }
  const Bytes own = input.bytes(std::min<std::size_t>(input.below(32), size));
  std::copy(own.begin(), own.end(), pixels);
}

Frame read_frame(Input& input) {
  const tagBITMAPINFOHEADER bi = read_header(input);
  Frame frame{Block(ClSimpleBitmap::FullSize(&bi))};
  std::memcpy(frame.block.data(), &bi, sizeof(bi));
  auto* const block = reinterpret_cast<tagBITMAPINFOHEADER*>(frame.block.data());
  unsigned char* const pixels = ClSimpleBitmap::Pixel(block);
  draw(pixels, static_cast<std::size_t>(frame.block.data() + frame.block.size() - pixels), input);
  return frame;
}

std::vector<Frame> read_frames(Input& input) {
  std::vector<Frame> frames;
  while (input.left() > 0 && frames.size() < kMostFrames) {
    frames.push_back(read_frame(input));
    while (input.left() > 0 && frames.size() < kMostFrames && input.below(4) == 0) {
      frames.push_back(frames[input.byte() % frames.size()]);  // a frame that was there before
    }
  }
  return frames;
}

Strategy make_strategy(unsigned int choice) {
  constexpr unsigned int kModes = 6;  // the last one has no strategy of its own
  const unsigned int mode = choice % kModes;
  Strategy strategy(ClImageDetection::Create(static_cast<eCaptureModeIDs>(mode)));
  require((strategy == nullptr) == (mode == eCapturePreviewAutoDetect), "a mode has its strategy");
  return strategy == nullptr ? std::make_unique<lx::ClRolledFinger>() : std::move(strategy);
}

Block block_of(const ClSimpleBitmap& bitmap) {
  if (bitmap.Empty()) {
    return {};
  }
  const auto* const first = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {first, first + bitmap.FullSize()};
}

/// What a strategy says to frames one after the other: verdicts and images.
struct Verdicts {
  std::vector<bool> finished;
  std::vector<Block> images;

  bool operator==(const Verdicts&) const = default;
};

void judge(ClImageDetection& strategy, const Frame& frame, Verdicts& verdicts) {
  ClSimpleBitmap in;
  frame.give_to(in);
  ClSimpleBitmap out;
  verdicts.finished.push_back(strategy.Detect(in, out));
  require(block_of(in) == frame.block, "a strategy leaves its frame as it was");
  verdicts.images.push_back(block_of(out));
}

Verdicts judge_all(unsigned int choice, const std::vector<Frame>& frames) {
  const Strategy strategy = make_strategy(choice);
  Verdicts verdicts;
  for (const Frame& frame : frames) {
    judge(*strategy, frame, verdicts);
  }
  return verdicts;
}

/// A copy in the middle of a roll goes on by itself.
void judge_copies(const std::vector<Frame>& frames) {
  lx::ClRolledFingerLX1 rolled;
  lx::ClRolledFinger followed;
  Verdicts verdicts;
  for (const Frame& frame : frames) {
    judge(rolled, frame, verdicts);
    judge(followed, frame, verdicts);
    const std::unique_ptr<lx::ClRolledFingerLX1> clone(rolled.clone());
    judge(*clone, frame, verdicts);
    lx::ClRolledFinger copy(followed);
    judge(copy, frame, verdicts);
    copy = followed;
    judge(copy, frame, verdicts);
  }
}

/// The measures that strategies are made of, over each frame and each pair of neighbours.
std::vector<unsigned long> measure(const std::vector<Frame>& frames, unsigned int choice) {
  std::vector<unsigned long> measures;
  lx::ClRolledFinger followed;
  lx::ClRolledFingerLX1 rolled;
  ClSimpleBitmap before;
  for (const Frame& frame : frames) {
    ClSimpleBitmap bitmap;
    frame.give_to(bitmap);
    for (unsigned int area = 0; area < 4; ++area) {
      const auto place = static_cast<lx::ClFingerUtilities::eArea>(area);
      measures.push_back(lx::ClFingerUtilities::IsFinger(bitmap, place) ? 1 : 0);
      measures.push_back(lx::ClFingerUtilities::IsFinger(bitmap, choice, place) ? 1 : 0);
      measures.push_back(
          followed.Gray_Avarage(bitmap, static_cast<lx::ClRolledFinger::eDetectArea>(area)));
    }
    measures.push_back(lx::ClBitmapUtilities::Gray_Sum(bitmap));
    measures.push_back(rolled.ColumnSum(bitmap, choice));
    if (!before.Empty()) {
      rolled.CpyColumn(bitmap, before, choice);
      followed.CopyBitmapRow(bitmap, before, choice % 7, choice % 11, bitmap.BPRow());
    }
    before = bitmap;
  }
  return measures;
}

/// The edge of lines and profiles.
std::vector<unsigned char> edges(const std::vector<Frame>& frames, unsigned int choice) {
  lx::ClRolledFinger followed;
  std::vector<unsigned char> profile(choice % 16, static_cast<unsigned char>(choice));
  for (const Frame& frame : frames) {
    ClSimpleBitmap bitmap;
    frame.give_to(bitmap);
    std::vector<unsigned char> next = unwritten_bytes(bitmap.Height());
    followed.CalculateLineRand(bitmap, profile, next);
    const unsigned char first = next.empty() ? static_cast<unsigned char>(0) : next.front();
    if (!next.empty() && bitmap.Width() > 0) {
      next.front() = static_cast<unsigned char>(
          followed.LineRand(bitmap.Pixel(), first, bitmap.Width()) + choice);
    }
    profile = next;
  }
  return profile;
}

}  // namespace

/// The first byte chooses the strategy; then come the frames.
void run(Input input) {
  const unsigned int choice = input.byte();
  const std::vector<Frame> frames = read_frames(input);
  written_whole([&] { return judge_all(choice, frames); });
  written_whole([&] { return measure(frames, choice); });
  written_whole([&] { return edges(frames, choice); });
  judge_copies(frames);
}

}  // namespace Osv::fuzz
