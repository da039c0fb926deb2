#include "sim/identity.h"

#include <gtest/gtest.h>

#include <string>

TEST(Identity, IsWhatTheDaemonReads) {
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
