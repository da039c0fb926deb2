#include "zyl/log/level_file.h"

#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "zyl/log/module_logger.h"

namespace {

constexpr const char* build_info = "/build_info.json";

// The file system is the test's own, so the literal paths of the appliance can be written.
class LevelFile : public testing::Test {
 protected:
  LevelFile() {
    std::filesystem::create_directories("/var/rwfs2");
    write(build_info, R"({"git_revision": "abc"})");
    reset();
  }

  static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text; }

  void reset() {
    logger.set_level(spdlog::level::info);
    logger.flush_on(spdlog::level::off);
  }

  bool untouched() const { return logger.level() == spdlog::level::info && logger.flush_level() == spdlog::level::off; }

  void load(const std::string& text) {
    write(path, text);
    zyl::load_level_file(path, "vgn_control");
  }

  const std::string path = "/var/rwfs2/log_level.vgn_control.json";
  spdlog::logger& logger = zyl::module_logger("level_file_test");
};

using settings_t = std::vector<zyl::level_setting_t>;

settings_t parse(std::string_view text) { return zyl::parse_level_file(text, "abc", "vgn_control"); }

// 0 when nothing is wrong with it.
int fault_of(std::string_view text) {
  try {
    parse(text);
    return 0;
  } catch (int fault) {
    return fault;
  }
}

}  // namespace

TEST_F(LevelFile, SetsLevelAndFlushLevelOfARegisteredLogger) {
  load(R"({"git_revision": "abc", "vgn_control": {"level_file_test": "Debug"}})");
  EXPECT_EQ(logger.level(), spdlog::level::debug);
  EXPECT_EQ(logger.flush_level(), spdlog::level::debug);
}

