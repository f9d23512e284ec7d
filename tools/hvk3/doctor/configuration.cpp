#include "hvk3/doctor/configuration.h"

#include <array>
#include <filesystem>
#include <fstream>

#include "driver/setting.h"

namespace hvk3 {
namespace {

eConfiguration state_of(const std::string& path, std::string& failure) {
  std::error_code failed;
  const std::filesystem::file_status status = std::filesystem::status(path, failed);
  if (status.type() == std::filesystem::file_type::not_found) {
    return eConfiguration::Absent;
  }
  if (status.type() != std::filesystem::file_type::regular || !std::ifstream(path).is_open()) {
    return eConfiguration::Unreadable;
  }
  try {
    Osv::lx::CXSetting().LoadFromFile(path.c_str());
  } catch (const std::exception& error) {
    failure = error.what();
    return eConfiguration::Broken;
  }
  return eConfiguration::Read;
}

}  // namespace

ConfigurationFindings examine_configuration(const std::string& path) {
  ConfigurationFindings findings;
  findings.path = path;
  findings.state = state_of(path, findings.failure);
  return findings;
}

const char* name_of(eConfiguration state) {
  constexpr std::array kNames = {"absent", "read", "unreadable", "broken"};
  return kNames.at(static_cast<std::size_t>(state));
}

Finding judge(const ConfigurationFindings& findings) {
  const std::string& path = findings.path;
  switch (findings.state) {
    case eConfiguration::Absent:
      return {eFinding::Good, "configuration", path + " is not there; none is needed", ""};
    case eConfiguration::Unreadable:
      return {eFinding::Bad, "configuration",
              path + " is no file that you may read; the plug-in goes on as if it were not there",
              "Make it a file that its users may read, or remove it."};
    case eConfiguration::Broken:
      return {eFinding::Bad, "configuration",
              path + " keeps scanners from opening: " + findings.failure,
              "Correct the file, or remove it."};
    default:
      return {eFinding::Good, "configuration", path + " can be read", ""};
  }
}

}  // namespace hvk3
