#include "engine_lib/engine_ipc_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "test_support/log_capture.h"
#include "zyl/log/module_logger.h"

using eipc::manager_t;

// One registry a process: every test here runs in a process and a sandbox of its own.

namespace {

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

mode_t mode_of(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
}

class empty_message_t : public eipc::message_base_t {
 public:
  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const override {
    return out;
  }
};

/// Lets the log be seen where a death test looks, each line with its level in front.
void log_to_stderr() {
  auto sink = std::make_shared<spdlog::sinks::stderr_sink_mt>();
  sink->set_pattern("%l%v");
  zyl::module_logger("eng_engine_ipc").sinks().push_back(sink);
}

/// What standard error holds after a critical line with this text and the assertion that follows it.
auto told_then_asserted(const std::string& text) {
  return testing::ContainsRegex("critical \\[[0-9]+\\]: \\[libs/engine_lib/engine_ipc_manager.cpp:[0-9]+\\] " + text +
                                "\n[^\n]*Assertion `false' failed");
}

}  // namespace

TEST(EngineIpcManager, BindsASocketBelowAFolderOfItsIdThatOnlyItsOwnerMayEnter) {
  manager_t::init("peer", 12, true);
  EXPECT_EQ(manager_t::get_name(), "peer");
  EXPECT_TRUE(exists("/var/tarn-engine-ipc/12/peer"));
  EXPECT_EQ(mode_of("/var/tarn-engine-ipc"), 0700U);
  EXPECT_EQ(mode_of("/var/tarn-engine-ipc/12"), 0700U);
  EXPECT_TRUE(manager_t::sk(12).is_open());
  EXPECT_TRUE(manager_t::sk(12).verbose);
}

TEST(EngineIpcManager, SocketsOfTwoIdsReachEachOtherByPath) {
  manager_t::init("peer", 1, false);
  manager_t::init("peer", 2, false);
  EXPECT_EQ(manager_t::sk(1).sendto({1, 5}, empty_message_t(), "/var/tarn-engine-ipc/2/peer"), 16);
  std::string from;
  eipc::message_type type;
  zyl::datastream_strio_t data;
  std::vector<lnx::cmsg_t> cmsgs;
  EXPECT_EQ(manager_t::sk(2).get_message(from, type, data, cmsgs, 0), 1);
  EXPECT_EQ(from, "/var/tarn-engine-ipc/1/peer");
}

TEST(EngineIpcManager, BindingAnIdAgainReplacesItsSocket) {
  manager_t::init("peer", 3, false);
  manager_t::init("peer", 3, true);
  EXPECT_TRUE(manager_t::sk(3).is_open());
  EXPECT_TRUE(manager_t::sk(3).verbose);
}

TEST(EngineIpcManager, ClosingRemovesThePathAndLeavesOtherIdsAlone) {
  manager_t::init("peer", 1, false);
  manager_t::init("peer", 2, false);
  manager_t::close("peer", 1);
  EXPECT_FALSE(exists("/var/tarn-engine-ipc/1/peer"));
  EXPECT_TRUE(exists("/var/tarn-engine-ipc/2/peer"));
  EXPECT_TRUE(manager_t::sk(2).is_open());
}

TEST(EngineIpcManager, ClosingAnIdThatIsNotBoundIsToldWithItsPlace) {
  manager_t::init("peer", 1, false);
  const test_support::log_capture_t log("eng_engine_ipc");
  manager_t::close("peer", 2);
  const auto entries = log.entries();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].level, spdlog::level::critical);
  EXPECT_THAT(entries[0].text, testing::MatchesRegex(" .[0-9]+.: .libs/engine_lib/engine_ipc_manager.cpp:[0-9]+. "
                                                     "no socket not found at 2"));
}

TEST(EngineIpcManager, HasAnEmptyNameBeforeTheFirstSocketAndSaysSo) {
  const test_support::log_capture_t log("eng_engine_ipc");
  EXPECT_EQ(manager_t::get_name(), "");
  ASSERT_EQ(log.lines().size(), 1U);
  EXPECT_THAT(log.lines()[0], testing::EndsWith("] no eipc manager to grab name"));
}

TEST(EngineIpcManagerDeathTest, ASecondNameEndsTheProcess) {
  log_to_stderr();
  manager_t::init("peer", 1, false);
  EXPECT_EXIT(manager_t::init("other", 1, false), testing::KilledBySignal(SIGABRT),
              told_then_asserted("eipc manager already created, name mismatch: other : peer"));
}

TEST(EngineIpcManagerDeathTest, ClosingWithoutAManagerOrUnderAnotherNameEndsTheProcess) {
  log_to_stderr();
  EXPECT_EXIT(manager_t::close("peer", 1), testing::KilledBySignal(SIGABRT),
              told_then_asserted("eipc manager name mismatch: peer : "));
  manager_t::init("peer", 1, false);
  EXPECT_EXIT(manager_t::close("other", 1), testing::KilledBySignal(SIGABRT),
              told_then_asserted("eipc manager name mismatch: other : peer"));
}

TEST(EngineIpcManagerDeathTest, AskingForASocketThatIsNotBoundEndsTheProcess) {
  log_to_stderr();
  EXPECT_EXIT(manager_t::sk(1), testing::KilledBySignal(SIGABRT), "Assertion `s_manager' failed");
  manager_t::init("peer", 1, false);
  EXPECT_EXIT(manager_t::sk(2), testing::KilledBySignal(SIGABRT), told_then_asserted("socket not found at 2"));
}

TEST(EngineIpcManagerDeathTest, ASocketThatCannotBeBoundEndsTheProcess) {
  EXPECT_EXIT(manager_t::init("no/folder", 1, false), testing::KilledBySignal(SIGABRT),
              ": libs/engine_lib/engine_ipc_manager.cpp:[0-9]+: void "
              "eipc::manager_t::create_socket.unsigned int, bool.: Assertion `!err' failed");
}
