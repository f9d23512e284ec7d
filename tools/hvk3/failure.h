#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "hvk3/exit_status.h"

/// @file
/// The one exception of the tool: why a command ends, and with which status.

namespace hvk3 {

class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text)
      : std::runtime_error(text), m_eStatus(status) {}

  /// A failure that the plug-in reported: the status follows from its number.
  Failure(long number, const std::string& text);

  /// What the error callback told: its text is "<text> error: <number>".
  static Failure of_capture(const std::string& callback_text);

  /// The end by a signal.
  static Failure interrupted(int signal);

  ExitStatus status() const { return m_eStatus; }
  int exit_code() const { return static_cast<int>(m_eStatus) + m_nSignal; }

  /// The plug-in's number of the failure, if it came from there.
  std::optional<long> number() const { return m_nNumber; }

 private:
  ExitStatus m_eStatus;
  std::optional<long> m_nNumber;
  int m_nSignal = 0;
};

}  // namespace hvk3
