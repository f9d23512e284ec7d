#pragma once

#include <cstdint>
#include <optional>

#include "bench/fault.h"
#include "bench/functions.h"
#include "bench/visibility.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// One call into a stand-in, on its way through fault plan and journal. This is all that engine,
/// detector and log know of the bench.

namespace Osv::simulator {

/// Lives as long as the call does: asks the fault plan at its beginning, where it waits if the plan
/// blocks the call, and goes into the journal at its end, where waiting lines of words go on.
/// Without faults and recording it allocates nothing.
class OSV_SIMULATOR_API RecordedCall {
 public:
  /// @param subject the text that a fault can name: an option or a property; may be null
  explicit RecordedCall(eFunction function, const char* subject = nullptr);
  ~RecordedCall();
  RecordedCall(const RecordedCall&) = delete;
  RecordedCall& operator=(const RecordedCall&) = delete;

  const Effects& effects() const { return m_sEffects; }

  /// Whether words for arguments and result are wanted.
  bool recorded() const { return m_sRecord.has_value(); }

  /// Words for the journal in `printf` form.
  /// @{
  void arguments(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void result(const char* format, ...) __attribute__((format(printf, 2, 3)));
  /// @}

 private:
  eFunction m_eFunction;
  Effects m_sEffects;
  std::optional<Call> m_sRecord;
};

/// A text for the journal: quoted, or "null".
class OSV_SIMULATOR_API Quoted {
 public:
  explicit Quoted(const char* text);
  const char* c_str() const { return m_aText; }

 private:
  static constexpr std::size_t kSize = 1100;
  char m_aText[kSize];
};

/// The scanner library's last error.
OSV_SIMULATOR_API std::uint32_t last_error();
OSV_SIMULATOR_API void set_last_error(std::uint32_t error);

}  // namespace Osv::simulator
