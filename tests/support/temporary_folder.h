#pragma once

#include <cstdlib>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace hvk3::test {

/// A folder of its own for a test, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "hvk3-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    m_cPath = name;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(m_cPath); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string file(const std::string& name) const { return (m_cPath / name).string(); }

  /// Number of files in it.
  std::ptrdiff_t count() const {
    return std::distance(std::filesystem::directory_iterator(m_cPath), {});
  }

 private:
  std::filesystem::path m_cPath;
};

}  // namespace hvk3::test
