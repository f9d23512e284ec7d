#include "guide/guide_fixture.h"

int choose_scanner_main(int, char**);

namespace Osv::guide {
namespace {

/// Five scanners, of which the last one has a number that is no text.
class ChooseScannerExample : public GuideTest {
 protected:
  ChooseScannerExample() {
    for (unsigned int interface = 0; interface < 5; ++interface) {
      simulator::Device device;
      device.serial = "SERIAL 0";
      device.serial.back() = static_cast<char>(interface < 4 ? '0' + interface : 7);
      bench.plug_in(interface, device);
    }
    bench.list_from_base(true);
  }
};

TEST_F(ChooseScannerExample, ListsAllScanners) {
  const Outcome outcome = run(&choose_scanner_main);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "0\tSERIAL 0\n1\tSERIAL 1\n2\tSERIAL 2\n3\tSERIAL 3\n4\tSERIAL ?\n");
}

TEST_F(ChooseScannerExample, DescribesTheOneThatIsChosen) {
  const Outcome outcome = run(&choose_scanner_main, {"2"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, EndsWith("\nOstrevan KR9 scanner\nSERIAL 2\n2.1\n3.4.5\n"));
}

TEST_F(ChooseScannerExample, ReportsAnInterfaceWithoutAScanner) {
  const Outcome outcome = run(&choose_scanner_main, {"9"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, StartsWith("error 27: The device index"));
}

}  // namespace
}  // namespace Osv::guide
