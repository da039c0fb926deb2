#include "zyl/log/setup_logging.h"

#include <gtest/gtest.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

#include "test_support/fake_syslog.h"
#include "zyl/log/module_logger.h"
#include "zyl/log/scope_logger.h"

namespace {

constexpr std::uintmax_t limit = 3145728;
const std::string log_file = "/tmp/logs/program.log";
const std::string old_file = "/tmp/logs/program.1.log";

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

class SetupLoggingFile : public testing::Test {
 protected:
  void open() { zyl::setup_logging("vgn_control", false, log_file); }

  void write(const std::string& text) {
    logger.error(text);
    logger.flush();
  }

  /// Puts bytes into the file before it is opened.
  static void fill(std::uintmax_t size) {
    std::filesystem::create_directories("/tmp/logs");
    std::ofstream(log_file) << std::string(size - 1, '.') << '\n';
  }

  spdlog::logger& logger = zyl::module_logger("setup_file");
  // "[11/21/2025 14:21:07] [setup_file] [error] " and the line end.
  const std::uintmax_t frame = 44;
};

class SetupLoggingSyslog : public testing::Test {
 protected:
  SetupLoggingSyslog() { zyl::setup_logging("/usr/bin/vgn_control", false, ""); }

  /// The only datagram since the last call, without its time stamp.
  std::string only_line() {
    const auto lines = log.take();
    EXPECT_EQ(lines.size(), 1U);
    static const std::regex stamp(R"(^(<\d+>)[A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d )");
    return lines.empty() ? "" : std::regex_replace(lines[0], stamp, "$1");
  }

  test_support::fake_syslog_t log;
  spdlog::logger& logger = zyl::module_logger("setup_syslog");
};

}  // namespace

TEST(SetupLogging, KeepsTheLastComponentOfTheProgramsPath) {
  EXPECT_EQ(zyl::program_name(), "");
  for (const auto& [name, program] : {std::pair{"/usr/bin/vgn_control", "vgn_control"}, std::pair{"./other", "other"},
                                      std::pair{"plain", "plain"}, std::pair{"/folder/", ""}}) {
    zyl::setup_logging(name, false, "stdout_color_sink_mt");
    EXPECT_EQ(zyl::program_name(), program);
  }
}

TEST(SetupLogging, GivesSyslogToLoggersMadeBeforeAndAfter) {
  auto& before = zyl::module_logger("setup_before");
  zyl::setup_logging("vgn_control", false, "");
  auto& after = zyl::module_logger("setup_after");
  for (auto* logger : {&before, &after, spdlog::default_logger_raw()}) {
    ASSERT_EQ(logger->sinks().size(), 1U) << logger->name();
    EXPECT_NE(dynamic_cast<spdlog::sinks::syslog_sink<std::mutex>*>(logger->sinks().front().get()), nullptr)
        << logger->name();
  }
}

TEST(SetupLogging, TwoSinkNamesAreTheColourConsole) {
  zyl::setup_logging("vgn_control", false, "stdout_color_sink_mt");
  EXPECT_NE(dynamic_cast<spdlog::sinks::stdout_color_sink_mt*>(spdlog::default_logger_raw()->sinks().front().get()),
            nullptr);
  zyl::setup_logging("vgn_control", false, "stdout_color_sink_st");
  EXPECT_NE(dynamic_cast<spdlog::sinks::stdout_color_sink_st*>(spdlog::default_logger_raw()->sinks().front().get()),
            nullptr);
}

TEST(SetupLogging, LoadsTheProgramsLevelFileOnlyWhenAsked) {
  auto& logger = zyl::module_logger("setup_levels");
  std::ofstream("/build_info.json") << R"({"git_revision": "abc"})";
  std::ofstream("/var/rwfs2/log_level.vgn_control.json")
      << R"({"git_revision": "abc", "vgn_control": {"setup_levels": "Debug", "setup_later": "Debug"}})";
  zyl::setup_logging("vgn_control", false, "stdout_color_sink_mt");
  EXPECT_EQ(logger.level(), spdlog::level::info);
  zyl::setup_logging("/usr/bin/vgn_control", true, "stdout_color_sink_mt");
  EXPECT_EQ(logger.level(), spdlog::level::debug);
  EXPECT_EQ(zyl::module_logger("setup_later").level(), spdlog::level::info);
}

TEST_F(SetupLoggingSyslog, SendsTheMessageAloneUnderTheProgramsName) {
  logger.info("display {}", 1);
  EXPECT_EQ(only_line(), "<14>vgn_control: display 1");
}

