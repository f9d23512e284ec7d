#pragma once

/// @file
/// The leak checker, in programs that have it.

extern "C" __attribute__((weak)) int __lsan_do_recoverable_leak_check();

namespace Osv::faults {

/// A sanitizer watches memory; freed memory stays with it for a while.
inline bool is_watched() { return __lsan_do_recoverable_leak_check != nullptr; }

/// Whether memory has leaked by now; it is told only to a program that is watched.
inline bool leaks() { return is_watched() && __lsan_do_recoverable_leak_check() != 0; }

}  // namespace Osv::faults
