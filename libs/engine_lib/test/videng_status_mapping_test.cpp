#include "engine_lib/videng_status_mapping.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <utility>

using videng::status_block_t;
using videng::status_mapping_t;

namespace {

class VidengStatusMapping : public testing::Test {
 protected:
  void SetUp() override {
    fd = memfd_create("status", MFD_CLOEXEC);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, status_block_t::size), 0);
  }
  void TearDown() override { close(fd); }

  int fd = -1;
};

}  // namespace

TEST_F(VidengStatusMapping, TwoMappingsOfOneFileShareTheirContents) {
  const status_mapping_t engine(fd, status_block_t::size);
  const status_mapping_t client(fd, status_block_t::size);
  ASSERT_TRUE(engine.mapped());
  ASSERT_TRUE(client.mapped());
  engine.block().decoder(3).rx_count().store(9);
  EXPECT_EQ(client.block().decoder(3).rx_count().load(), 9U);
}

TEST_F(VidengStatusMapping, ABadDescriptorMapsNothing) {
  EXPECT_FALSE(status_mapping_t(-1, status_block_t::size).mapped());
  EXPECT_FALSE(status_mapping_t().mapped());
}

TEST_F(VidengStatusMapping, MovingPassesTheMappingOn) {
  status_mapping_t first(fd, status_block_t::size);
  status_mapping_t second(std::move(first));
  EXPECT_FALSE(first.mapped());  // NOLINT(bugprone-use-after-move): that is what is tested
  EXPECT_TRUE(second.mapped());
  second = status_mapping_t();
  EXPECT_FALSE(second.mapped());
}
