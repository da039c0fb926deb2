#include "zyl/curl/mem_block.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using zyl::mem_block;
using zyl::memory_exception;

TEST(MemBlockTest, IsEmptyAtFirst) {
  const mem_block block;
  EXPECT_TRUE(block.empty());
  EXPECT_EQ(block.size(), 0U);
  EXPECT_EQ(block.view(), "");
}

TEST(MemBlockTest, HoldsThePiecesInOrder) {
  mem_block block;
  block.append("one");
  block.append("");
  block.append({"\0two", 4});
  EXPECT_EQ(block.view(), std::string_view("one\0two", 7));
  EXPECT_EQ(block.size(), 7U);
  EXPECT_FALSE(block.empty());
}

TEST(MemBlockTest, ReservedRoomKeepsTheBytesWhereTheyAre) {
  mem_block block;
  block.reserve(1000);
  block.append("x");
  const char* const before = block.view().data();
  block.append(std::string(999, 'y'));
  EXPECT_EQ(block.view().data(), before);
}

TEST(MemBlockTest, ClearedBlockIsFilledAnew) {
  mem_block block;
  block.append("old");
  block.clear();
  EXPECT_TRUE(block.empty());
  block.append("new");
  EXPECT_EQ(block.view(), "new");
}

TEST(MemBlockTest, RoomThatCannotBeHadThrowsAndLeavesTheBlockAsItWas) {
  mem_block block;
  block.append("kept");
  try {
    block.reserve(std::numeric_limits<std::size_t>::max());
    FAIL() << "no machine has that much memory";
  } catch (const memory_exception& failure) {
    EXPECT_STREQ(failure.what(), "Block Memory Allocation Failed");
  }
  EXPECT_EQ(block.view(), "kept");
}
