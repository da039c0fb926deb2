#include "sim/remote/appliance_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using options_t = sim::appliance_process_t::options_t;

constexpr std::chrono::seconds limit{30};

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

int status_of(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{sim::program_folder() + "/vgn-appliance"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return sim::child_process_t(command, {{}, "/tmp/output"}).wait(limit).value_or(-1);
}

}  // namespace

TEST(ApplianceProcess, ServesTheIdentityOfItsModel) {
  sim::appliance_process_t appliance(options_t{137, "/tmp/story", ""});
  sim::remote_control_t remote;
  EXPECT_EQ(remote.value("/sys/config/part_number"), "part-137");
  EXPECT_EQ(remote.value("/xk_splash/0/ready"), "1");
  EXPECT_EQ(remote.value("/xk_splash/1/ready"), "");
}

TEST(ApplianceProcess, EndsWellAtSigterm) {
  sim::appliance_process_t appliance;
  EXPECT_EQ(appliance.process().stop(SIGTERM, limit), 0);
}

TEST(ApplianceProcess, CollectsTheLogOfTheWorld) {
  sim::appliance_process_t appliance;
  sim::remote_control_t remote;
  sim::child_process_t logger({"logger", "-t", "somebody", "a line"});
  EXPECT_EQ(logger.wait(limit), std::optional(0));
  const auto logged = remote.expect_log("somebody: a line");
  EXPECT_TRUE(logged) << logged.seen;
}

TEST(ApplianceProcess, ACommandRunsOnTheApplianceAndGivesItsStatus) {
  EXPECT_EQ(status_of({"--story", "/tmp/story", "--", "sh", "-c", "test -S /tmp/.tarn_property_ipc && exit 9"}), 9);
  EXPECT_NE(text_of("/tmp/story").find("is up"), std::string::npos);
}

TEST(ApplianceProcess, AModelThatDoesNotExistIsWrongUse) {
  EXPECT_EQ(status_of({"--model", "1"}), 2);
  EXPECT_NE(text_of("/tmp/output").find("there is no model 1"), std::string::npos);
}

TEST(ApplianceProcess, ACommandThatCannotBeStartedIsAFailure) {
  EXPECT_EQ(status_of({"--story", "/tmp/story", "--", "no-such-program"}), 1);
  EXPECT_NE(text_of("/tmp/output").find("cannot start no-such-program"), std::string::npos);
}

TEST(ApplianceProcess, RefusesToRunOutsideASandbox) {
  unsetenv("VGN_SANDBOX");
  EXPECT_EQ(status_of({}), 1);
  EXPECT_NE(text_of("/tmp/output").find("sandbox"), std::string::npos);
}

TEST(ApplianceProcess, OneThatEndsAtOnceIsAnError) {
  EXPECT_THROW(sim::appliance_process_t(options_t{1, "/tmp/story", "/tmp/output"}), std::runtime_error);
}
