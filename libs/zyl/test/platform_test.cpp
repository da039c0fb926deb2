#include "zyl/platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "test_support/fake_property_service.h"
#include "test_support/log_capture.h"
#include "test_support/stub_property_service.h"
#include "zyl/log/module_logger.h"

using test_support::fake_property_service_t;
using test_support::log_capture_t;
using test_support::stub_property_service_t;
using testing::ElementsAre;
using testing::IsEmpty;
using zyl::platform_t;

namespace {

using values_t = std::map<std::string, std::string>;

values_t streamer_values() {
  return {{"/sys/config/arch", "aarch64"},
          {"/sys/config/platform", "vgnstreamer"},
          {"/sys/config/part_number", "part-106"},
          {"/sys/config/fw_server_crc", "crc"},
          {"/sys/config/fw_server_hash", "hash"},
          {"/sys/config/fw_server_crc_compat", "crc compat"},
          {"/sys/config/fw_server_hash_compat", "hash compat"}};
}

platform_t read_from(const values_t& values) {
  return platform_t([&](const std::string& path) { return std::optional(values.at(path)); });
}

platform_t with(const std::string& path, const std::string& value) {
  values_t values = streamer_values();
  values[path] = value;
  return read_from(values);
}

void expect_streamer(const platform_t& platform) {
  EXPECT_EQ(platform.architecture(), 6U);
  EXPECT_EQ(platform.platform(), 22U);
  EXPECT_EQ(platform.part(), 106U);
  EXPECT_EQ(platform.part_number(), "part-106");
  EXPECT_EQ(platform.firmware_crc(), "crc");
  EXPECT_EQ(platform.firmware_hash(), "hash");
  EXPECT_EQ(platform.compatible_firmware_crc(), "crc compat");
  EXPECT_EQ(platform.compatible_firmware_hash(), "hash compat");
}

/// What `from_bus` does to a process that has nothing but itself, its output where a death test can see it.
void read_the_bus_with_output_on_stderr() {
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  platform_t::from_bus();
}

}  // namespace

TEST(Platform, TakesItsFieldsFromTheProperties) { expect_streamer(read_from(streamer_values())); }

TEST(Platform, ReadsThePropertiesInTheirOrder) {
  std::vector<std::string> asked;
  const platform_t platform([&](const std::string& path) {
    asked.push_back(path);
    return std::optional<std::string>("");
  });
  EXPECT_THAT(asked, ElementsAre("/sys/config/arch", "/sys/config/platform", "/sys/config/part_number",
                                 "/sys/config/fw_server_crc", "/sys/config/fw_server_hash",
                                 "/sys/config/fw_server_crc_compat", "/sys/config/fw_server_hash_compat"));
}

TEST(Platform, FailedReadAbandonsTheAttempt) {
  int asked = 0;
  const auto read = [&](const std::string& /*path*/) {
    ++asked;
    return asked < 3 ? std::optional<std::string>("") : std::nullopt;
  };
  EXPECT_THROW(platform_t{read}, zyl::platform_unreadable_exception_t);
  EXPECT_EQ(asked, 3);
}

TEST(Platform, KnowsTheArchitectures) {
  const values_t words{{"x86_64", "1"},  {"powerpc", "2"}, {"arm", "3"}, {"a8_arm", "4"},
                       {"aarch64", "6"}, {"riscv", "0"},   {"", "0"},    {"ARM", "0"}};
  for (const auto& [word, value] : words) {
    EXPECT_EQ(std::to_string(with("/sys/config/arch", word).architecture()), value) << word;
  }
}

TEST(Platform, KnowsThePlatformWords) {
  const std::map<std::string, uint32_t> words{{"illegal", 0},      {"core", 1},      {"ioframe", 2},
                                              {"cxqamp", 4},       {"emulator", 15}, {"pnl_g2", 18},
                                              {"vgnstreamer", 22}, {"pnl_g3", 24},   {"camera", 26}};
  for (const auto& [word, value] : words) {
    EXPECT_EQ(with("/sys/config/platform", word).platform(), value) << word;
  }
}

TEST(Platform, UnknownPlatformWordIsZeroAndTheRestIsRead) {
  const platform_t platform = with("/sys/config/platform", "toaster");
  EXPECT_EQ(platform.platform(), 0U);
  EXPECT_EQ(platform.part(), 106U);
  EXPECT_EQ(platform.compatible_firmware_hash(), "hash compat");
}

TEST(Platform, UnknownPartNumberIsZeroAndItsTextStays) {
  const platform_t platform = with("/sys/config/part_number", "part-142");
  EXPECT_EQ(platform.part(), 0U);
  EXPECT_EQ(platform.part_number(), "part-142");
}

