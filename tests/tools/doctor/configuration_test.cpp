#include "hvk3/doctor/configuration.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "support/temporary_folder.h"

namespace hvk3::test {
namespace {

using testing::HasSubstr;

class Configuration : public testing::Test {
 protected:
  Finding finding() const { return judge(examine_configuration(m_path)); }

  TemporaryFolder m_cFolder;
  const std::string m_path = m_cFolder.file("ostrevanhvk3.cfg");
};

TEST_F(Configuration, IsNotNeeded) {
  EXPECT_EQ(examine_configuration(m_path).state, eConfiguration::Absent);
  EXPECT_EQ(finding().kind, eFinding::Good);
  EXPECT_EQ(finding().text, m_path + " is not there; none is needed");
}

TEST_F(Configuration, IsGoodWhenItCanBeRead) {
  std::ofstream(m_path) << "[SDK]\nkey = value\n";
  EXPECT_EQ(examine_configuration(m_path).state, eConfiguration::Read);
  EXPECT_EQ(finding().kind, eFinding::Good);
}

TEST_F(Configuration, ThatIsNoFileIsADefect) {
  std::filesystem::create_directory(m_path);
  EXPECT_EQ(examine_configuration(m_path).state, eConfiguration::Unreadable);
  EXPECT_EQ(finding().kind, eFinding::Bad);
  EXPECT_THAT(finding().text, HasSubstr("as if it were not there"));
  EXPECT_THAT(finding().remedy, HasSubstr("or remove it"));
}

TEST_F(Configuration, ThatCantBeParsedIsADefectWithItsReason) {
  const Finding found = judge(ConfigurationFindings{m_path, eConfiguration::Broken, "bad value"});
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("keeps scanners from opening: bad value"));
}

TEST_F(Configuration, HasAWordForEachState) {
  EXPECT_STREQ(name_of(eConfiguration::Absent), "absent");
  EXPECT_STREQ(name_of(eConfiguration::Read), "read");
  EXPECT_STREQ(name_of(eConfiguration::Unreadable), "unreadable");
  EXPECT_STREQ(name_of(eConfiguration::Broken), "broken");
}

}  // namespace
}  // namespace hvk3::test
