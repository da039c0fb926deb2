#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_support/fake_property_service.h"

using test_support::fake_property_service_t;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string text_of(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

struct outcome_t {
  int status;
  std::string out;
  std::string error;
};

/// Runs the tool to its end; `arguments` as a shell takes them.
outcome_t run(const std::string& arguments) {
  const std::string command = std::string(VGNCTL_PROGRAM) + " " + arguments + " >/tmp/out 2>/tmp/error";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of("/tmp/out"), text_of("/tmp/error")};
}

/// The tool running beside the test, its output readable line by line. Interrupted when this object dies.
class running_tool_t {
 public:
  explicit running_tool_t(std::vector<const char*> arguments) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    arguments.insert(arguments.begin(), VGNCTL_PROGRAM);
    arguments.push_back(nullptr);
    process = ::fork();
    if (process == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::close(ends[0]);
      ::close(ends[1]);
      ::execv(arguments[0], const_cast<char**>(arguments.data()));
      ::_exit(127);
    }
    ::close(ends[1]);
    out = ::fdopen(ends[0], "r");
  }

  ~running_tool_t() {
    if (process > 0) {
      ::kill(process, SIGINT);
      wait();
    }
    std::fclose(out);
  }

  running_tool_t(const running_tool_t&) = delete;
  running_tool_t& operator=(const running_tool_t&) = delete;

  std::string line() {
    std::string text;
    for (int c = std::fgetc(out); c != EOF && c != '\n'; c = std::fgetc(out)) {
      text.push_back(static_cast<char>(c));
    }
    return text;
  }

  /// The exit status, once it has ended.
  int wait() {
    int status = 0;
    ::waitpid(process, &status, 0);
    process = 0;
    return status;
  }

 private:
  pid_t process = 0;
  FILE* out = nullptr;
};

}  // namespace

TEST(PropertyGet, PrintsPathAndValue) {
  const fake_property_service_t service(fake_property_service_t::from({{"/sys/name", "a = b"}}));
  const auto outcome = run("property get /sys/name");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "/sys/name=a = b\n");
  EXPECT_EQ(outcome.error, "");
}

TEST(PropertyGet, MissingPropertyIsEmpty) {
  const fake_property_service_t service(fake_property_service_t::from({}));
  const auto outcome = run("property get /sys/name");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "/sys/name=\n");
}

TEST(PropertyGet, ServiceThatDoesNotAnswerIsAFailure) {
  const fake_property_service_t service;
  const auto outcome = run("property get /sys/name");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.error, "vgnctl: the property service gave no answer for /sys/name\n");
}

TEST(PropertyGet, AnswerIsFoundBehindJunkAndOtherMessages) {
  const fake_property_service_t service([](const fake_property_service_t::request_t& /*request*/, int /*client*/) {
    return "junk" + zyl::build_frame({"changed", "/a"}) + zyl::build_frame({"changed", "/a", "1"}) +
           zyl::build_frame({"get_response", "/b", "2"}) + zyl::build_frame({"get_response", "/a", "3"});
  });
  const auto outcome = run("property get /a");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "/a=3\n");
}

TEST(PropertySet, WritesTheValueAndWaitsUntilTheServiceHasIt) {
  const fake_property_service_t service(fake_property_service_t::from({}));
  const auto outcome = run("property set /sys/name 'a b'");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("set", "/sys/name", "a b"), ElementsAre("get", "/sys/name")));
}

TEST(PropertySet, ValueMayBeEmptyOrBeginWithAHyphen) {
  const fake_property_service_t service(fake_property_service_t::from({}));
  EXPECT_EQ(run("property set /sys/name ''").status, 0);
  EXPECT_TRUE(service.hears({"set", "/sys/name", ""}));
  EXPECT_EQ(run("property set /sys/name -- '-1 0 0'").status, 0);
  EXPECT_TRUE(service.hears({"set", "/sys/name", "-1 0 0"}));
}

TEST(PropertySet, ValueTooLongForAFrameIsRefusedUnsent) {
  const fake_property_service_t service(fake_property_service_t::from({}));
  EXPECT_EQ(run("property set /a \"$(head -c 65524 /dev/zero | tr '\\0' v)\"").status, 0);
  const auto outcome = run("property set /a \"$(head -c 65525 /dev/zero | tr '\\0' v)\"");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("too long"));
  EXPECT_EQ(service.requests().size(), 2U);
}

TEST(PropertyMonitor, PrintsEachChangeUntilInterrupted) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a", "/b"});
  ASSERT_TRUE(service.hears({"monitor", "/b"}));
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("monitor", "/a"), ElementsAre("monitor", "/b")));
  service.send({"changed", "/a", "1"});
  EXPECT_EQ(tool.line(), "/a=1");
  service.send_bytes("junk" + zyl::build_frame({"changed", "/a"}));
  service.send({"get_response", "/a", "2"});
  service.send({"changed", "/b", ""});
  EXPECT_EQ(tool.line(), "/b=");
}

TEST(PropertyMonitor, EndsWithAFailureWhenTheServiceGoes) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  service.close_clients();
  const int status = tool.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST(PropertyCommands, SayThatTheServiceIsAbsent) {
  for (const char* arguments : {"property get /a", "property set /a 1", "property monitor /a"}) {
    const auto outcome = run(arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "vgnctl: no property service at /tmp/.tarn_property_ipc\n");
  }
}

TEST(PropertyCommands, BadUsageIsStatusTwoWithAMessage) {
  for (const char* arguments : {"", "property", "property get", "property set /a", "property get /a /b",
                                "property monitor", "property unset /a", "propriety get /a", "--loud"}) {
    const auto outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_NE(outcome.error, "") << arguments;
  }
}

TEST(PropertyCommands, HelpIsNoFailure) {
  const auto outcome = run("property --help");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("monitor"));
}
