#include "app/block_check.h"

#include <gtest/gtest.h>

namespace {

using vgn_control::isControlBlocked;

TEST(BlockCheck, TheWordOneBlocks) { EXPECT_TRUE(isControlBlocked("1")); }

TEST(BlockCheck, OnlyTheFirstWordCounts) {
  EXPECT_TRUE(isControlBlocked("1 trailing"));
  EXPECT_TRUE(isControlBlocked(" \t1\n0"));
  EXPECT_FALSE(isControlBlocked("0 1"));
}

TEST(BlockCheck, AnotherSpellingOfOneDoesNotBlock) {
  EXPECT_FALSE(isControlBlocked("01"));
  EXPECT_FALSE(isControlBlocked("1x"));
  EXPECT_FALSE(isControlBlocked("true"));
}

TEST(BlockCheck, NothingSetDoesNotBlock) { EXPECT_FALSE(isControlBlocked(nullptr)); }

TEST(BlockCheck, AnEmptyOrBlankValueDoesNotBlock) {
  EXPECT_FALSE(isControlBlocked(""));
  EXPECT_FALSE(isControlBlocked("  \t"));
}

}  // namespace
