#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "hvk3/failure.h"

/// @file
/// The result of a command, on standard output.

namespace hvk3 {

/// Gathers the result in two forms and prints the one that was asked for. docs/hvk3.md describes
/// the JSON object.
class Report {
 public:
  Report(const std::string& command, bool json);

  /// A member of the JSON object.
  nlohmann::ordered_json& operator[](const char* key) { return m_cObject[key]; }

  /// Text for people, line ends included.
  void text(const std::string& lines) { m_sText += lines; }

  /// Notes how a program ended that the command ran, and so the command does.
  void end(int exit_code, bool by_signal);

  /// Notes how the command failed.
  void fail(const Failure& failure);

  /// @throws Failure `OutputFailed`
  void print() const;

 private:
  const bool m_bJson;
  nlohmann::ordered_json m_cObject;
  std::string m_sText;
};

}  // namespace hvk3