TEST(Platform, ModelTableIsNumberedFromOneInListOrder) {
  const auto models = zyl::platform_models();
  ASSERT_EQ(models.size(), 141U);
  for (uint32_t i = 0; i < models.size(); ++i) {
    EXPECT_EQ(models[i].id, i + 1);
    EXPECT_EQ(platform_t::part_id_of(models[i].part), i + 1);
    EXPECT_EQ(platform_t::display_name(i + 1), models[i].display_name);
  }
  EXPECT_EQ(models[84].part, "part-085");
  EXPECT_EQ(models[84].display_name, "Model 085");
}

TEST(Platform, TestedModelsHaveTheirClassValues) {
  const auto classes = [](uint32_t id) { return std::vector{platform_t::family(id), platform_t::variant(id)}; };
  EXPECT_THAT(classes(85), ElementsAre(22, 1));
  EXPECT_THAT(classes(100), ElementsAre(1, 1));
  EXPECT_THAT(classes(105), ElementsAre(22, 6));
  EXPECT_THAT(classes(106), ElementsAre(22, 6));
  EXPECT_THAT(classes(137), ElementsAre(22, 6));
  EXPECT_THAT(classes(1), ElementsAre(0, 0));
  EXPECT_THAT(zyl::platform_models()[99].further, ElementsAre(85, 22));
}

TEST(Platform, UnknownModelIdHasNoClassAndNoName) {
  for (const uint32_t id : {0U, 142U, 0xFFFFFFFFU}) {
    EXPECT_EQ(platform_t::family(id), 0U);
    EXPECT_EQ(platform_t::variant(id), 0U);
    EXPECT_EQ(platform_t::display_name(id), "Unknown");
  }
}

