// The tool itself, mostly on the property service of the simulated appliance.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <string>

#include "test_support/fake_property_service.h"
#include "tools/vgnctl/test/simulated_properties.h"
#include "tools/vgnctl/test/tool.h"

using test_support::fake_property_service_t;
using testing::ElementsAre;
using testing::HasSubstr;
using vgnctl::run;
using vgnctl::running_tool_t;

namespace {

class PropertyCommands : public testing::Test {
 protected:
  /// Runs the tool and expects that all is well.
  static std::string output_of(const std::string& arguments) {
    const auto outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.error, "") << arguments;
    return outcome.out;
  }

  vgnctl::simulated_properties_t properties;
};

}  // namespace

TEST_F(PropertyCommands, GetPrintsPathAndValue) {
  properties.publish("/sys/name", "a = b");
  EXPECT_EQ(output_of("property get /sys/name"), "/sys/name=a = b\n");
  EXPECT_EQ(output_of("property get --json /sys/name"), "{\"path\":\"/sys/name\",\"value\":\"a = b\"}\n");
  EXPECT_EQ(output_of("property get /sys/name --json"), "{\"path\":\"/sys/name\",\"value\":\"a = b\"}\n");
}

TEST_F(PropertyCommands, GetOfAMissingPropertyIsEmptyAndDoesNotMakeIt) {
  EXPECT_EQ(output_of("property get /sys/name"), "/sys/name=\n");
  EXPECT_EQ(output_of("property get --json /sys/name"), "{\"path\":\"/sys/name\",\"value\":\"\"}\n");
  EXPECT_FALSE(properties.exists("/sys/name"));
}

TEST_F(PropertyCommands, ValueOfSeveralLinesOrBytesStaysOneLine) {
  properties.publish("/a", "1\n/b=2\x1B\xFF");
  EXPECT_EQ(output_of("property get /a"), "/a=1\\n/b=2\\x1b\\xff\n");
  EXPECT_EQ(output_of("property get --json /a"),
            "{\"path\":\"/a\",\"value\":\"1\\n/b=2\\u001b\xEF\xBF\xBD\",\"value_hex\":\"310a2f623d321bff\"}\n");
}

TEST_F(PropertyCommands, SetWritesTheValueThatTheNextCommandFinds) {
  EXPECT_EQ(output_of("property set /sys/name 'a b'"), "");
  EXPECT_EQ(properties.value("/sys/name"), "a b");
  EXPECT_EQ(output_of("property get /sys/name"), "/sys/name=a b\n");
}

TEST_F(PropertyCommands, SetTakesAnEmptyValueAndOneThatBeginsWithAHyphen) {
  properties.publish("/sys/name", "old");
  EXPECT_EQ(output_of("property set /sys/name ''"), "");
  EXPECT_EQ(properties.value("/sys/name"), "");
  EXPECT_EQ(output_of("property set /sys/name -- '-1 0 0'"), "");
  EXPECT_EQ(properties.value("/sys/name"), "-1 0 0");
}

TEST_F(PropertyCommands, SetTakesTheLongestValueAndRefusesALongerOne) {
  const auto set = [](const std::string& bytes) {
    return run("property set /a \"$(head -c " + bytes + " /dev/zero | tr '\\0' v)\"");
  };
  EXPECT_EQ(set("65515").status, 0);
  const std::string longest(65515, 'v');
  EXPECT_EQ(properties.value("/a"), longest);
  EXPECT_EQ(output_of("property get /a"), "/a=" + longest + "\n");
  const auto refused = set("65516");
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.error, HasSubstr("65518 bytes are too long, 65517 is the most"));
  EXPECT_EQ(properties.value("/a"), longest);
}

TEST_F(PropertyCommands, ArgumentsBehindTwoHyphensAreTakenAsTheyAre) {
  EXPECT_EQ(output_of("property set /a -- ++"), "");
  EXPECT_EQ(properties.value("/a"), "++");
  EXPECT_EQ(output_of("property set -- ++ get"), "");
  EXPECT_EQ(properties.value("++"), "get");
  EXPECT_EQ(output_of("property set '[/a,/b]' '[1,2]'"), "");
  EXPECT_EQ(properties.value("[/a,/b]"), "[1,2]");
  EXPECT_EQ(output_of("property get '[/a,/b]'"), "[/a,/b]=[1,2]\n");
}

