#include "zyl/curl/download.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "test_support/fake_breaking_http_server.h"
#include "test_support/fake_http_server.h"
#include "test_support/loop_until.h"
#include "zyl/curl/curl_manager.h"
#include "zyl/event_loop.h"

using test_support::fake_http_server_t;
using zyl::curl::download_t;

namespace {

class DownloadTest : public testing::Test {
 protected:
  bool turn_until_result() {
    return test_support::loop_until(loop.base(), [&] { return result.has_value(); });
  }

  std::unique_ptr<download_t> make_download(const std::string& url,
                                            std::size_t body_limit = download_t::default_body_limit) {
    return std::make_unique<download_t>(
        url, [this](const download_t::result_t& told) { result = told; }, body_limit);
  }

  void start(const std::string& url, std::size_t body_limit = download_t::default_body_limit) {
    manager.add(make_download(url, body_limit));
  }

  fake_http_server_t server;
  zyl::event_loop_t loop;
  zyl::curl::manager_t manager{loop.base()};
  std::optional<download_t::result_t> result;
};

int close_in_mid_body(void* server, curl_off_t /*expected*/, curl_off_t received, curl_off_t /*to_send*/,
                      curl_off_t /*sent*/) {
  if (received > 0) {
    static_cast<test_support::fake_breaking_http_server_t*>(server)->close();
  }
  return 0;
}

}  // namespace

TEST_F(DownloadTest, GivesStatusAndBody) {
  start(server.url("/size/12345"));
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, fake_http_server_t::body_of(12345));
}

TEST_F(DownloadTest, EmptyBodyIsABody) {
  start(server.url("/size/0"));
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, "");
}

TEST_F(DownloadTest, StatusThatMeansFailureIsNoFailedTransfer) {
  start(server.url("/nowhere"));
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->status, 404);
}

TEST_F(DownloadTest, BodyThatBreaksOffGivesWhatCame) {
  test_support::fake_breaking_http_server_t breaking;
  auto download = make_download(breaking.url());
  curl_easy_setopt(download->easy(), CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(download->easy(), CURLOPT_XFERINFODATA, &breaking);
  curl_easy_setopt(download->easy(), CURLOPT_XFERINFOFUNCTION, close_in_mid_body);
  manager.add(std::move(download));
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_PARTIAL_FILE);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, "half.");
}

TEST_F(DownloadTest, BodyOfExactlyTheLimitFits) {
  start(server.url("/size/1000"), 1000);
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->body.size(), 1000U);
}

TEST_F(DownloadTest, LongerBodyThanTheLimitEndsTheTransfer) {
  start(server.url("/size/1001"), 1000);
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_WRITE_ERROR);
  EXPECT_LE(result->body.size(), 1000U);
}

TEST_F(DownloadTest, LimitHoldsForTheWholeBodyNotForEachPiece) {
  start(server.url("/trickle/101"), 100);
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_WRITE_ERROR);
  EXPECT_EQ(result->body, fake_http_server_t::body_of(100));
}

TEST_F(DownloadTest, UrlThatIsNoneFails) {
  start("http://");
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_URL_MALFORMAT);
  EXPECT_EQ(result->status, 0);
}

// A name is looked up on a thread of libcurl's own, which tells by a descriptor that it is done.
TEST_F(DownloadTest, NameThatNobodyKnowsFails) {
  start("http://nobody.invalid/");
  ASSERT_TRUE(turn_until_result());
  EXPECT_EQ(result->code, CURLE_COULDNT_RESOLVE_HOST);
}
