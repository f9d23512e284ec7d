#include <fstream>
#include <iterator>

#include "guide/guide_fixture.h"

int finger_image_main(int, char**);

namespace Osv::guide {
namespace {

/// A finger that comes to the platen.
class FingerImageExample : public GuideTest {
 protected:
  FingerImageExample() { bench.set_timeline({15, 10, 45, 5, true}); }

  std::string written() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  hvk3::test::TemporaryFolder folder;
  std::string path = folder.file("finger.pgm");
};

TEST_F(FingerImageExample, WritesTheImageOfAFinger) {
  EXPECT_EQ(run(&finger_image_main, {path}).status, 0);
  const std::string file = written();
  const std::string head = "P5\n498 438\n255\n";
  ASSERT_EQ(file.size(), head.size() + 498UL * 438UL);
  EXPECT_EQ(file.substr(0, head.size()), head);
  EXPECT_NE(file.find('\x20', head.size()), std::string::npos);  // ridges are dark
}

TEST_F(FingerImageExample, EndsWithTheErrorThatEndedCapture) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 20 on fails with 1460");
  const Outcome outcome = run(&finger_image_main, {path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "KR9 scanner. Scanner error: 1460 error: 1460\n");
  EXPECT_EQ(written(), "");
}

}  // namespace
}  // namespace Osv::guide
