// The macro must guard release builds too: this file is compiled as one.
#undef NDEBUG
#define NDEBUG
#include "zyl/assert.h"

#include <gtest/gtest.h>

namespace {

void expect_two(int value) { ZYL_ASSERT(value == 2); }

}  // namespace

TEST(Assert, AConditionThatHoldsIsEvaluatedOnceAndHasNoFurtherEffect) {
  int evaluations = 0;
  ZYL_ASSERT(++evaluations == 1);
  EXPECT_EQ(evaluations, 1);
}

TEST(AssertDeathTest, AConditionThatDoesNotHoldAbortsWithItsPlaceTextAndFunctionAlsoWithNdebug) {
  EXPECT_EXIT(expect_two(3), testing::KilledBySignal(SIGABRT),
              ": libs/zyl/test/assert_test.cpp:[0-9]+: .*expect_two.int.: Assertion `value == 2' failed");
}
