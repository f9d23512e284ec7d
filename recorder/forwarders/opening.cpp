#include "recorder/session/session.h"

/// @file
/// Opens the real library when a forwarder is loaded. HVK3_LIBRARY says which.

namespace Osv::recorder {
namespace {

[[gnu::constructor]] void open() { Session::get().open(eLibrary::HVK3_LIBRARY); }

}  // namespace
}  // namespace Osv::recorder
