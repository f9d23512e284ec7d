#include "boundary/boundary_result.h"

#include <gtest/gtest.h>

namespace Osv::lx {
namespace {

TEST(BoundaryResult, ZeroStaysZero) { EXPECT_EQ(BoundaryResult(0), 0U); }

TEST(BoundaryResult, ANumberGetsTheReportedBit) {
  EXPECT_EQ(BoundaryResult(2), 0x10000002U);
  EXPECT_EQ(BoundaryResult(0x20000003), 0x30000003U);
}

TEST(BoundaryResult, ANegativeNumberKeepsItsSign) {
  EXPECT_EQ(BoundaryResult(Widened(-21)), 0xFFFFFFFFFFFFFFEBU);
  EXPECT_EQ(ErrorNumber(BoundaryResult(Widened(-21))), -21);
}

TEST(BoundaryResult, AClientGetsTheFailuresOwnNumberBack) {
  EXPECT_EQ(ErrorNumber(0x10000041), 65);
  EXPECT_EQ(ErrorNumber(0x30000004), 0x20000004);
  EXPECT_EQ(ErrorNumber(14), 14);
}

}  // namespace
}  // namespace Osv::lx