TEST(Platform, CpusComeFromTheTableWithoutALine) {
  const log_capture_t log("zyl_platform");
  EXPECT_THAT(platform_t::control_cpus(0x42), ElementsAre("cpu0", "cpu1"));
  EXPECT_THAT(platform_t::network_cpus(0x42), ElementsAre("cpu2", "cpu3"));
  EXPECT_THAT(platform_t::processing_cpus(0x42), ElementsAre("cpu4", "cpu5", "cpu6", "cpu7"));
  EXPECT_THAT(platform_t::control_cpus(0x49), ElementsAre("cpu0", "cpu2", "cpu4", "cpu6"));
  EXPECT_THAT(platform_t::network_cpus(0x49), ElementsAre("cpu8", "cpu10", "cpu12", "cpu14"));
  EXPECT_THAT(platform_t::processing_cpus(0x49), ElementsAre("cpu1", "cpu3", "cpu5", "cpu7"));
  EXPECT_THAT(platform_t::control_cpus(0x3E), ElementsAre("cpu0"));
  EXPECT_THAT(platform_t::network_cpus(0x3E), ElementsAre("cpu3"));
  EXPECT_THAT(platform_t::processing_cpus(0x3E), ElementsAre("cpu1", "cpu2"));
  EXPECT_THAT(platform_t::control_cpus(0x46), ElementsAre("cpu0"));
  EXPECT_THAT(platform_t::network_cpus(0x46), ElementsAre("cpu1", "cpu2", "cpu3"));
  EXPECT_THAT(platform_t::processing_cpus(0x46), IsEmpty());
  EXPECT_THAT(platform_t::control_cpus(0x80), ElementsAre("cpu0"));
  EXPECT_THAT(platform_t::network_cpus(0x80), IsEmpty());
  EXPECT_THAT(platform_t::processing_cpus(0x80), IsEmpty());
  EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(Platform, CpusOfIdZeroAreNoneWithoutALine) {
  const log_capture_t log("zyl_platform");
  EXPECT_THAT(platform_t::network_cpus(0), IsEmpty());
  EXPECT_THAT(platform_t::control_cpus(0), IsEmpty());
  EXPECT_THAT(platform_t::processing_cpus(0), IsEmpty());
  EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(Platform, CpusOfAModelWithoutARowAreTheDefaultsWithAWarning) {
  const log_capture_t log("zyl_platform");
  EXPECT_THAT(platform_t::network_cpus(106), IsEmpty());
  EXPECT_THAT(platform_t::control_cpus(106), ElementsAre("cpu0"));
  EXPECT_THAT(platform_t::processing_cpus(999), ElementsAre("cpu1", "cpu2", "cpu3"));
  EXPECT_THAT(log.lines(),
              ElementsAre("Table lookup failed for part number Model 106. Using default network cpu vector",
                          "Table lookup failed for part number Model 106. Using default control cpu vector",
                          "Table lookup failed for part number Unknown. Using default processing cpu vector"));
  for (const auto& entry : log.entries()) {
    EXPECT_EQ(entry.level, spdlog::level::warn);
  }
}

TEST(Platform, IsUnknownUntilOneIsInstalled) {
  EXPECT_EQ(platform_t::get().part(), 0U);
  EXPECT_EQ(platform_t::get().part_number(), "");
  const platform_t streamer = read_from(streamer_values());
  platform_t::install(&streamer);
  EXPECT_EQ(&platform_t::get(), &streamer);
  platform_t::install(nullptr);
  EXPECT_EQ(platform_t::get().architecture(), 0U);
}

TEST(Platform, BoardWithoutANumberIsOne) { EXPECT_EQ(platform_t::board_id(), 1); }

TEST(PlatformFromBus, AsksTheServiceOnce) {
  const fake_property_service_t service(fake_property_service_t::from(streamer_values()));
  expect_streamer(platform_t::from_bus());
  EXPECT_EQ(service.requests().size(), 7U);
}

TEST(PlatformFromBus, ServiceThatTakesItsTimeIsHeard) {
  fake_property_service_t service(fake_property_service_t::from(streamer_values()));
  service.delay_answer("/sys/config/arch", std::chrono::milliseconds(300));
  service.delay_answer("/sys/config/fw_server_hash_compat", std::chrono::milliseconds(300));
  expect_streamer(platform_t::from_bus());
}

TEST(PlatformFromBus, MissingPropertiesReadAsEmpty) {
  const fake_property_service_t service(fake_property_service_t::from({{"/sys/config/part_number", "part-085"}}));
  const platform_t platform = platform_t::from_bus();
  EXPECT_EQ(platform.part(), 85U);
  EXPECT_EQ(platform.architecture(), 0U);
  EXPECT_EQ(platform.firmware_crc(), "");
}

TEST(PlatformFromBus, SecondAttemptThatSucceedsLeavesNoTraceOfTheFirst) {
  const log_capture_t log("zyl_platform", spdlog::level::trace);
  const auto answer = fake_property_service_t::from(streamer_values());
  const fake_property_service_t service([&](const fake_property_service_t::request_t& request, int client) {
    const bool spoil = client == 0 && request[1] == "/sys/config/part_number";
    return spoil ? zyl::build_frame({"changed", "/other", "1"}) : answer(request, client);
  });
  expect_streamer(platform_t::from_bus());
  EXPECT_EQ(service.requests().size(), 3U + 7U);
  EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(PlatformFromBusDeathTest, WithoutAServiceTheProcessTellsWhyAndEndsWithStatus255) {
  EXPECT_EXIT(read_the_bus_with_output_on_stderr(), testing::ExitedWithCode(255),
              "zyl_platform.*error.*platform_t unable to read platform information from property engine\\.");
}

TEST(PlatformFromBusDeathTest, SilentServiceIsAskedInTwoAttemptsForTheFirstProperty) {
  const stub_property_service_t service;
  EXPECT_EXIT(read_the_bus_with_output_on_stderr(), testing::ExitedWithCode(255), "platform_t unable to read");
  const std::string request = zyl::build_frame({"get", "/sys/config/arch"});
  EXPECT_EQ(service.accept_and_read(), request);
  EXPECT_EQ(service.accept_and_read(), request);
  EXPECT_EQ(service.accept_and_read(), std::nullopt);
}

TEST(PlatformFromBusDeathTest, TwoFailedAttemptsEndTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const auto answer = fake_property_service_t::from(streamer_values());
        const fake_property_service_t service([&](const fake_property_service_t::request_t& request, int client) {
          return client < 2 ? zyl::build_frame({"changed", "/other", "1"}) : answer(request, client);
        });
        read_the_bus_with_output_on_stderr();
      },
      testing::ExitedWithCode(255), "platform_t unable to read");
}

TEST(PlatformLog, TheLoggerIsThereBeforeItIsUsed) { EXPECT_NE(spdlog::get("zyl_platform"), nullptr); }

TEST(PlatformLog, ALevelThatWasSetSurvivesItsUse) {
  const auto logger = spdlog::get("zyl_platform");
  ASSERT_NE(logger, nullptr);
  logger->set_level(spdlog::level::err);
  platform_t::network_cpus(999);
  platform_t::control_cpus(999);
  EXPECT_EQ(logger->level(), spdlog::level::err);
  logger->set_level(spdlog::level::info);
}
