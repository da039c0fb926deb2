#include "sim/model.h"

#include <gtest/gtest.h>

namespace {

int outputs_of(int id) {
  const auto model = sim::find_model(id);
  return model ? model->output_count : -1;
}

}  // namespace

TEST(Model, EachHasItsNumberOfOutputs) {
  EXPECT_EQ(outputs_of(137), 1);
  EXPECT_EQ(outputs_of(105), 2);
  EXPECT_EQ(outputs_of(106), 2);
  EXPECT_EQ(outputs_of(85), 3);
  EXPECT_EQ(outputs_of(100), 3);
}

TEST(Model, AnotherIdIsNone) {
  EXPECT_EQ(outputs_of(0), -1);
  EXPECT_EQ(outputs_of(107), -1);
}
