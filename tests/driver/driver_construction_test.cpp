#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/system_failures.h"

namespace Osv::lx {
namespace {

using testing_support::eFailing;
using testing_support::FailingSystem;

struct Driver : ClOstrevanHVK3SDK {
  Driver() : ClOstrevanHVK3SDK(nullptr) {}
  void FreezeSDK(ClFrameGrabberChannel& /*channel*/, bool /*freeze*/) override {}
};

/// The number of the failure when all mutexes but the first ones fail, 0 for a driver that stands.
int number_of_failure(eFailing what, int spared) {
  const FailingSystem system(what, ENOMEM, spared);
  try {
    const Driver driver;
    return 0;
  } catch (const CXSystemException& failure) {
    EXPECT_EQ(system.attributes_alive(), 0);
    return failure.GetErrorNumber();
  }
}

class DriverConstruction : public ::testing::TestWithParam<eFailing> {};

TEST_P(DriverConstruction, FailsWithTheSystemsNumberAtWhicheverMutexCantBeSetUp) {
  int mutexes = 0;
  for (int number = ENOMEM; number != 0; mutexes += static_cast<int>(number != 0)) {
    number = number_of_failure(GetParam(), mutexes);
    ASSERT_TRUE(number == 0 || number == ENOMEM) << "mutex " << mutexes;
  }
  EXPECT_GE(mutexes, 2);  // of device and driver, the driver's own one last
}

std::string name_of(const ::testing::TestParamInfo<eFailing>& step) {
  const bool type = step.param == eFailing::MutexType;
  return step.param == eFailing::MutexAttributes ? "Attributes" : type ? "Type" : "Init";
}

INSTANTIATE_TEST_SUITE_P(Steps, DriverConstruction,
                         ::testing::Values(eFailing::MutexAttributes, eFailing::MutexType,
                                           eFailing::MutexInit),
                         name_of);

}  // namespace
}  // namespace Osv::lx