TEST_F(PropertyCommands, LongestPathIsTakenAndALongerOneIsBadUsage) {
  const auto with_path_of = [](const std::string& command, const std::string& bytes) {
    return run("property " + command + " \"$(head -c " + bytes + " /dev/zero | tr '\\0' p)\"");
  };
  const std::string longest(65517, 'p');
  EXPECT_EQ(with_path_of("create", "65517").status, 0);
  EXPECT_TRUE(properties.exists(longest));
  const auto found = with_path_of("get", "65517");
  EXPECT_EQ(found.status, 0);
  EXPECT_EQ(found.out, longest + "=\n");
  for (const char* command : {"get", "create", "list", "monitor", "monitor /a", "dump"}) {
    const auto refused = with_path_of(command, "65518");
    EXPECT_EQ(refused.status, 2) << command;
    EXPECT_THAT(refused.error, HasSubstr("65518 bytes are too long, 65517 is the most")) << command;
  }
}

TEST_F(PropertyCommands, SetAndCreatePrintNoJsonEither) {
  EXPECT_EQ(output_of("property set --json /a 1"), "");
  EXPECT_EQ(output_of("property set /a 2 --json"), "");
  EXPECT_EQ(properties.value("/a"), "2");
  EXPECT_EQ(output_of("property create --json /b"), "");
  EXPECT_TRUE(properties.exists("/b"));
}

TEST_F(PropertyCommands, CreateMakesAnEmptyPropertyAndKeepsOneThatExists) {
  EXPECT_EQ(output_of("property create /new"), "");
  EXPECT_TRUE(properties.exists("/new"));
  properties.publish("/old", "1");
  EXPECT_EQ(output_of("property create /old"), "");
  EXPECT_EQ(properties.value("/old"), "1");
}

TEST_F(PropertyCommands, ListPrintsWhatIsBelowAPathInOrder) {
  properties.publish("/b/2", "two");
  properties.publish("/b", "parent");
  properties.publish("/b/1", "one\ntwo");
  properties.publish("/c", "other");
  EXPECT_EQ(output_of("property list /b"), "/b/1=one\\ntwo\n/b/2=two\n");
  EXPECT_EQ(output_of("property list /b --json"),
            "{\"path\":\"/b/1\",\"value\":\"one\\ntwo\"}\n{\"path\":\"/b/2\",\"value\":\"two\"}\n");
  EXPECT_EQ(output_of("property list /none"), "");
}

TEST_F(PropertyCommands, DumpPrintsEverything) {
  properties.publish("/b", "two");
  properties.publish("/a/x", "one");
  EXPECT_EQ(output_of("property dump"), "/a/x=one\n/b=two\n");
  EXPECT_EQ(output_of("property dump --json"),
            "{\"path\":\"/a/x\",\"value\":\"one\"}\n{\"path\":\"/b\",\"value\":\"two\"}\n");
}

TEST_F(PropertyCommands, DumpOfAPathPrintsWhatListPrints) {
  properties.publish("/a/x", "one");
  properties.publish("/a/y", "");
  properties.publish("/b", "two");
  EXPECT_EQ(output_of("property dump /a"), "/a/x=one\n/a/y=\n");
  EXPECT_EQ(output_of("property dump --json /a"), output_of("property list --json /a"));
  EXPECT_EQ(output_of("property dump /none"), "");
}

TEST(PropertyMonitor, TakesPathsInBracketsAsAList) {
  fake_property_service_t service;
  const running_tool_t tool({"property", "monitor", "[/a,/b]"});
  ASSERT_TRUE(service.hears({"monitor", "/b"}));
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("monitor", "/a"), ElementsAre("monitor", "/b")));
}