TEST_F(SetupLoggingSyslog, EachLevelHasItsPriorityOfTheUserFacility) {
  logger.set_level(spdlog::level::trace);
  for (const auto& [level, line] :
       {std::pair{spdlog::level::critical, "<10>vgn_control: text"},
        std::pair{spdlog::level::err, "<11>vgn_control: text"}, std::pair{spdlog::level::warn, "<12>vgn_control: text"},
        std::pair{spdlog::level::info, "<14>vgn_control: text"},
        std::pair{spdlog::level::debug, "<15>vgn_control: text"},
        std::pair{spdlog::level::trace, "<15>vgn_control: text"}}) {
    logger.log(level, "text");
    EXPECT_EQ(only_line(), line);
  }
}

TEST_F(SetupLoggingSyslog, TextIsNoFormatStringAndItsBytesStayAsTheyAre) {
  logger.info("{}", "%s %n \xe2\x95\x90");
  EXPECT_EQ(only_line(), "<14>vgn_control: %s %n \xe2\x95\x90");
}

TEST_F(SetupLoggingSyslog, BelowItsLevelALoggerSendsNothing) {
  logger.debug("text");
  EXPECT_TRUE(log.take().empty());
}

TEST_F(SetupLoggingSyslog, ScopesArriveAsTheyAreDrawn) {
  { const zyl::scope_logger scope("s", spdlog::level::info, logger); }
  const auto lines = log.take();
  ASSERT_EQ(lines.size(), 2U);
  const std::string head = "vgn_control:    [" + std::to_string(zyl::thread_id()) + "]: ";
  EXPECT_NE(lines[0].find(head + "\u2554\u2550\u2550\u2550s\u2550\u2550\u2550\u2557"), std::string::npos) << lines[0];
  EXPECT_NE(lines[1].find(head + "\u255a\u2550\u2550\u2550s\u2550\u2550\u2550\u255d"), std::string::npos) << lines[1];
}

TEST_F(SetupLoggingFile, AnyOtherSinkNameIsAFile) {
  open();
  write("hello");
  const std::string text = text_of(log_file);
  EXPECT_TRUE(
      std::regex_match(text, std::regex(R"(\[\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\] \[setup_file\] \[error\] hello\n)")))
      << text;
  EXPECT_EQ(text.size(), frame + 5);
}

TEST_F(SetupLoggingFile, ALoggerMadeLaterWritesInTheFilesLayout) {
  open();
  auto& later = zyl::module_logger("setup_file_later");
  later.error("one");
  later.flush();
  write("two");
  EXPECT_NE(text_of(log_file).find("] [setup_file_later] [error] one\n"), std::string::npos) << text_of(log_file);
  EXPECT_EQ(text_of(log_file).find("[20"), std::string::npos) << "the year comes last in the file's layout";
}

TEST_F(SetupLoggingFile, IsAppendedToWhenItIsOpenedAgain) {
  open();
  write("one");
  open();
  write("two");
  const std::string text = text_of(log_file);
  EXPECT_LT(text.find("] one\n"), text.find("] two\n")) << text;
  EXPECT_NE(text.find("] two\n"), std::string::npos) << text;
  EXPECT_FALSE(std::filesystem::exists(old_file));
}

TEST_F(SetupLoggingFile, IsFilledToItsLimitAndMovedAsideByTheNextLine) {
  fill(limit - frame - 4);
  open();
  write("last");
  EXPECT_EQ(std::filesystem::file_size(log_file), limit);
  EXPECT_FALSE(std::filesystem::exists(old_file));

  write("first");
  EXPECT_EQ(std::filesystem::file_size(old_file), limit);
  EXPECT_EQ(std::filesystem::file_size(log_file), frame + 5);
}

TEST_F(SetupLoggingFile, IsMovedAsideByALineThatIsOneByteTooLong) {
  fill(limit - frame - 4);
  open();
  write("five.");
  EXPECT_EQ(std::filesystem::file_size(old_file), limit - frame - 4);
  EXPECT_EQ(std::filesystem::file_size(log_file), frame + 5);
}

TEST_F(SetupLoggingFile, OneOldFileIsKept) {
  open();
  const std::string megabyte(1'000'000, 'x');
  for (int i = 0; i < 10; ++i) {
    write(std::to_string(i) + megabyte);
  }
  const auto holds = [](const std::string& path, int line) {
    return text_of(path).find("] " + std::to_string(line) + "x") != std::string::npos;
  };
  EXPECT_TRUE(holds(old_file, 6) && holds(old_file, 7) && holds(old_file, 8));
  EXPECT_TRUE(holds(log_file, 9));
  const auto entries = std::filesystem::directory_iterator("/tmp/logs");
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);
}

TEST_F(SetupLoggingFile, ThatCannotBeOpenedThrows) {
  std::ofstream("/tmp/plain") << "no folder";
  EXPECT_THROW(zyl::setup_logging("vgn_control", false, "/tmp/plain/program.log"), spdlog::spdlog_ex);
}
