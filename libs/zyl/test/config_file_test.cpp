#include "zyl/config_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "test_support/log_capture.h"

namespace fs = std::filesystem;

namespace {

class ConfigFile : public testing::Test {
 protected:
  ConfigFile() { fs::create_directories("/tmp/config"); }

  static void put(const std::string& text) { std::ofstream(path) << text; }

  static std::string content() {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Puts what would tell a write: whoever moves a new file here replaces the link.
  static void put_behind_link(const std::string& text) {
    std::ofstream("/tmp/config/target") << text;
    fs::create_symlink("/tmp/config/target", path);
  }

  static constexpr const char* path = "/tmp/config/net.conf";
  test_support::log_capture_t log{"lin_file_utils"};
};

}  // namespace

TEST_F(ConfigFile, ANewFileGetsTheContent) {
  EXPECT_TRUE(zyl::write_config_file(path, "a=1\nb=2\n"));
  EXPECT_EQ(content(), "a=1\nb=2\n");
  EXPECT_FALSE(fs::exists("/tmp/net.conf.tmp"));
}

TEST_F(ConfigFile, OtherLinesReplaceTheOldOnes) {
  for (const char* old : {"a=1\n", "a=1\nb=3\n", "b=2\na=1\n", "a=1\nb=2\nc\n", ""}) {
    put(old);
    EXPECT_TRUE(zyl::write_config_file(path, "a=1\nb=2\n"));
    EXPECT_EQ(content(), "a=1\nb=2\n") << old;
  }
}

TEST_F(ConfigFile, WithTheSameLinesTheFileIsNotTouched) {
  put_behind_link("a=1\nb=2\n");
  EXPECT_TRUE(zyl::write_config_file(path, "a=1\nb=2\n"));
  EXPECT_TRUE(zyl::write_config_file(path, "a=1\nb=2"));
  EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(ConfigFile, WithOtherLinesItIsReplacedAsAWhole) {
  put_behind_link("a=1\n");
  EXPECT_TRUE(zyl::write_config_file(path, "a=2\n"));
  EXPECT_FALSE(fs::is_symlink(path));
  EXPECT_EQ(content(), "a=2\n");
}

TEST_F(ConfigFile, EmptyContentMakesAnEmptyFile) {
  EXPECT_TRUE(zyl::write_config_file(path, ""));
  EXPECT_TRUE(fs::is_regular_file(path));
  EXPECT_EQ(content(), "");
}

TEST_F(ConfigFile, ATemporaryFileThatCannotBeOpenedIsToldAndTheOldFileStays) {
  put("old\n");
  fs::create_directory("/tmp/net.conf.tmp");
  EXPECT_FALSE(zyl::write_config_file(path, "new\n"));
  EXPECT_EQ(content(), "old\n");
  ASSERT_EQ(log.entries().size(), 1U);
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  EXPECT_EQ(log.entries()[0].text, "Error writing config file: /tmp/config/net.conf");
}

TEST_F(ConfigFile, AFullDiskIsToldAndTheOldFileStays) {
  put("old\n");
  fs::create_symlink("/dev/full", "/tmp/net.conf.tmp");
  EXPECT_FALSE(zyl::write_config_file(path, "new\n"));
  EXPECT_EQ(content(), "old\n");
  EXPECT_TRUE(log.said("Error writing config file: /tmp/config/net.conf"));
}

TEST_F(ConfigFile, AFolderThatIsNotThereIsTold) {
  EXPECT_FALSE(zyl::write_config_file("/tmp/nowhere/net.conf", "new\n"));
  EXPECT_TRUE(log.said("Error writing config file: /tmp/nowhere/net.conf"));
}
