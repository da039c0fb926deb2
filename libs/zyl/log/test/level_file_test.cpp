#include "zyl/log/level_file.h"

#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "zyl/log/module_logger.h"

namespace {

// The file system is the test's own, so the literal paths of the appliance can be written.
class LevelFile : public testing::Test {
 protected:
  LevelFile() {
    std::filesystem::create_directories("/var/rwfs2");
    write("/build_info.json", R"({"git_revision": "abc"})");
    logger.set_level(spdlog::level::info);
  }

  static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text; }

  void load(const std::string& text) {
    write(path, text);
    zyl::load_level_file(path, "vgn_control");
  }

  const std::string path = "/var/rwfs2/log_level.vgn_control.json";
  spdlog::logger& logger = zyl::module_logger("level_file_test");
};

}  // namespace

TEST_F(LevelFile, SetsLevelAndFlushLevelOfARegisteredLogger) {
  load(R"({"git_revision": "abc", "vgn_control": {"level_file_test": "Debug"}})");
  EXPECT_EQ(logger.level(), spdlog::level::debug);
  EXPECT_EQ(logger.flush_level(), spdlog::level::debug);
}

TEST_F(LevelFile, OfAnotherFirmwareIsDeletedAndChangesNothing) {
  load(R"({"git_revision": "old", "vgn_control": {"level_file_test": "Debug"}})");
  EXPECT_EQ(logger.level(), spdlog::level::info);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(LevelFile, WithoutTheProgramsNameChangesNothing) {
  load(R"({"git_revision": "abc", "other": {"level_file_test": "Debug"}})");
  EXPECT_EQ(logger.level(), spdlog::level::info);
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(LevelFile, PassesOverALoggerThatNobodyRegistered) {
  load(R"({"git_revision": "abc", "vgn_control": {"nobody": "Debug", "level_file_test": "off"}})");
  EXPECT_EQ(logger.level(), spdlog::level::off);
  EXPECT_EQ(spdlog::get("nobody"), nullptr);
}

TEST_F(LevelFile, MalformedInAnyWayChangesNothing) {
  for (const char* text :
       {"", "[", "[]", "{}", R"({"git_revision": 1})", R"({"git_revision": "abc", "vgn_control": 1})",
        R"({"git_revision": "abc", "vgn_control": {"level_file_test")"}) {
    load(text);
    EXPECT_EQ(logger.level(), spdlog::level::info) << text;
    EXPECT_TRUE(std::filesystem::exists(path)) << text;
  }
}

TEST(LevelText, IsAcceptedInTwoSpellingsAndIsInfoOtherwise) {
  EXPECT_EQ(zyl::level_of("Warning"), spdlog::level::warn);
  EXPECT_EQ(zyl::level_of("warning"), spdlog::level::warn);
  EXPECT_EQ(zyl::level_of("WARNING"), spdlog::level::info);
  EXPECT_EQ(zyl::level_of("notice"), spdlog::level::info);
  EXPECT_EQ(zyl::level_of("Trace"), spdlog::level::trace);
  EXPECT_EQ(zyl::level_of("critical"), spdlog::level::critical);
}
