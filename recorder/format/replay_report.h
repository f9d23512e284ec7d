#pragma once

#include <boost/interprocess/mapped_region.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "recorder/functions.h"

/// @file
/// What a program that is replayed tells the tool: a file that both have mapped, so that it is told
/// however the program ends.

namespace Osv::recorder {

/// Why a replay could not go on.
struct ReplayTrouble {
  int status = 0;           ///< with which the process ended
  std::uint64_t call = 0;   ///< the call's number, from 1; 0 when there was none yet
  eFunction function = {};  ///< what the program called
  std::string text;
};

/// Several processes may play; the first one's calls count, and the first one's trouble.
class ReplayReport {
 public:
  /// Makes the file. @throws std::exception
  static void create(const std::string& path);

  /// @throws std::exception when there is no such file
  explicit ReplayReport(const std::string& path);

  /// @name For the program
  /// @{
  void begin();
  void played(std::uint64_t calls);  ///< in all
  void end(const ReplayTrouble& trouble);
  /// @}

  /// @name For the tool, when the program has ended
  /// @{
  bool has_begun() const;
  std::uint64_t played() const;
  std::optional<ReplayTrouble> trouble() const;
  /// @}

 private:
  struct Content;

  Content& content() const;

  boost::interprocess::mapped_region m_cMemory;
};

}  // namespace Osv::recorder
