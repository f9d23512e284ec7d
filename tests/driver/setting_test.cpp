#include "driver/setting.h"

#include <gtest/gtest.h>

#include <string>

#include "support/configuration_file.h"

namespace Osv::lx {
namespace {

/// Loads settings from a file of this content.
CXSetting loaded(const std::string& content) {
  const test::ConfigurationFile file(content);
  CXSetting setting;
  setting.LoadFromFile(file.path().c_str());
  return setting;
}

void expect_defaults(const CXSetting& setting) {
  EXPECT_EQ(setting.m_nDose, 60UL);
  EXPECT_FALSE(setting.m_bFlag);
}

TEST(Setting, TheDoseIs60AndTheFlagIsOff) { expect_defaults(CXSetting()); }

TEST(Setting, AMissingFileIsNoFailure) {
  CXSetting setting;
  setting.LoadFromFile("/nonexistent/ostrevanhvk3.cfg");
  expect_defaults(setting);
}

TEST(Setting, AMissingFileLeavesTheSettingsAsTheyAre) {
  CXSetting setting;
  setting.m_nDose = 7;
  setting.m_bFlag = true;
  setting.LoadFromFile("/nonexistent/ostrevanhvk3.cfg");
  EXPECT_EQ(setting.m_nDose, 7UL);
  EXPECT_TRUE(setting.m_bFlag);
}

TEST(Setting, AnEmptyFileGivesTheDefaults) { expect_defaults(loaded("")); }

TEST(Setting, ADoseInTheFileChangesNothing) {
  expect_defaults(loaded("[SDK]\nDose = 10\nnDose=10\nFlag=true\n"));
}

TEST(Setting, AnyKeyAndAnySectionIsAccepted) {
  expect_defaults(loaded("stray line\n[Other]\nkey = value\n[SDK\n=\n[]\n#[SDK]\n\x01\xff=\n"));
}

TEST(Setting, ADirectoryInPlaceOfTheFileIsNoFailure) {
  CXSetting setting;
  setting.LoadFromFile("/");
  expect_defaults(setting);
}

}  // namespace
}  // namespace Osv::lx
