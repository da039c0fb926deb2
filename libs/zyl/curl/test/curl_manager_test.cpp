#include "zyl/curl/curl_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "probe_request.h"
#include "test_support/fake_breaking_http_server.h"
#include "test_support/fake_http_server.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "test_support/loopback_listener.h"
#include "zyl/curl/download.h"
#include "zyl/event_loop.h"

using test_support::fake_breaking_http_server_t;
using test_support::fake_http_server_t;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using zyl::curl::download_t;
using zyl::curl::manager_t;
using zyl::curl::transfer_t;

namespace {

class CurlManagerTest : public testing::Test {
 protected:
  bool turn_until(const std::function<bool()>& condition) { return test_support::loop_until(loop.base(), condition); }

  std::unique_ptr<download_t> make_download(const std::string& url) {
    return std::make_unique<download_t>(url, [this](const download_t::result_t& result) { results.push_back(result); });
  }

  transfer_t download(const std::string& url) { return manager->add(make_download(url)); }

  transfer_t probe(const std::string& url) { return manager->add(std::make_unique<probe_request_t>(url, fates)); }

  /// The results' codes, in the order of completion.
  std::vector<CURLcode> codes() const {
    std::vector<CURLcode> all;
    for (const auto& result : results) {
      all.push_back(result.code);
    }
    return all;
  }

  /// Whether the manager has the loop wake it at a time.
  bool awaits_a_time() {
    std::pair<const manager_t*, bool> answer{manager.get(), false};
    const auto look = [](const event_base* /*base*/, const event* seen, void* given) {
      auto& [owner, found] = *static_cast<decltype(answer)*>(given);
      found = found || event_get_callback_arg(seen) == owner;  // the loop holds only what awaits something
      return 0;
    };
    event_base_foreach_event(loop.base(), look, &answer);
    return answer.second;
  }

