#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "probe_request.h"
#include "test_support/fake_http_server.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "zyl/curl/curl_manager.h"
#include "zyl/curl/download.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"

using test_support::fake_http_server_t;
using test_support::loop_until;
using testing::IsEmpty;
using zyl::curl::download_t;
using zyl::curl::manager_t;
using zyl::curl::transfer_t;

namespace {

class CurlManagerThreadsTest : public testing::Test {
 protected:
  transfer_t probe(const std::string& path, fates_t& fates) {
    return manager.add(std::make_unique<probe_request_t>(server.url(path), fates));
  }

  test_support::log_capture_t log{"zyl_curl"};
  fake_http_server_t server;
  zyl::event_loop_t loop;
  manager_t manager{loop.base()};
};

}  // namespace

TEST_F(CurlManagerThreadsTest, EightThreadsAddWhileTransfersRun) {
  constexpr int per_thread = 40;
  constexpr int count = 8 * per_thread;
  fates_t fates;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < per_thread; ++k) {
        probe("/size/1000", fates);
      }
    });
  }
  const bool all_ended = loop_until(loop.base(), [&] { return fates.destroyed == count; });
  for (auto& thread : threads) {
    thread.join();
  }
  ASSERT_TRUE(all_ended);
  EXPECT_EQ(fates.completed, count);
  EXPECT_EQ(fates.finished, count);
  EXPECT_EQ(fates.succeeded, count);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerThreadsTest, AnotherThreadRemovesWhileTransfersRun) {
  constexpr int count = 100;
  fates_t removed;
  fates_t kept;
  std::vector<transfer_t> to_remove;
  for (int i = 0; i < count; ++i) {
    to_remove.push_back(probe("/held", removed));
    probe("/trickle/300", kept);
  }
  std::thread remover([&] {
    // Some are under way by now, others are still to come.
    EXPECT_TRUE(server.hears(count / 2));
    for (const transfer_t& transfer : to_remove) {
      manager.remove(transfer);
    }
  });
  const bool all_ended = loop_until(loop.base(), [&] { return removed.destroyed == count && kept.destroyed == count; });
  remover.join();
  ASSERT_TRUE(all_ended);
  EXPECT_EQ(removed.completed, 0);
  EXPECT_EQ(kept.succeeded, count);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerThreadsTest, RemovalThatRacesWithTheEndLeavesEachTransferOneFate) {
  constexpr std::size_t per_thread = 60;
  constexpr int count = 4 * per_thread;
  fates_t fates;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      std::vector<transfer_t> added;
      for (std::size_t k = 0; k < per_thread; ++k) {
        added.push_back(probe("/size/10", fates));
        // The newest has hardly begun, the older may just be ending or be over.
        manager.remove(added[k - k % 20]);
      }
    });
  }
  const bool all_ended = loop_until(loop.base(), [&] { return fates.destroyed == count; });
  for (auto& thread : threads) {
    thread.join();
  }
  ASSERT_TRUE(all_ended);
  EXPECT_EQ(fates.completed, fates.finished);
  EXPECT_EQ(fates.completed, fates.succeeded);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(CurlManagerLoopThread, HearsAllThatHappens) {
  const fake_http_server_t server;
  zyl::event_loop_t loop;
  std::unique_ptr<manager_t> manager;
  std::promise<std::thread::id> told_on;
  std::thread runner([&] { loop.run(); });
  const std::thread::id runner_id = runner.get_id();

  std::promise<void> made;
  zyl::post(loop.base(), [&] {
    manager = std::make_unique<manager_t>(loop.base());
    made.set_value();
  });
  made.get_future().wait();
  manager->add(std::make_unique<download_t>(server.url("/size/1"), [&](const download_t::result_t& /*result*/) {
    told_on.set_value(std::this_thread::get_id());
  }));
  EXPECT_EQ(told_on.get_future().get(), runner_id);
  zyl::post(loop.base(), [&] {
    manager.reset();
    loop.stop();
  });
  runner.join();
  EXPECT_EQ(manager, nullptr);
}
