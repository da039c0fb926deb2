#include "app/led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test_support/qt_methods.h"

namespace {

TEST(LED, HasItsSlotsInOrder) {
  EXPECT_THAT(test_support::own_methods_of(vgn_control::LED::staticMetaObject),
              testing::ElementsAre("startFlashing(int)", "stopFlashing()"));
}

}  // namespace