TEST_F(LevelFile, OfAnotherFirmwareIsDeletedAndChangesNothing) {
  load(R"({"git_revision": "old", "vgn_control": {"level_file_test": "Debug"}})");
  EXPECT_TRUE(untouched());
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(LevelFile, OfAnotherFirmwareIsDeletedEvenIfTheProgramsMemberIsNoObject) {
  load(R"({"git_revision": "old", "vgn_control": 1})");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(LevelFile, ThatIsAbsentChangesNothing) {
  zyl::load_level_file("/var/rwfs2/log_level.nobody.json", "nobody");
  EXPECT_TRUE(untouched());
  EXPECT_FALSE(std::filesystem::exists("/var/rwfs2/log_level.nobody.json"));
}

TEST_F(LevelFile, WithoutTheProgramsNameChangesNothing) {
  load(R"({"git_revision": "abc", "other": {"level_file_test": "Debug"}})");
  EXPECT_TRUE(untouched());
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(LevelFile, PassesOverALoggerThatNobodyRegistered) {
  load(R"({"git_revision": "abc", "vgn_control": {"nobody": "Debug", "level_file_test": "off"}})");
  EXPECT_EQ(logger.level(), spdlog::level::off);
  EXPECT_EQ(spdlog::get("nobody"), nullptr);
}

TEST_F(LevelFile, ALevelInEitherSpellingIsTheSameAndInCapitalsIsInfo) {
  for (const auto& [text, level] :
       {std::pair{"Warning", spdlog::level::warn}, std::pair{"warning", spdlog::level::warn},
        std::pair{"WARNING", spdlog::level::info}}) {
    logger.set_level(spdlog::level::trace);
    load(std::string(R"({"git_revision": "abc", "vgn_control": {"level_file_test": ")") + text + "\"}}");
    EXPECT_EQ(logger.level(), level) << text;
    EXPECT_EQ(logger.flush_level(), level) << text;
  }
}

TEST_F(LevelFile, AnUnknownLevelTextCountsAsInfo) {
  for (const char* value : {"\"loud\"", "\"\"", "\"notice\"", "3", "null", "{}"}) {
    logger.set_level(spdlog::level::trace);
    load(std::string(R"({"git_revision": "abc", "vgn_control": {"level_file_test": )") + value + "}}");
    EXPECT_EQ(logger.level(), spdlog::level::info) << value;
    EXPECT_EQ(logger.flush_level(), spdlog::level::info) << value;
  }
}

TEST_F(LevelFile, MalformedInAnyWayChangesNothingAndStays) {
  for (const char* text : {"", "[", "[]", "1", "\"text\"", "{}", R"({"vgn_control": {"level_file_test": "Debug"}})",
                           R"({"git_revision": 1, "vgn_control": {"level_file_test": "Debug"}})",
                           R"({"git_revision": "abc", "vgn_control": 1})",
                           R"({"git_revision": "abc", "vgn_control": ["level_file_test"]})",
                           R"({"git_revision": "abc", "vgn_control": {"level_file_test")",
                           R"({"git_revision": "abc", "vgn_control": {"level_file_test": "Debug"}} rest)"}) {
    load(text);
    EXPECT_TRUE(untouched()) << text;
    EXPECT_TRUE(std::filesystem::exists(path)) << text;
  }
}

TEST_F(LevelFile, WithoutAUsableBuildInfoChangesNothingAndStays) {
  const std::string good = R"({"git_revision": "abc", "vgn_control": {"level_file_test": "Debug"}})";
  for (const char* text : {"", "[]", "{}", R"({"git_revision": 7})", R"({"git_revision": "abc")"}) {
    write(build_info, text);
    load(good);
    EXPECT_TRUE(untouched()) << text;
    EXPECT_TRUE(std::filesystem::exists(path)) << text;
  }
  std::filesystem::remove(build_info);
  load(good);
  EXPECT_TRUE(untouched());
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(LevelFile, IsReadLineByLine) {
  load("{\"git_revision\":\r\n \"abc\",\n\n\"vgn_control\": {\n  \"level_file_test\": \"Trace\"\n}\n}\n");
  EXPECT_EQ(logger.level(), spdlog::level::trace);
}

TEST(LevelFileText, GivesTheProgramsSettingsInOrder) {
  EXPECT_EQ(parse(R"({"vgn_control": {"b": "Off", "a": "debug", "c": "?"}, "x": {"d": "off"}, "git_revision": "abc"})"),
            (settings_t{{"b", spdlog::level::off}, {"a", spdlog::level::debug}, {"c", spdlog::level::info}}));
}

TEST(LevelFileText, WithoutTheProgramHasNoSettings) {
  EXPECT_EQ(parse(R"({"git_revision": "abc"})"), settings_t{});
  EXPECT_EQ(parse(R"({"git_revision": "abc", "vgn_control": {}})"), settings_t{});
}

TEST(LevelFileText, TellsWhatIsWrongByItsCode) {
  EXPECT_EQ(fault_of({}), -2);
  EXPECT_EQ(fault_of("{"), -2);
  EXPECT_EQ(fault_of("[]"), -2);
  EXPECT_EQ(fault_of("{}"), -3);
  EXPECT_EQ(fault_of(R"({"git_revision": null})"), -3);
  EXPECT_EQ(fault_of(R"({"git_revision": "abd", "vgn_control": 1})"), -4);
  EXPECT_EQ(fault_of(R"({"git_revision": "abc", "vgn_control": "debug"})"), -2);
  EXPECT_EQ(fault_of(R"({"git_revision": "abc", "vgn_control": {}})"), 0);
}

TEST(LevelFileText, MayBeNestedAsDeepAsItIsLong) {
  EXPECT_EQ(fault_of(std::string(1'000'000, '[')), -2);
  const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
  EXPECT_EQ(fault_of(R"({"git_revision": "abc", "other": )" + deep + "}"), 0);
}

TEST(BuildInfoText, GivesTheRevisionOrTellsWhatIsWrong) {
  EXPECT_EQ(zyl::parse_revision(R"({"branch": "x", "git_revision": "abc"})"), "abc");
  EXPECT_THROW(zyl::parse_revision("{}"), int);
  EXPECT_THROW(zyl::parse_revision("no json"), int);
}

TEST(LevelText, IsAcceptedInTwoSpellings) {
  using spdlog::level::level_enum;
  for (const auto& [capitalised, lower, level] :
       std::vector<std::tuple<const char*, const char*, level_enum>>{{"Off", "off", level_enum::off},
                                                                     {"Critical", "critical", level_enum::critical},
                                                                     {"Error", "error", level_enum::err},
                                                                     {"Warning", "warning", level_enum::warn},
                                                                     {"Info", "info", level_enum::info},
                                                                     {"Debug", "debug", level_enum::debug},
                                                                     {"Trace", "trace", level_enum::trace}}) {
    EXPECT_EQ(zyl::level_of(capitalised), level) << capitalised;
    EXPECT_EQ(zyl::level_of(lower), level) << lower;
  }
}

TEST(LevelText, IsInfoOtherwise) {
  for (const char* text : {"WARNING", "oFF", "notice", "warn", "err", "debug ", ""}) {
    EXPECT_EQ(zyl::level_of(text), spdlog::level::info) << text;
  }
}
