#include "ostrevanhvk3/exports.h"
#include "steady_finger.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

namespace Osv::guide {
namespace {

/// A finger that comes and goes once in 75 frames, and frames one by one.
class SteadyFingerOnFrames : public simulator::SimulatorFixture {
 protected:
  SteadyFingerOnFrames() { bench.set_timeline(simulator::Timeline{}); }
  ~SteadyFingerOnFrames() override { DestroyFrameGrabber(); }

  /// A snap takes two frames, of which it gives the second.
  bool finishes_an_image() {
    unsigned char* block = nullptr;
    EXPECT_EQ(GetFrameGrabber()->GetImage(1, &block), 0UL);
    utilities::ClSimpleBitmap in;
    in.Copy(reinterpret_cast<const tagBITMAPINFOHEADER*>(block));
    GetFrameGrabber()->FreeImage(block);
    utilities::ClSimpleBitmap out;
    return strategy.Detect(in, out);
  }

  int images_of(int snaps) {
    int images = 0;
    for (int snap = 0; snap < snaps; ++snap) {
      images += finishes_an_image() ? 1 : 0;
    }
    return images;
  }

  simulator::ClosedLibraries libraries;
  example::SteadyFinger strategy;
};

TEST_F(SteadyFingerOnFrames, TakesEachFingerOnce) { EXPECT_EQ(images_of(75), 2); }

}  // namespace
}  // namespace Osv::guide
