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

TEST(Model, PublishesTheIdentityThatTheDaemonReads) {
  sim::property_tree_t tree;
  sim::publish_identity(tree, *sim::find_model(85));
  EXPECT_EQ(tree.value("/sys/config/arch"), "aarch64");
  EXPECT_EQ(tree.value("/sys/config/platform"), "vgnstreamer");
  EXPECT_EQ(tree.value("/sys/config/part_number"), "part-085");
  for (const char* path : {"fw_server_crc", "fw_server_hash", "fw_server_crc_compat", "fw_server_hash_compat"}) {
    EXPECT_NE(tree.value(std::string("/sys/config/") + path), "") << path;
  }
  EXPECT_EQ(tree.value("/sim/model"), "85");
}
