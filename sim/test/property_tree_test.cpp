#include "sim/property_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(PropertyTree, AnUnknownPropertyIsEmptyAndIsNotMadeByAsking) {
  sim::property_tree_t tree;
  EXPECT_EQ(tree.value("/a"), "");
  EXPECT_EQ(tree.find("/a"), nullptr);
}

TEST(PropertyTree, CreateKeepsTheValueOfAPropertyThatExists) {
  sim::property_tree_t tree;
  tree.publish("/a", "1");
  tree.create("/a");
  tree.create("/b");
  EXPECT_EQ(tree.value("/a"), "1");
  ASSERT_NE(tree.find("/b"), nullptr);
  EXPECT_EQ(*tree.find("/b"), "");
}

TEST(PropertyTree, SetIsHeardByThePathsSetHandlersAndPublishIsNot) {
  sim::property_tree_t tree;
  std::vector<std::string> heard;
  tree.on_set("/a", [&](const std::string& value) { heard.push_back(value); });
  tree.publish("/a", "published");
  tree.set("/b", "elsewhere");
  tree.set("/a", "set");
  EXPECT_THAT(heard, ElementsAre("set"));
}

TEST(PropertyTree, ChangeHandlersHearEveryValueAlsoAnEqualOne) {
  sim::property_tree_t tree;
  std::vector<std::string> heard;
  tree.on_change([&](const std::string& path, const std::string& value) { heard.push_back(path + "=" + value); });
  tree.publish("/a", "1");
  tree.publish("/a", "1");
  tree.set("/b", "2");
  tree.create("/c");
  EXPECT_THAT(heard, ElementsAre("/a=1", "/a=1", "/b=2"));
}

TEST(PropertyTree, AHandlerMayPublishSetAndAddHandlers) {
  sim::property_tree_t tree;
  std::vector<std::string> heard;
  tree.on_set("/a", [&](const std::string& value) {
    tree.publish("/b", value);
    tree.on_set("/a", [&](const std::string& later) { heard.push_back("added " + later); });
    tree.on_change([&](const std::string& path, const std::string&) { heard.push_back(path); });
  });
  tree.set("/a", "1");
  EXPECT_EQ(tree.value("/b"), "1");
  EXPECT_THAT(heard, IsEmpty());
  tree.publish("/c", "");
  EXPECT_THAT(heard, ElementsAre("/c"));
}

TEST(PropertyTree, BelowAPathIsWhatLiesInItInPathOrder) {
  sim::property_tree_t tree;
  for (const char* path : {"/sim/b", "/sim/a", "/sim", "/simulated", "/sim/a/x", "/other"}) {
    tree.publish(path, std::string("at ") + path);
  }
  EXPECT_THAT(tree.below("/sim"),
              ElementsAre(Pair("/sim/a", "at /sim/a"), Pair("/sim/a/x", "at /sim/a/x"), Pair("/sim/b", "at /sim/b")));
  EXPECT_EQ(tree.below("/sim/"), tree.below("/sim"));
  EXPECT_THAT(tree.below("/none"), IsEmpty());
  EXPECT_EQ(tree.below("").size(), 6U);
  EXPECT_EQ(tree.below("/").size(), 6U);
}
