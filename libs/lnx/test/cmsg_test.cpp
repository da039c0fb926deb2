#include "lnx/src/cmsg.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using lnx::cmsg_t;

namespace {

/// A control buffer in the making.
class control_buffer_t {
 public:
  control_buffer_t& record(uint64_t length, int32_t level, int32_t type, std::size_t data_size) {
    bytes.resize(CMSG_ALIGN(bytes.size()));
    append(&length, sizeof length);
    append(&level, sizeof level);
    append(&type, sizeof type);
    bytes.resize(bytes.size() + data_size, std::byte{0x5a});
    return *this;
  }

  std::vector<std::byte> bytes;

 private:
  void append(const void* field, std::size_t size) {
    bytes.resize(bytes.size() + size);
    std::memcpy(bytes.data() + bytes.size() - size, field, size);
  }
};

}  // namespace

TEST(Cmsg, ADescriptorRecordHasItsLengthLevelTypeAndDescriptor) {
  const cmsg_t record = cmsg_t::rights(7);
  EXPECT_EQ(record.image().size(), 20U);
  EXPECT_EQ(record.level(), SOL_SOCKET);
  EXPECT_EQ(record.type(), SCM_RIGHTS);
  ASSERT_TRUE(record.has_fd());
  EXPECT_EQ(record.fd(), 7);
}

TEST(Cmsg, AnotherKindOfRecordHasNoDescriptor) {
  const auto records = lnx::parse_cmsgs(control_buffer_t().record(28, SOL_SOCKET, SCM_CREDENTIALS, 12).bytes);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_FALSE(records[0].has_fd());
}

TEST(Cmsg, ARecordOfDescriptorsThatHoldsNoneHasNoDescriptor) {
  const auto records = lnx::parse_cmsgs(control_buffer_t().record(16, SOL_SOCKET, SCM_RIGHTS, 0).bytes);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_FALSE(records[0].has_fd());
}

TEST(Cmsg, RecordsAreFoundOnTheNextBoundaryOfEight) {
  const auto records =
      lnx::parse_cmsgs(control_buffer_t().record(20, 1, 1, 4).record(17, 2, 3, 1).record(16, 4, 5, 0).bytes);
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(records[0].data().size(), 4U);
  EXPECT_EQ(records[1].level(), 2);
  EXPECT_EQ(records[1].data().size(), 1U);
  EXPECT_EQ(records[2].type(), 5);
}

TEST(Cmsg, ARecordShorterThanItsHeaderEndsTheWalk) {
  EXPECT_EQ(lnx::parse_cmsgs(control_buffer_t().record(16, 1, 2, 0).record(15, 1, 2, 0).bytes).size(), 1U);
  EXPECT_TRUE(lnx::parse_cmsgs(control_buffer_t().record(0, 1, 2, 0).bytes).empty());
}

TEST(Cmsg, ARecordThatRunsPastTheEndEndsTheWalk) {
  EXPECT_TRUE(lnx::parse_cmsgs(control_buffer_t().record(21, 1, 1, 4).bytes).empty());
  EXPECT_TRUE(lnx::parse_cmsgs(control_buffer_t().record(~uint64_t{0}, 1, 1, 4).bytes).empty());
}

TEST(Cmsg, FewerThanSixteenBytesHoldNoRecord) {
  std::vector<std::byte> bytes = control_buffer_t().record(16, 1, 1, 0).bytes;
  bytes.pop_back();
  EXPECT_TRUE(lnx::parse_cmsgs(bytes).empty());
  EXPECT_TRUE(lnx::parse_cmsgs({}).empty());
}
