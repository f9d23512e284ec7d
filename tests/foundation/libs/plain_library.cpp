// A library with an ordinary function and a symbol whose value is null.

#define HVK3_EXPORT extern "C" __attribute__((visibility("default")))

HVK3_EXPORT int hvk3_answer();
HVK3_EXPORT int hvk3_answer() { return 42; }

__asm__(".globl hvk3_null\n.set hvk3_null, 0");
