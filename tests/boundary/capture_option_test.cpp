#include <gtest/gtest.h>

#include "ostrevanhvk3/feature_schema.h"

namespace Osv::lx {
namespace {

constexpr unsigned int kAllOptions = 0x80;  // one beyond the highest that has a meaning

TEST(CaptureOptions, AreLiveWithoutAnyOrWithOneOfTheThreeLowest) {
  for (unsigned int options = 0; options < kAllOptions; ++options) {
    EXPECT_EQ(isLiveMode(options), options == 0 || options % 8 != 0) << options;
  }
  EXPECT_FALSE(isLiveMode(0x80000000));
}

TEST(CaptureOptions, AreNeverPlain) {
  for (unsigned int options = 0; options < kAllOptions; ++options) {
    EXPECT_FALSE(isPlainMode(options)) << options;
  }
}

TEST(CaptureOptions, OfRollPreviewAndSignatureHaveABitEach) {
  for (unsigned int options = 0; options < kAllOptions; ++options) {
    EXPECT_EQ(isRollMode(options), (options & 0x8) == 0x8) << options;
    EXPECT_EQ(isPreviewMode(options), (options & 0x10) == 0x10) << options;
    EXPECT_EQ(isPreviewAutoDetectMode(options), (options & 0x30) == 0x30) << options;
    EXPECT_EQ(isSignatureMode(options), (options & 0x40) == 0x40) << options;
  }
}

struct OptionMode {
  unsigned int options;
  unsigned int mode;
};

struct CaptureModes : testing::TestWithParam<OptionMode> {};

TEST_P(CaptureModes, FollowFromOptionsInTheOrderLiveRolledPreview) {
  EXPECT_EQ(CapOption2CapMode(GetParam().options), GetParam().mode);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CaptureModes,
    testing::Values(OptionMode{0, 0}, OptionMode{0x1, 0}, OptionMode{0x2, 0}, OptionMode{0x4, 0},
                    OptionMode{0x9, 0}, OptionMode{0x7F, 0}, OptionMode{0x8, 2},
                    OptionMode{0x38, 2}, OptionMode{0x10, 4}, OptionMode{0x50, 4},
                    OptionMode{0x30, 5}, OptionMode{0x70, 5}, OptionMode{0x20, 0},
                    OptionMode{0x40, 0}, OptionMode{0x60, 0}, OptionMode{0x80, 0}));

}  // namespace
}  // namespace Osv::lx
