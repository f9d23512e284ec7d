#include "hvk3/doctor/scanners.h"

#include "tools/doctor/doctor_fixture.h"

namespace hvk3::test {
namespace {

using Osv::eFamily;
using Osv::simulator::eMemory;

using ScannersTest = DoctorTest;

TEST_F(ScannersTest, ThatAreGoodAreToldWithAllThatWasRead) {
  const Finding found = finding("interface 0");
  EXPECT_EQ(found.kind, eFinding::Good);
  EXPECT_EQ(found.text,
            "scanner HVK30001, model 1, memory of " + std::to_string(bench.memory(0).size()) +
                " bytes, block version 1, description of 9 bytes, signature present; payload "
                "accepted, images of 498 x 438 pixels");
  EXPECT_EQ(defects(), 0);
}

TEST_F(ScannersTest, AreNoneWithoutADevice) {
  bench.unplug_all();
  EXPECT_EQ(finding("interfaces").text, "no interface has a device");
  EXPECT_EQ(defects(), 1);
}

TEST_F(ScannersTest, AreUnknownWhenTheLibraryDoesNotTellTheInterfaces) {
  bench.set_faults("ftrScanGetInterfaces fails with 5");
  const Finding found = finding("interfaces");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("(error 5)"));
  EXPECT_THAT(found.remedy, HasSubstr("lsusb"));
}

TEST_F(ScannersTest, AreToldOfWhenTheyCantBeOpened) {
  bench.set_faults("ftrScanOpenDeviceOnInterface gives a null handle");
  EXPECT_EQ(finding("interface 0").text, "can't be opened");
  bench.set_faults("ftrScanOpenDeviceOnInterface fails with 13");
  EXPECT_EQ(finding("interface 0").text, "can't be opened (error 13)");
  EXPECT_EQ(finding("interface 0").kind, eFinding::Bad);
}

TEST_F(ScannersTest, OfAnotherModelAreToldWithIt) {
  bench.plug_in(3, {.model = 2});
  const Finding found = finding("interface 3");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_EQ(found.text, "is of a model that is none of this family (1 or 4): model 2");
  EXPECT_EQ(finding("interface 0").kind, eFinding::Good);
}

TEST_F(ScannersTest, WithoutAMemoryAreTold) {
  bench.plug_in(0, {.memory = eMemory::None});
  const Finding found = finding("interface 0");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("extended memory"));
}

TEST_F(ScannersTest, WithABlankBlockAreToldItsVersion) {
  bench.plug_in(0, {.memory = eMemory::Blank});
  const Finding found = finding("interface 0");
  EXPECT_EQ(found.text,
            "has no calibration block of version 1 in its extended memory: model 1, memory of 4096 "
            "bytes, block version 0");
  EXPECT_THAT(found.remedy, HasSubstr("calibrated anew"));
}

TEST_F(ScannersTest, WithoutTheSignatureAreTold) {
  std::vector<unsigned char> memory = bench.memory(0);
  memory[25 + 9] = 'X';
  bench.set_memory(0, memory);
  EXPECT_THAT(finding("interface 0").text,
              HasSubstr("without the signature of its payload: model 1, memory of "));
}

TEST_F(ScannersTest, WithADescriptionOfMoreThan127BytesAreToldItsLengthAndThatItIsTooLong) {
  for (const unsigned int length : {128U, 222U, 223U, 255U}) {
    bench.plug_in(0, {.description = std::string(length, 'd')});
    const Finding found = finding("interface 0");
    EXPECT_THAT(found.text, StartsWith("has a description longer than 127 bytes"));
    EXPECT_THAT(found.text, HasSubstr("description of " + std::to_string(length) + " bytes"));
    EXPECT_THAT(found.remedy, HasSubstr("calibrated anew"));
  }
}

TEST_F(ScannersTest, WithADescriptionOf127BytesAreGood) {
  bench.plug_in(0, {.description = std::string(127, 'd')});
  EXPECT_EQ(finding("interface 0").kind, eFinding::Good);
}

