/// @file
/// For programs whose tests ask for more memory than there is: a sanitizer then gives null, as the
/// system does, and does not end the program.

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers' names
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
// NOLINTEND(bugprone-reserved-identifier)

const char* __asan_default_options() { return "allocator_may_return_null=1"; }
const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
