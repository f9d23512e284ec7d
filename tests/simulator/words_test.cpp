#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "libraries/scanner_api.h"
#include "simulator/pace_watch.h"
#include "simulator/platen_fixture.h"
#include "support/temporary_folder.h"

namespace Osv::simulator {
namespace {

using namespace std::chrono_literals;

constexpr double kEmpty = 248;

class SteeringWords : public PlatenFixture {
 protected:
  double level() { return mean(image()); }

  /// Asks for a frame, and gives the status.
  int ask() {
    Bytes buffer(std::size_t{kRawWidth} * kRawHeight);
    return ftrScanGetImageByVariableDose(m_hScanner, 60, buffer.data());
  }

  /// Statuses of the next frames.
  std::vector<int> statuses(unsigned int count) {
    std::vector<int> all;
    for (unsigned int i = 0; i < count; ++i) {
      all.push_back(ask());
    }
    return all;
  }

  /// Where the finger touches after so many frames.
  double center_after(unsigned int frames) {
    skip(frames);
    return center_of(column_darkness(image()));
  }

  /// The text with which a line is refused.
  std::string refusal(const std::string& line) {
    try {
      bench.run(line);
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(SteeringWords, FingerOnBringsAFingerThatStays) {
  bench.run("finger on");
  skip(5);
  const double settled = level();
  EXPECT_LT(settled, kEmpty - 10);
  skip(20);
  EXPECT_NEAR(level(), settled, 0.1);
}

TEST_F(SteeringWords, FingerOffLiftsIt) {
  bench.run("finger on");
  skip(6);
  bench.run("finger off");
  skip(3);
  EXPECT_GT(level(), kEmpty);
}

TEST_F(SteeringWords, FingerComesAndGoesIsHowEverySceneBegins) {
  bench.run("finger on");
  bench.run("finger comes and goes");
  EXPECT_GT(level(), kEmpty);
  skip(30);
  EXPECT_LT(level(), kEmpty - 10);
  skip(44);
  EXPECT_GT(level(), kEmpty);
}

TEST_F(SteeringWords, RollTakesTheFingerToTheOtherSide) {
  bench.run("print 1 rolled");
  bench.run("roll right over 4 frames");
  EXPECT_LT(center_after(3), 150);
  EXPECT_GT(center_after(3), 350);
  bench.run("roll left over 4 frames");
  EXPECT_LT(center_after(4), 150);
}

TEST_F(SteeringWords, RollAndBackReturnsIt) {
  bench.run("print 1 rolled");
  bench.run("roll left and back over 8 frames");
  EXPECT_LT(center_after(6), 150);
  EXPECT_GT(center_after(5), 350);
}

TEST_F(SteeringWords, PrintChoosesABuiltInOne) {
  bench.run("print 12");
  const GrayImage chosen = bench.finger();
  bench.set_print(12, ePrint::Plain);
  EXPECT_EQ(chosen.pixels, bench.finger().pixels);
}

TEST_F(SteeringWords, PrintRolledChoosesItFromNailToNail) {
  bench.run("print 12 rolled");
  EXPECT_EQ(bench.finger().width, 440);
}

TEST_F(SteeringWords, PictureTakesAFile) {
  const hvk3::test::TemporaryFolder folder;
  const std::string path = folder.file("a finger.bmp");
  Block block(7, 5);
  Bytes file(14 + block.size());
  file[0] = 'B';
  file[1] = 'M';
  file[10] = 1078 & 0xFF;
  file[11] = 1078 >> 8;
  std::copy(block.bytes().begin(), block.bytes().end(), file.begin() + 14);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  bench.run("picture '" + path + "'");
  EXPECT_EQ(bench.finger().width, 7);
}

TEST_F(SteeringWords, KindMakesAFakeFingerOfIt) {
  const auto glow = [this] {
    Bytes buffer(std::size_t{kRawWidth} * kRawHeight);
    ftrScanGetBacklightImage(m_hScanner, buffer.data());
    return mean(m_cEngine.correct(prepare(buffer)));
  };
  bench.set_timeline(Timeline::settled_finger());
  const double live = glow();
  bench.run("kind moulded");
  const double moulded = glow();
  bench.run("kind printed");
  const double printed = glow();
  bench.run("kind live");
  EXPECT_GT(moulded, live + 10);
  EXPECT_GT(printed, moulded + 10);
  EXPECT_NEAR(glow(), live, 0.1);
}

TEST_F(SteeringWords, SkinMakesItDryOrWet) {
  const double normal = mean(settled_image());
  bench.run("skin dry");
  EXPECT_GT(level(), normal + 3);
  bench.run("skin wet");
  EXPECT_LT(level(), normal - 3);
  bench.run("skin normal");
  EXPECT_NEAR(level(), normal, 0.1);
}

TEST_F(SteeringWords, PressureTellsHowFirmlyItPresses) {
  const double firm = mean(settled_image());
  bench.run("pressure 40");
  EXPECT_GT(level(), firm + 5);
}

TEST_F(SteeringWords, DirtComesInAnyAmountAndGoes) {
  bench.run("dirt on");
  EXPECT_NEAR(contamination(), 20, 1);
  bench.run("dirt 50");
  EXPECT_NEAR(contamination(), 50, 1);
  bench.run("dirt off");
  EXPECT_EQ(contamination(), 0);
}

TEST_F(SteeringWords, PaceSetsTheFrameRate) {
  const PaceWatch watch;
  bench.run("pace 200");
  frame();
  frame();
  bench.run("pace 0");
  frame();
  EXPECT_EQ(watch.waits(), (std::vector<PaceWatch::Duration>{0ms, 5ms}));
}

TEST_F(SteeringWords, UnplugTakesAScannerOffAndPlugBringsItBack) {
  bench.run("unplug 0");
  EXPECT_FALSE(bench.state(0).plugged_in);
  EXPECT_EQ(ask(), 0);
  bench.run("plug 0");
  EXPECT_TRUE(bench.state(0).plugged_in);
  EXPECT_EQ(bench.state(0).serial, "HVK30001");
}

TEST_F(SteeringWords, PlugBringsANewScannerWhereThereWasNone) {
  bench.run("plug 5");
  EXPECT_EQ(bench.state(5).serial, "HVK30006");
}

TEST_F(SteeringWords, PlugBringsOtherDevicesToo) {
  bench.run("plug 1 calibrated");
  bench.run("plug 2 blank");
  bench.run("plug 3 bare");
  bench.run("plug 4 foreign");
  EXPECT_GT(bench.memory(1).size(), 10000U);
  EXPECT_EQ(bench.memory(2), Bytes(4096));
  EXPECT_TRUE(bench.memory(3).empty());
  void* const foreign = ftrScanOpenDeviceOnInterface(4);
  ftrScanDeviceInfoRecord info = {};
  info.size = sizeof(info);
  EXPECT_EQ(ftrScanGetDeviceInfo(foreign, &info), 1);
  EXPECT_EQ(info.model, 9);
  ftrScanCloseDevice(foreign);
}

TEST_F(SteeringWords, UnplugAllLeavesNone) {
  bench.run("plug 1");
  bench.run("unplug all");
  EXPECT_FALSE(bench.state(0).plugged_in);
  EXPECT_FALSE(bench.state(1).plugged_in);
}

TEST_F(SteeringWords, LedSwitchesOneOfTheTwo) {
  bench.run("led green on at 0");
  bench.run("led red on at 0");
  bench.run("led green off at 0");
  EXPECT_EQ(bench.state(0).green, 0);
  EXPECT_EQ(bench.state(0).red, 255);
}

TEST_F(SteeringWords, AuthorizationAndSecretSetTheGuardedBytes) {
  bench.run("authorization 01020304050607 at 0");
  bench.run("secret a0B1c2D3e4F506 at 0");
  const SevenBytes code = {1, 2, 3, 4, 5, 6, 7};
  const SevenBytes secret = {0xA0, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5, 0x06};
  EXPECT_EQ(bench.state(0).authorization_code, code);
  EXPECT_EQ(bench.state(0).secret, secret);
}

TEST_F(SteeringWords, BusyFailsTheNextFramesWith121) {
  ask();
  bench.run("busy for 3 frames");
  EXPECT_EQ(statuses(4), (std::vector{0, 0, 0, 1}));
  bench.run("busy for 1 frame");
  ask();
  EXPECT_EQ(ftrScanGetLastError(), 121U);
}

TEST_F(SteeringWords, FaultAddsToThePlanAndCountsFromNow) {
  bench.set_faults("ftrScanGetImageByVariableDose call 5 fails with 7");
  EXPECT_EQ(statuses(2), (std::vector{1, 1}));
  bench.run("fault ftrScanGetImageByVariableDose call 2 fails with 31");
  EXPECT_EQ(statuses(4), (std::vector{1, 0, 0, 1}));
}

TEST_F(SteeringWords, FaultsOffEmptiesThePlan) {
  bench.run("fault ftrScanGetImageByVariableDose answers 0 with error 5");
  EXPECT_EQ(ask(), 0);
  EXPECT_EQ(ftrScanGetLastError(), 5U);
  bench.run("faults off");
  EXPECT_EQ(ask(), 1);
}

TEST_F(SteeringWords, ReleaseLetsABlockedCallGoOn) {
  bench.run("fault ftrScanGetImageByVariableDose call 1 blocks until told");
  int status = 0;
  std::thread thread([&] { status = ask(); });
  bench.wait_until_blocked("ftrScanGetImageByVariableDose");
  bench.run("release");
  thread.join();
  EXPECT_EQ(status, 1);
}

TEST_F(SteeringWords, WaitKeepsTheLinesBehindItForSoManyFrames) {
  bench.run("wait 3 frames");
  bench.run("unplug 0");
  EXPECT_EQ(statuses(5), (std::vector{1, 1, 1, 0, 0}));
}

TEST_F(SteeringWords, WaitCountsFramesThatFailToo) {
  bench.run("busy for 9 frames");
  bench.run("wait 2 frames");
  bench.run("faults off");
  EXPECT_EQ(statuses(3), (std::vector{0, 0, 1}));
}

TEST_F(SteeringWords, WaitGoesByCallsOfAnyFunctionToo) {
  bench.run("unplug 0");
  bench.run("wait 2 calls of ftrScanGetInterfaces");
  bench.run("plug 0");
  ftrScanInterfaceList list = {};
  ftrScanGetInterfaces(&list);
  EXPECT_FALSE(bench.state(0).plugged_in);
  ftrScanGetInterfaces(&list);
  EXPECT_TRUE(bench.state(0).plugged_in);
}

TEST_F(SteeringWords, WaitsFollowEachOther) {
  bench.run("wait 1 frame");
  bench.run("busy for 1 frame");
  bench.run("wait 2 frames");
  bench.run("unplug 0");
  EXPECT_EQ(statuses(4), (std::vector{1, 0, 1, 0}));
}

TEST_F(SteeringWords, ShowAnswersWithTheScene) {
  bench.run("plug 3");
  bench.run("unplug 3");
  bench.run("led green on at 0");
  bench.run("kind moulded");
  bench.run("dirt 7");
  EXPECT_EQ(bench.run("show"),
            "print 1, moulded, normal skin, pressure 100, is away\n"
            "dirt 7\n"
            "interface 0: HVK30001, plugged in, green on, red off\n"
            "interface 3: HVK30004, unplugged, green off, red off");
}

TEST_F(SteeringWords, HelpAnswersWithAllOfThem) {
  const std::string help = bench.run("help");
  for (const Word& word : bench.vocabulary()) {
    EXPECT_NE(help.find(word.pattern), std::string::npos) << word.pattern;
    EXPECT_NE(help.find(word.meaning), std::string::npos) << word.pattern;
  }
}

TEST_F(SteeringWords, BlankLinesAndCommentsMeanNothing) {
  EXPECT_EQ(bench.run(""), "");
  EXPECT_EQ(bench.run("  \t\r"), "");
  EXPECT_EQ(bench.run("# finger on"), "");
  bench.run("dirt 9   # percent");
  EXPECT_NEAR(contamination(), 9, 1);
}

TEST_F(SteeringWords, AnUnknownWordIsNamed) {
  EXPECT_EQ(refusal("fingers on"), "not understood at 'fingers'; known is what 'help' lists");
}

TEST_F(SteeringWords, ALineThatEndsEarlyIsToldWhatIsKnown) {
  EXPECT_EQ(refusal("roll right over"),
            "not understood at its end; known is 'roll WAY over FRAMES frames'");
  EXPECT_EQ(refusal("finger"),
            "not understood at its end; known is 'finger on', 'finger off', 'finger comes and "
            "goes'");
}

TEST_F(SteeringWords, AWordTooManyIsNamed) {
  EXPECT_EQ(refusal("release now"), "not understood at 'now'; known is 'release'");
}

TEST_F(SteeringWords, AWrongArgumentIsToldWhatItCanBe) {
  EXPECT_EQ(refusal("dirt 101"), "'101' is no PERCENT (0 to 100)");
  EXPECT_EQ(refusal("dirt -1"), "'-1' is no PERCENT (0 to 100)");
  EXPECT_EQ(refusal("plug 128"), "'128' is no INTERFACE (0 to 127)");
  EXPECT_EQ(refusal("wait 0 frames"), "'0' is no FRAMES (1 to 1000000)");
  EXPECT_EQ(refusal("print 99999999999"), "'99999999999' is no SEED (0 to 4294967295)");
  EXPECT_EQ(refusal("kind dead"), "'dead' is no KIND (`live`, `printed` or `moulded`)");
  EXPECT_EQ(refusal("secret 12 at 0"), "'12' is no BYTES (7 bytes in 14 hexadecimal digits)");
  EXPECT_EQ(refusal("wait 1 call of snap"),
            "'snap' is no FUNCTION (a function of the closed libraries)");
}

TEST_F(SteeringWords, AMissingPictureAndABadFaultAreRefusedAtOnce) {
  EXPECT_NE(refusal("picture /nowhere.png").find("/nowhere.png"), std::string::npos);
  EXPECT_EQ(refusal("fault ftrScanNothing fails"), "fault not understood at 'ftrScanNothing'");
  EXPECT_NE(refusal("picture 'half"), "");
}

TEST_F(SteeringWords, AScannerThatNeverWasCanNotBeUnplugged) {
  EXPECT_THROW(bench.run("unplug 9"), std::runtime_error);
}

TEST_F(SteeringWords, ARefusedLineChangesNothing) {
  bench.run("wait 1 frame");
  EXPECT_NE(refusal("dirt much"), "");
  bench.run("dirt 10");
  frame();
  EXPECT_NEAR(contamination(), 10, 1);
}

TEST_F(SteeringWords, AResetForgetsLinesThatWait) {
  bench.run("wait 1 frame");
  bench.run("unplug 0");
  bench.reset();
  bench.set_pace(0);
  void* const scanner = ftrScanOpenDeviceOnInterface(0);
  take_dose_frame(scanner);
  EXPECT_TRUE(bench.state(0).plugged_in);
}

TEST_F(SteeringWords, MayBeSaidWhileFramesAreTaken) {
  std::thread thread([this] { statuses(20); });
  for (const char* const line : {"finger on", "dirt 5", "skin wet", "wait 1 frame", "skin normal",
                                 "busy for 1 frame", "print 2", "led red on at 0", "show"}) {
    bench.run(line);
  }
  thread.join();
  ask();
  EXPECT_EQ(bench.state(0).red, 255);
}

class Scenario : public SteeringWords {
 protected:
  std::string scenario_refusal(const std::string& lines) {
    try {
      bench.set_scenario(lines);
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(Scenario, IsCarriedOutUpToAWaitAndThenFurther) {
  bench.set_scenario("dirt 5\nwait 2 frames\nunplug 0\nwait 1 frame\nplug 0");
  EXPECT_EQ(statuses(2), (std::vector{1, 1}));
  EXPECT_FALSE(bench.scenario().ended);
  EXPECT_FALSE(bench.state(0).plugged_in);
  EXPECT_EQ(ask(), 0);
  EXPECT_TRUE(bench.state(0).plugged_in);
  EXPECT_TRUE(bench.scenario().ended);
}

TEST_F(Scenario, ComesFromAFile) {
  const hvk3::test::TemporaryFolder folder;
  std::ofstream(folder.file("scene.txt")) << "# a dirty platen\n\ndirt 30\n";
  bench.load_scenario(folder.file("scene.txt"));
  EXPECT_NEAR(contamination(), 30, 1);
}

TEST_F(Scenario, ThatCanNotBeReadIsRefusedWithItsPath) {
  try {
    bench.load_scenario("/nowhere/scene.txt");
    FAIL() << "no refusal";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "can't read the scenario '/nowhere/scene.txt'");
  }
}

TEST_F(Scenario, WithABadLineIsRefusedWithItsNumberAndNothingIsDone) {
  EXPECT_EQ(scenario_refusal("dirt 30\n\nskin oily\n"),
            "line 3: 'oily' is no SKIN (`normal`, `dry` or `wet`)");
  EXPECT_EQ(contamination(), 0);
}

TEST_F(Scenario, TakesThePlaceOfAnEarlierOne) {
  bench.set_scenario("wait 1 frame\nunplug 0");
  bench.set_scenario("");
  ask();
  EXPECT_TRUE(bench.state(0).plugged_in);
}

TEST_F(Scenario, GoesOnBehindALineThatCanNotBeCarriedOut) {
  bench.set_scenario("wait 1 frame\nunplug 9\ndirt 15");
  ask();
  EXPECT_EQ(bench.scenario().trouble, "there was never a scanner at interface 9");
  EXPECT_NEAR(contamination(), 15, 1);
}

TEST_F(Scenario, DoesNotHoldUpLinesThatAreSaidMeanwhile) {
  bench.set_scenario("wait 5 frames\ndirt off");
  bench.run("dirt 40");
  EXPECT_NEAR(contamination(), 40, 1);
  skip(4);
  EXPECT_EQ(contamination(), 0);
}

/// Rows of the tables of the manual's page, from a heading to the next one.
std::vector<std::string> table_under(const std::string& heading) {
  std::ifstream page(HVK3_DOCS_DIR "/simulator.md");
  std::vector<std::string> rows;
  bool here = false;
  for (std::string line; std::getline(page, line);) {
    here = line.starts_with("#") ? line == heading : here;
    if (here && line.starts_with("| ")) {
      rows.push_back(line);
    }
  }
  return rows;
}

/// The same rows from the table of the words.
std::vector<std::string> rows_of(const std::vector<Word>& words, const std::string& head) {
  std::vector<std::string> rows = {head};
  for (const Word& word : words) {
    rows.push_back("| `" + word.pattern + "` | " + word.meaning + " |");
  }
  return rows;
}

TEST_F(SteeringWords, AllStandOnTheirPageOfTheManual) {
  EXPECT_EQ(table_under("### The words"), rows_of(bench.vocabulary(), "| words | meaning |"));
  EXPECT_EQ(table_under("### Their arguments"),
            rows_of(bench.arguments(), "| argument | what it can be |"));
}

}  // namespace
}  // namespace Osv::simulator
