#pragma once

#include "foundation/dynamic_library.h"

/// @file
/// The client of the optional logging facility. Without the facility the plug-in is silent.

/// Levels of the logging facility in use here.
enum OsvLFLogLevelstag : int { OsvLFError = 3, OsvLFWarning = 4, OsvLFTrace = 7 };

namespace Osv::utilities {

/// Loads the facility once and keeps its entry points. `Create` and `Destroy` must not overlap with
/// capture; the thread safety of a log call is the facility's.
class ClLoggingFacilityClient : public CXDynamicLibrary {
 public:
  using LogFunction = void (*)(OsvLFLogLevelstag level, const char* format, ...);
  using FlushFunction = void (*)();

  /// Loads the facility unless it is there.
  /// @throws CXOtherException -201 or -202
  static void Create();

  /// Lets the facility go. The entry points keep their values.
  static void Destroy();

  /// Does nothing; `OSV_LOG` below is how lines are written.
  static void Log(OsvLFLogLevelstag level, const char* format, ...);

  static LogFunction m_fpLog;
  static FlushFunction m_fpFlush;
  static ClLoggingFacilityClient* m_fpLogInstance;  ///< null while there is no log

  ~ClLoggingFacilityClient() override = default;

 protected:
  /// Opens the facility as `Initialize` does.
  ClLoggingFacilityClient();

  /// Closes the facility, if it is open, and opens it with both entry points.
  /// @throws CXOtherException -201 or -202
  void Initialize();
};

}  // namespace Osv::utilities

/// Writes one line of `level` in `printf` form. A macro, so that the arguments are evaluated only
/// when there is a log.
#define OSV_LOG(level, ...)                                                      \
  do {                                                                           \
    if (::Osv::utilities::ClLoggingFacilityClient::m_fpLogInstance != nullptr) { \
      ::Osv::utilities::ClLoggingFacilityClient::m_fpLog((level), __VA_ARGS__);  \
    }                                                                            \
  } while (false)
