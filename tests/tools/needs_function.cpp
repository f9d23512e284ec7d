/// @file
/// A library that needs a function of another one.

extern "C" int hvk3_absent_function();
extern "C" __attribute__((visibility("default"))) int hvk3_needing_function();

int hvk3_needing_function() { return hvk3_absent_function(); }
