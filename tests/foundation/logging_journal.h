#pragma once

/// Notes what happened in the stand-in; the test program has it, the stand-in calls it.
extern "C" __attribute__((visibility("default"))) void hvk3_journal(const char* line);
