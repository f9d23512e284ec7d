#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"
#include "support/sleeps.h"
#include "support/temporary_folder.h"

/// @file
/// The ground for tests that run the examples of the documentation.

namespace Osv::guide {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// The `main` of an example.
using Example = int (*)(int, char**);

/// How an example ended and what it wrote.
struct Outcome {
  int status = -1;
  std::string out;
  std::string error;
};

class GuideTest : public simulator::SimulatorFixture {
 protected:
  ~GuideTest() override { bench.clear_faults(); }  // lets go of what is blocked

  static Outcome run(Example example, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(), "example");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Outcome outcome;
    outcome.status = example(static_cast<int>(arguments.size()), pointers.data());
    outcome.error = testing::internal::GetCapturedStderr();
    outcome.out = testing::internal::GetCapturedStdout();
    return outcome;
  }

  simulator::ClosedLibraries libraries;
  test::Sleeps sleeps;
};

}  // namespace Osv::guide