  test_support::log_capture_t log{"zyl_curl"};
  fake_http_server_t server;
  zyl::event_loop_t loop;
  std::vector<download_t::result_t> results;
  fates_t fates;
  std::unique_ptr<manager_t> manager = std::make_unique<manager_t>(loop.base());
};

/// Writes down what happens to it.
class diary_request_t : public zyl::curl::request_t {
 public:
  diary_request_t(const std::string& url, std::vector<std::string>& written) : diary(written) {
    curl_easy_setopt(easy(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy(), CURLOPT_NOBODY, 1L);
  }
  ~diary_request_t() override { diary.emplace_back("destroyed"); }
  void completed(CURLcode result) override { diary.push_back("completed " + std::to_string(result)); }
  void finish() override { diary.emplace_back("finished"); }

 private:
  std::vector<std::string>& diary;
};

}  // namespace

TEST_F(CurlManagerTest, RequestIsCompletedThenFinishedThenDestroyed) {
  std::vector<std::string> diary;
  manager->add(std::make_unique<diary_request_t>(server.url("/size/1"), diary));
  ASSERT_TRUE(turn_until([&] { return diary.size() == 3; }));
  EXPECT_THAT(diary, ElementsAre("completed 0", "finished", "destroyed"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, LargeBodyArrivesWhole) {
  constexpr std::size_t size = 4 << 20;
  download(server.url("/size/" + std::to_string(size)));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(results[0].code, CURLE_OK);
  EXPECT_TRUE(results[0].body == fake_http_server_t::body_of(size));
}

TEST_F(CurlManagerTest, LargeBodyIsSentAndComesBackWhole) {
  const std::string sent = fake_http_server_t::body_of(4 << 20);
  auto request = make_download(server.url("/echo"));
  curl_easy_setopt(request->easy(), CURLOPT_POSTFIELDSIZE, static_cast<long>(sent.size()));
  curl_easy_setopt(request->easy(), CURLOPT_POSTFIELDS, sent.c_str());
  manager->add(std::move(request));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(results[0].code, CURLE_OK);
  EXPECT_TRUE(results[0].body == sent);
}

TEST_F(CurlManagerTest, HundredsOfTransfersAreUnderWayAtOnce) {
  constexpr std::size_t count = 300;
  for (std::size_t i = 0; i < count; ++i) {
    download(server.url("/held"));
  }
  // None is answered before the server has heard them all.
  ASSERT_TRUE(turn_until([&] { return server.heard() == count; }));
  EXPECT_THAT(results, IsEmpty());
  server.release_held();
  ASSERT_TRUE(turn_until([&] { return results.size() == count; }));
  for (const auto& result : results) {
    EXPECT_EQ(result.code, CURLE_OK);
    EXPECT_EQ(result.body, "released");
  }
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, ManyTransfersOneAfterAnotherAllArrive) {
  constexpr std::size_t count = 300;
  std::function<void(std::size_t)> start_next = [&](std::size_t number) {
    manager->add(std::make_unique<download_t>(server.url("/size/" + std::to_string(number)),
                                              [&, number](const download_t::result_t& result) {
                                                EXPECT_TRUE(result.body == fake_http_server_t::body_of(number));
                                                results.push_back(result);
                                                if (number < count) {
                                                  start_next(number + 1);
                                                }
                                              }));
  };
  start_next(1);
  ASSERT_TRUE(turn_until([&] { return results.size() == count; }));
  EXPECT_THAT(codes(), Each(CURLE_OK));
}

TEST_F(CurlManagerTest, SlowServersBodiesArriveWhole) {
  constexpr std::size_t count = 100;
  for (std::size_t i = 0; i < count; ++i) {
    download(server.url("/trickle/200"));
  }
  ASSERT_TRUE(turn_until([&] { return results.size() == count; }));
  for (const auto& result : results) {
    EXPECT_EQ(result.code, CURLE_OK);
    EXPECT_EQ(result.body, fake_http_server_t::body_of(200));
  }
}

TEST_F(CurlManagerTest, QuickTransfersDoNotWaitForSlowOnes) {
  download(server.url("/held"));
  for (int i = 0; i < 50; ++i) {
    download(server.url("/size/100"));
  }
  ASSERT_TRUE(turn_until([&] { return results.size() == 50; }));
  for (const auto& result : results) {
    EXPECT_EQ(result.body, fake_http_server_t::body_of(100));
  }
  ASSERT_TRUE(server.hears(51));
  server.release_held();
  ASSERT_TRUE(turn_until([&] { return results.size() == 51; }));
  EXPECT_EQ(results.back().body, "released");
}

TEST_F(CurlManagerTest, ResetInMidBodyIsTheResultOfItsTransfersAlone) {
  fake_breaking_http_server_t breaking;
  constexpr int count = 100;
  int begun = 0;
  fates_t broken;
  for (int i = 0; i < count; ++i) {
    auto request = std::make_unique<probe_request_t>(breaking.url(), broken);
    request->on_piece = [&] { ++begun; };
    manager->add(std::move(request));
    probe(server.url("/trickle/50"));
  }
  ASSERT_TRUE(turn_until([&] { return begun == count; }));
  EXPECT_EQ(broken.completed, 0);
  breaking.reset();
  ASSERT_TRUE(turn_until([&] { return broken.destroyed == count && fates.destroyed == count; }));
  EXPECT_EQ(broken.finished, count);
  EXPECT_EQ(broken.succeeded, 0);
  EXPECT_EQ(fates.succeeded, count);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, ConnectionThatNobodyTakesIsRefused) {
  const test_support::loopback_listener_t deaf;
  download(deaf.url("/"));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(results[0].code, CURLE_COULDNT_CONNECT);
  EXPECT_EQ(results[0].status, 0);
}

TEST_F(CurlManagerTest, TimeLimitOfARequestEndsIt) {
  auto request = make_download(server.url("/held"));
  curl_easy_setopt(request->easy(), CURLOPT_TIMEOUT_MS, 1L);
  manager->add(std::move(request));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(results[0].code, CURLE_OPERATION_TIMEDOUT);
}

TEST_F(CurlManagerTest, TimerOfATimeLimitGoesWithItsTransfer) {
  auto request = std::make_unique<probe_request_t>(server.url("/held"), fates);
  curl_easy_setopt(request->easy(), CURLOPT_TIMEOUT_MS, 3'600'000L);
  const transfer_t transfer = manager->add(std::move(request));
  ASSERT_TRUE(turn_until([&] { return server.heard() == 1; }));
  EXPECT_TRUE(awaits_a_time());
  manager->remove(transfer);
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  EXPECT_FALSE(awaits_a_time());
}

TEST_F(CurlManagerTest, TransferWithoutAnAnswerIsRemoved) {
  const transfer_t transfer = probe(server.url("/held"));
  ASSERT_TRUE(turn_until([&] { return server.heard() == 1; }));
  manager->remove(transfer);
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  EXPECT_EQ(fates.completed, 0);
  EXPECT_EQ(fates.finished, 0);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, TransferRemovedInMidBodyLeavesTheServer) {
  fake_breaking_http_server_t breaking;
  bool begun = false;
  auto request = std::make_unique<probe_request_t>(breaking.url(), fates);
  request->on_piece = [&] { begun = true; };
  const transfer_t transfer = manager->add(std::move(request));
  ASSERT_TRUE(turn_until([&] { return begun; }));
  EXPECT_EQ(breaking.hung_up(), 0);
  manager->remove(transfer);
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1 && breaking.hung_up() == 1; }));
  EXPECT_EQ(fates.completed, 0);
}

