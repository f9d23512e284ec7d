// A stand-in of the logging facility. What it does it tells the test program that loaded it.
// HVK3_WITHOUT_LOG and HVK3_WITHOUT_FLUSH leave a symbol out.

#include <cstdarg>
#include <cstdio>

#include "foundation/logging_client.h"
#include "foundation/logging_journal.h"

#define HVK3_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

__attribute__((constructor)) void loaded() { hvk3_journal("loaded"); }
__attribute__((destructor)) void unloaded() { hvk3_journal("unloaded"); }

}  // namespace

#ifndef HVK3_WITHOUT_LOG
HVK3_EXPORT void OsvLFLog(OsvLFLogLevelstag level, const char* format, ...);
HVK3_EXPORT void OsvLFLog(OsvLFLogLevelstag level, const char* format, ...) {
  char text[256];
  const int prefix = std::snprintf(text, sizeof(text), "%d ", static_cast<int>(level));
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text + prefix, sizeof(text) - static_cast<unsigned int>(prefix), format,
                 arguments);
  va_end(arguments);
  hvk3_journal(text);
}
#endif

#ifndef HVK3_WITHOUT_FLUSH
HVK3_EXPORT void OsvLFFlush();
HVK3_EXPORT void OsvLFFlush() { hvk3_journal("flush"); }
#endif
