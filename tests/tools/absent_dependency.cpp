/// @file
/// A library that its users don't find.

extern "C" __attribute__((visibility("default"))) int hvk3_absent_function();

int hvk3_absent_function() { return 0; }