TEST_F(CurlManagerTest, TransferRemovedBeforeItsBeginningNeverBegins) {
  manager->remove(probe(server.url("/size/1")));
  EXPECT_EQ(fates.destroyed, 0);
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  download(server.url("/size/1"));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(server.heard(), 1U);
  EXPECT_EQ(fates.completed, 0);
}

TEST_F(CurlManagerTest, RemovingWhatHasEndedDoesNothing) {
  const transfer_t transfer = probe(server.url("/size/1"));
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  manager->remove(transfer);
  manager->remove(transfer);
  manager->remove(transfer_t());
  download(server.url("/size/1"));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_EQ(fates.destroyed, 1);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, RemovingAnEndedTransferSparesTheOneThatHasItsHandleNow) {
  const transfer_t ended = probe(server.url("/size/1"));
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  const transfer_t present = probe(server.url("/held"));
  EXPECT_NE(ended.serial, present.serial);
  manager->remove({present.easy, ended.serial});
  ASSERT_TRUE(turn_until([&] { return server.heard() == 2; }));
  server.release_held();
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 2; }));
  EXPECT_EQ(fates.succeeded, 2);
}

TEST_F(CurlManagerTest, CompletionMayRemoveAnotherTransfer) {
  const transfer_t other = probe(server.url("/held"));
  ASSERT_TRUE(turn_until([&] { return server.heard() == 1; }));
  manager->add(std::make_unique<download_t>(server.url("/size/1"),
                                            [&](const download_t::result_t& /*result*/) { manager->remove(other); }));
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  EXPECT_EQ(fates.completed, 0);
}

TEST_F(CurlManagerTest, DestructionEndsLiveTransfersWithoutCompletingThem) {
  fake_breaking_http_server_t breaking;
  constexpr int count = 100;
  int begun = 0;
  for (int i = 0; i < count; ++i) {
    probe(server.url("/held"));
    auto in_mid_body = std::make_unique<probe_request_t>(breaking.url(), fates);
    in_mid_body->on_piece = [&] { ++begun; };
    manager->add(std::move(in_mid_body));
  }
  ASSERT_TRUE(turn_until([&] { return server.heard() == count && begun == count; }));
  manager.reset();
  EXPECT_EQ(fates.destroyed, 2 * count);
  EXPECT_EQ(fates.completed, 0);
  EXPECT_EQ(fates.finished, 0);
  // The loop goes on.
  ASSERT_TRUE(turn_until([&] { return breaking.hung_up() == count; }));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CurlManagerTest, WhatIsPostedToAManagerThatHasGoneIsDestroyed) {
  const transfer_t transfer = probe(server.url("/size/1"));
  manager->remove(transfer);
  manager.reset();
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  EXPECT_EQ(fates.completed, 0);
  EXPECT_EQ(server.heard(), 0U);
}

TEST_F(CurlManagerTest, WhatIsPostedToALoopThatEndsIsDestroyed) {
  {
    zyl::event_loop_t other_loop;
    manager_t other(other_loop.base());
    other.add(std::make_unique<probe_request_t>(server.url("/size/1"), fates));
    EXPECT_EQ(fates.destroyed, 0);
  }
  EXPECT_EQ(fates.destroyed, 1);
}

TEST_F(CurlManagerTest, ManagersShareALoop) {
  manager_t other(loop.base());
  other.add(make_download(server.url("/size/1")));
  download(server.url("/size/2"));
  ASSERT_TRUE(turn_until([&] { return results.size() == 2; }));
  EXPECT_THAT(codes(), Each(CURLE_OK));
}

TEST_F(CurlManagerTest, RefusedTransferIsLoggedAndStaysUntilItIsRemoved) {
  auto request = std::make_unique<probe_request_t>(server.url("/size/1"), fates);
  const std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> foreign(curl_multi_init(), curl_multi_cleanup);
  ASSERT_EQ(curl_multi_add_handle(foreign.get(), request->easy()), CURLM_OK);
  const std::string head = "  \\[" + std::to_string(gettid()) + "\\]: \\[curl/curl_manager:[0-9]+\\] ERROR : ";

  const transfer_t refused = manager->add(std::move(request));
  download(server.url("/size/1"));
  ASSERT_TRUE(turn_until([&] { return results.size() == 1; }));
  EXPECT_THAT(log.lines(), ElementsAre(MatchesRegex(head + "add::curl_multi_add_handle returns " +
                                                    curl_multi_strerror(CURLM_ADDED_ALREADY))));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  EXPECT_EQ(fates.destroyed, 0);

  log.clear();
  manager->remove(refused);
  ASSERT_TRUE(turn_until([&] { return fates.destroyed == 1; }));
  EXPECT_THAT(log.lines(), ElementsAre(MatchesRegex(head + "remove::curl_multi_remove_handle returns " +
                                                    curl_multi_strerror(CURLM_BAD_EASY_HANDLE))));
  EXPECT_EQ(fates.completed, 0);
}
