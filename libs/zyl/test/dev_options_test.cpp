#include "zyl/dev_options.h"

#include <gtest/gtest.h>

namespace {

namespace dev_options = zyl::dev_options;

TEST(DevOptions, HoldNothingBeforeTheyAreSet) {
  EXPECT_FALSE(dev_options::contains("one"));
  EXPECT_FALSE(dev_options::contains(""));
}

TEST(DevOptions, HoldTheWordsOfTheText) {
  dev_options::set("one two");
  EXPECT_TRUE(dev_options::contains("one"));
  EXPECT_TRUE(dev_options::contains("two"));
  EXPECT_FALSE(dev_options::contains("one two"));
  EXPECT_FALSE(dev_options::contains(""));
}

TEST(DevOptions, AreReplacedByTheNextText) {
  dev_options::set("one");
  dev_options::set("two");
  EXPECT_FALSE(dev_options::contains("one"));
  EXPECT_TRUE(dev_options::contains("two"));
  dev_options::set("");
  EXPECT_FALSE(dev_options::contains("two"));
  EXPECT_FALSE(dev_options::contains(""));
}

TEST(DevOptions, TwoBlanksInARowHoldTheEmptyWord) {
  dev_options::set("one  two");
  EXPECT_TRUE(dev_options::contains(""));
  EXPECT_TRUE(dev_options::contains("two"));
}

TEST(DevOptions, ABlankAtEitherEndHoldsTheEmptyWord) {
  for (const char* text : {" one", "one ", " "}) {
    dev_options::set(text);
    EXPECT_TRUE(dev_options::contains("")) << "'" << text << "'";
  }
}

TEST(DevOptions, OtherWhiteSpaceIsPartOfAWord) {
  dev_options::set("one\ttwo");
  EXPECT_TRUE(dev_options::contains("one\ttwo"));
}

}  // namespace
