#ifndef OSTREVANHVK3_VISIBILITY_H
#define OSTREVANHVK3_VISIBILITY_H

/// @file
/// The mark of what passes the library's boundary.

/// Marks a declaration as exported.
#define OSTREVANHVK3_EXPORT __attribute__((visibility("default")))

#endif
