#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace Osv::testing_support {

/// A file with the given bytes that goes with the object.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& bytes)
      : m_path(::testing::TempDir() + "hvk3_" + std::to_string(getpid()) + "_" +
               std::to_string(s_nFiles++)) {
    std::ofstream(m_path, std::ios::binary) << bytes;
  }
  ~TemporaryFile() { std::remove(m_path.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return m_path; }

 private:
  static inline int s_nFiles = 0;
  std::string m_path;
};

}  // namespace Osv::testing_support
