#include "zyl/curl/request.h"

#include <gtest/gtest.h>

#include "probe_request.h"

TEST(RequestTest, HandlePointsBackToTheRequest) {
  fates_t fates;
  const probe_request_t probe("http://127.0.0.1/", fates);
  zyl::curl::request_t* found = nullptr;
  ASSERT_EQ(curl_easy_getinfo(probe.easy(), CURLINFO_PRIVATE, &found), CURLE_OK);
  EXPECT_EQ(found, &probe);
}

TEST(RequestTest, RequestThatIsNeverAddedTakesItsHandleAlong) {
  fates_t fates;
  { const probe_request_t probe("http://127.0.0.1/", fates); }
  EXPECT_EQ(fates.destroyed, 1);
  EXPECT_EQ(fates.completed, 0);
}
