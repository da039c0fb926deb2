#include "sim/brightness_setting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "sim/descriptor.h"
#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::HasSubstr;

namespace {

constexpr const char* path = "/var/rwfs2/led_brightness";

class BrightnessSetting : public testing::Test {
 protected:
  bool becomes(const char* value) {
    return test_support::loop_until(loop.base(), [&] { return tree.value("/sim/led/setting") == value; });
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::brightness_setting_t setting{loop.base(), tree, story};
};

}  // namespace

TEST_F(BrightnessSetting, HasNoFileBeforeTheFirstChoice) {
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(tree.value("/sim/led/setting"), "absent");
}

TEST_F(BrightnessSetting, FollowsTheFile) {
  std::ofstream(path).close();
  EXPECT_TRUE(becomes(""));
  std::ofstream(path) << "Dim\n";
  EXPECT_TRUE(becomes("Dim"));
  std::ofstream("/var/rwfs2/next") << "Bright";
  std::filesystem::rename("/var/rwfs2/next", path);
  EXPECT_TRUE(becomes("Bright"));
  std::filesystem::remove(path);
  EXPECT_TRUE(becomes("absent"));
}

TEST_F(BrightnessSetting, CanBeTakenAway) {
  tree.set("/sim/led/setting", "absent");
  tree.set("/sim/led/setting", "Dim");
  tree.set("/sim/led/setting", "absent");
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(tree.value("/sim/led/setting"), "absent");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("\tpanel\tbrightness setting is removed\n"));
}

TEST_F(BrightnessSetting, IsWrittenToItsFile) {
  tree.set("/sim/led/setting", "Bright");
  EXPECT_EQ(sim::text_of_file(path), "Bright");
  tree.set("/sim/led/setting", "Dim");
  EXPECT_EQ(sim::text_of_file(path), "Dim");
  tree.set("/sim/led/setting", "");
  EXPECT_EQ(sim::text_of_file(path), "");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("\tpanel\tbrightness setting is \"Dim\"\n"));
}

TEST_F(BrightnessSetting, IsWrittenInPlace) {
  tree.set("/sim/led/setting", "Off");
  const sim::descriptor_t watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  ASSERT_GE(inotify_add_watch(watch.get(), path, IN_MODIFY | IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB), 0);
  tree.set("/sim/led/setting", "Dim");
  inotify_event seen{};
  ASSERT_EQ(read(watch.get(), &seen, sizeof seen), ssize_t{sizeof seen});
  EXPECT_EQ(seen.mask, uint32_t{IN_MODIFY});
  EXPECT_EQ(sim::text_of_file(path), "Dim");
}

TEST_F(BrightnessSetting, AFileThatCannotBeWrittenIsTold) {
  const sim::brightness_setting_t nowhere(loop.base(), tree, story, "/tmp/folder/file");
  std::filesystem::remove("/tmp/folder");
  tree.set("/sim/led/setting", "Dim");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("cannot write /tmp/folder/file"));
  EXPECT_EQ(tree.value("/sim/led/setting"), "absent");
}