TEST_F(ScannersTest, WithABlockThatDoesNotFitTheirMemoryAreTold) {
  bench.set_faults("ftrScanGetExtMemorySize gives 42");  // the description has 9 bytes
  EXPECT_THAT(finding("interface 0").text,
              StartsWith("has a calibration block that does not fit its memory: model 1"));
}

TEST_F(ScannersTest, WithoutASerialNumberAreTold) {
  bench.set_faults("ftrScanGetSerialNumber fails with 5");
  const Finding found = finding("interface 0");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("gives no serial number: model 1"));
}

TEST_F(ScannersTest, ShowBytesOfASerialNumberThatCantBePrinted) {
  bench.plug_in(0, {.serial = "HVK\x01\xFF"
                              "123"});
  EXPECT_EQ(examine().scanners.interfaces.front().serial, "HVK\\x01\\xFF123");
}

TEST_F(ScannersTest, WithABadPayloadAreToldTheEnginesReason) {
  std::vector<unsigned char> memory = bench.memory(0);
  std::fill(memory.begin() + 25 + 9 + 8, memory.end(), 0xEE);
  bench.set_memory(0, memory);
  const Finding found = finding("interface 0");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("signature present; does not open: "));
  EXPECT_THAT(found.text, HasSubstr("(error -5)"));
}

TEST_F(ScannersTest, ThatOpenNoSecondTimeAreTold) {
  bench.set_faults("ftrScanOpenDeviceOnInterface from call 3 on fails with 13");
  EXPECT_THAT(finding("interface 0").text, HasSubstr("it can't be opened once more"));
}

TEST_F(ScannersTest, ThatCantBeSwitchedToTheLongImageAreTold) {
  bench.set_faults("ftrScanSetOptions fails with 5");
  EXPECT_THAT(finding("interface 0").text,
              HasSubstr("it can't be switched to the long image (error 5)"));
}

TEST_F(ScannersTest, WithoutASizeOfFramesAreTold) {
  for (const char* const faults :
       {"ftrScanGetImageSize fails with 5", "ftrScanGetImageSize gives -1 x 480"}) {
    bench.set_faults(faults);
    EXPECT_EQ(finding("interface 0").kind, eFinding::Bad) << faults;
  }
}

TEST_F(ScannersTest, BehindTheFirstOneKeepTheirPayloadUntested) {
  bench.plug_in(4, {.serial = "HVK30002"});
  const ScannersFindings found = examine().scanners;
  EXPECT_TRUE(found.interfaces[0].opening.has_value());
  EXPECT_FALSE(found.interfaces[1].opening.has_value());
  EXPECT_THAT(finding("interface 4").text, HasSubstr("not tested: not the first of the list"));
}

TEST_F(ScannersTest, AreTheFirstOfTheListBehindADeviceThatIsNone) {
  bench.plug_in(0, {.model = 2});
  bench.plug_in(4, {.serial = "HVK30002"});
  EXPECT_THAT(finding("interface 4").text, HasSubstr("payload accepted"));
}

TEST_F(ScannersTest, AreClosedAgain) {
  bench.plug_in(4, {.serial = "HVK30002"});
  findings();
  EXPECT_EQ(bench.state(0).open_handles, 0U);
  EXPECT_EQ(bench.state(4).open_handles, 0U);
}

TEST_F(ScannersTest, GiveNoFrame) {
  findings();
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

TEST(ScannerWords, HaveAReasonAndARemedyForEachResultOfTheFamilyTest) {
  for (int result = 0; result <= static_cast<int>(eFamily::Member); ++result) {
    InterfaceFindings device;
    device.family.result = static_cast<eFamily>(result);
    ScannersFindings scanners{"", 1, true, 0, {device}};
    const Finding found = judge(scanners).back();
    EXPECT_EQ(found.kind, eFinding::Bad) << result;
    EXPECT_THAT(found.text, testing::Not(IsEmpty())) << result;
    EXPECT_THAT(found.remedy, testing::EndsWith(".")) << result;
  }
}

}  // namespace
}  // namespace hvk3::test
