#pragma once

#include <array>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ostrevanhvk3/image_block.h"

/// @file
/// The detector as a test scripts it. It lives in the test program; the stand-in library forwards
/// to it.

namespace Osv::testing_support {

class __attribute__((visibility("default"))) ScriptedDetector {
 public:
  /// Each call with its arguments, and the loading and unloading of the library. A handle that was
  /// destroyed before is followed by "(destroyed)".
  std::vector<std::string> journal;

  /// What a function answers instead of 0, by its name without prefix.
  std::map<std::string, long> codes;

  /// The text for an error code; null for none.
  const char* description = "the detector's text";

  std::map<std::string, std::string> properties;
  double score = 0.0;

  /// The rates as texts, at each whole query score.
  std::array<std::string, 101> frr;
  std::array<std::string, 101> far;

  /// Takes the place of the properties when it is set.
  std::function<long(char* buffer, unsigned long* length)> get_property;

  /// Fails a property write when it counts down to 0; below 0 never.
  int writes_until_failure = -1;

  /// Runs in each function of the detector, after its line in the journal.
  std::function<void()> entered;

  /// Number of journal lines that begin with `text`.
  std::size_t count(const std::string& text) const;

  void note(const std::string& line) { journal.push_back(line); }
  long Initialize(const void* reserved);
  long Uninitialize();
  long CreateHandle(void** handle);
  long DestroyHandle(void** handle);
  long Reset(const void* handle);
  long EvaluateLiveliness(const void* handle, double* out);
  long SetImage(const void* handle, int kind, const tagBITMAPINFOHEADER* block, unsigned long size);
  long SetProperty(const void* handle, const char* name, const char* value);
  long GetProperty(const void* handle, const char* name, char* buffer, unsigned long* length);
  char* GetErrorDescription(long code);

 private:
  void enter(const std::string& line);
  std::string name_of(const void* handle) const;
  long code(const std::string& function);
  std::string value(const std::string& name);

  int m_nHandles = 0;
  std::set<const void*> m_setDestroyed;
};

/// The detector that the stand-in forwards to.
__attribute__((visibility("default"))) ScriptedDetector& detector();

}  // namespace Osv::testing_support