TEST(PropertyMonitor, PrintsWhatCameRightBeforeTheServiceWent) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  // The first line is longer than a pipe holds, so the tool is still at it when the service closes.
  service.send_bytes(zyl::build_frame({"changed", "/a", std::string(20'000, '\1')}) +
                     zyl::build_frame({"changed", "/a", "2"}) + zyl::build_frame({"changed", "/a", "3"}));
  ASSERT_TRUE(tool.speaks());
  service.close_clients();
  EXPECT_EQ(tool.line().size(), 3U + 4 * 20'000);
  EXPECT_EQ(tool.line(), "/a=2");
  EXPECT_EQ(tool.line(), "/a=3");
  EXPECT_EQ(tool.line(), "");
  const int status = tool.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(running_tool_t::error(), "vgnctl: the property service has gone\n");
}

TEST(PropertyMonitor, PrintsEachChangeAtOnceUntilInterrupted) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a", "/b"});
  ASSERT_TRUE(service.hears({"monitor", "/b"}));
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("monitor", "/a"), ElementsAre("monitor", "/b")));
  service.send({"changed", "/a", "1"});
  EXPECT_EQ(tool.line(), "/a=1");
  service.send_bytes("junk" + zyl::build_frame({"changed", "/a"}));
  service.send({"get_response", "/a", "2"});
  service.send({"changed", "/b", "\n"});
  EXPECT_EQ(tool.line(), "/b=\\n");
  tool.send_signal(SIGINT);
  const int status = tool.wait();
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
  EXPECT_EQ(tool.line(), "");
  EXPECT_EQ(running_tool_t::error(), "");
}

TEST(PropertyMonitor, PrintsJsonLines) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "--json", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  service.send({"changed", "/a", "\xFF"});
  EXPECT_EQ(tool.line(), "{\"path\":\"/a\",\"value\":\"\xEF\xBF\xBD\",\"value_hex\":\"ff\"}");
}

TEST(PropertyMonitor, PrintsABigValueWhole) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  const std::string value(65'000, 'v');
  service.send({"changed", "/a", value});
  EXPECT_EQ(tool.line(), "/a=" + value);
}

TEST(PropertyMonitor, WarnsOfAnUnknownPropertyAndGoesOn) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  service.send({"error", "no_property", "/a"});
  service.send({"changed", "/a", "1"});
  EXPECT_EQ(tool.line(), "/a=1");
  EXPECT_EQ(running_tool_t::error(), "vgnctl: one of the properties does not exist\n");
}

TEST(PropertyMonitor, EndsWithAFailureWhenTheServiceGoes) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"});
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  service.close_clients();
  const int status = tool.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(running_tool_t::error(), "vgnctl: the property service has gone\n");
}

TEST(PropertyMonitor, EndsWithAFailureWhenItsOutputTakesNothing) {
  fake_property_service_t service;
  running_tool_t tool({"property", "monitor", "/a"}, "/dev/full");
  ASSERT_TRUE(service.hears({"monitor", "/a"}));
  service.send({"changed", "/a", "1"});
  const int status = tool.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(running_tool_t::error(), "vgnctl: standard output takes nothing more\n");
}

TEST(PropertyService, AbsentIsSaidByEveryCommand) {
  for (const char* arguments : {"get /a", "set /a 1", "create /a", "list /a", "monitor /a", "dump", "dump --json"}) {
    const auto outcome = run(std::string("property ") + arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "vgnctl: no property service at /tmp/.tarn_property_ipc\n");
  }
}

TEST(PropertyService, SilentIsAFailure) {
  const fake_property_service_t service;
  for (const char* arguments : {"get /a", "set /a 1", "create /a"}) {
    const auto outcome = run(std::string("property ") + arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "vgnctl: the property service gave no answer for /a\n");
  }
}

TEST(PropertyService, SilentHasEmptyLists) {
  const fake_property_service_t service;
  for (const char* arguments : {"list /a", "dump", "dump /a", "list --json /a"}) {
    const auto outcome = run(std::string("property ") + arguments);
    EXPECT_EQ(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.out + outcome.error, "") << arguments;
  }
}

TEST(PropertyService, GoingAwayInTheMiddleOfAListIsAFailure) {
  fake_property_service_t service;
  running_tool_t tool({"property", "dump"});
  ASSERT_TRUE(service.hears({"get_all"}));
  service.close_clients();
  const int status = tool.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(running_tool_t::error(), "vgnctl: the property service has gone\n");
}

TEST(PropertyService, ThatSendsNoEndOfAListIsListedAllTheSame) {
  const fake_property_service_t service([](const fake_property_service_t::request_t& /*request*/, int /*client*/) {
    return zyl::build_frame({"get_response", "/a/1", "one"});
  });
  for (const char* arguments : {"list /a", "dump"}) {
    const auto outcome = run(std::string("property ") + arguments);
    EXPECT_EQ(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.out, "/a/1=one\n") << arguments;
    EXPECT_EQ(outcome.error, "") << arguments;
  }
}
