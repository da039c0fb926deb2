// What the session makes of services that keep silent, hang up or chatter.

#include "tools/vgnctl/property/property_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "test_support/fake_property_service.h"
#include "test_support/stub_property_service.h"
#include "tools/vgnctl/test/simulated_properties.h"
#include "zyl/exceptions.h"

using test_support::fake_property_service_t;
using test_support::stub_property_service_t;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Property;
using testing::StrEq;
using testing::ThrowsMessage;
using vgnctl::property_session_t;

namespace {

using request_t = fake_property_service_t::request_t;
using properties_t = std::vector<std::pair<std::string, std::string>>;

std::string response(const std::string& path, const std::string& value) {
  return zyl::build_frame({"get_response", path, value});
}

std::string no_property() { return zyl::build_frame({"error", "no_property", ""}); }

const std::string gone = "the property service has gone";

/// Answers every request with these bytes.
fake_property_service_t::answer_t answering(std::string bytes) {
  return [bytes = std::move(bytes)](const request_t& /*request*/, int /*client*/) { return bytes; };
}

properties_t listed(const std::string& path) {
  properties_t found;
  property_session_t().list(path,
                            [&](const std::string& at, const std::string& value) { found.emplace_back(at, value); });
  return found;
}

properties_t dumped() {
  properties_t found;
  property_session_t().dump([&](const std::string& at, const std::string& value) { found.emplace_back(at, value); });
  return found;
}

}  // namespace

TEST(PropertySession, NeedsAService) {
  EXPECT_THAT([] { property_session_t(); },
              ThrowsMessage<zyl::exception_t>(StrEq("no property service at /tmp/.tarn_property_ipc")));
}

TEST(PropertySession, TellsAMissingPropertyFromAnEmptyOne) {
  vgnctl::simulated_properties_t properties;
  properties.publish("/empty", "");
  property_session_t session;
  EXPECT_EQ(session.get("/empty"), "");
  EXPECT_EQ(session.get("/missing"), std::nullopt);
}

TEST(PropertySession, FindsTheAnswerBehindJunkAndOtherMessages) {
  const fake_property_service_t service(answering("junk" + zyl::build_frame({"changed", "/a"}) +
                                                  zyl::build_frame({"changed", "/a", "1"}) + response("/b", "2") +
                                                  response("/a", "3")));
  EXPECT_EQ(property_session_t().get("/a"), "3");
}

TEST(PropertySession, ServiceThatDoesNotAnswerIsAFailure) {
  const fake_property_service_t service;
  EXPECT_THAT([] { property_session_t().get("/a"); },
              ThrowsMessage<zyl::exception_t>(StrEq("the property service gave no answer for /a")));
}

TEST(PropertySession, ServiceThatGoesAwayIsAFailureAtOnce) {
  fake_property_service_t service;
  property_session_t session;
  ASSERT_TRUE(service.has_clients(1));
  service.close_clients();
  const auto on_property = [](const std::string& /*path*/, const std::string& /*value*/) {};
  const auto is_gone = ThrowsMessage<zyl::exception_t>(StrEq(gone));
  EXPECT_THAT([&] { session.get("/a"); }, is_gone);
  EXPECT_THAT([&] { session.set("/a", "1"); }, is_gone);
  EXPECT_THAT([&] { session.create("/a"); }, is_gone);
  EXPECT_THAT([&] { session.list("/a", on_property); }, is_gone);
  EXPECT_THAT([&] { session.dump(on_property); }, is_gone);
}

TEST(PropertySession, ServiceThatEndsItsSendingSideIsGone) {
  fake_property_service_t service;
  property_session_t session;
  ASSERT_TRUE(service.has_clients(1));
  service.end_sending();
  EXPECT_THAT([&] { session.get("/a"); }, ThrowsMessage<zyl::exception_t>(StrEq(gone)));
}

TEST(PropertySession, RequestThatDoesNotGoOutIsAFailure) {
  const stub_property_service_t service;
  property_session_t session;
  const int peer = service.accept();
  ASSERT_EQ(::shutdown(peer, SHUT_RD), 0);
  const auto on_property = [](const std::string& /*path*/, const std::string& /*value*/) {};
  const auto is_unsent = ThrowsMessage<zyl::exception_t>(StrEq("the property service takes no request"));
  EXPECT_THAT([&] { session.set("/a", "1"); }, is_unsent);
  EXPECT_THAT([&] { session.create("/a"); }, is_unsent);
  EXPECT_THAT([&] { session.get("/a"); }, is_unsent);
  EXPECT_THAT([&] { session.list("/a", on_property); }, is_unsent);
  EXPECT_THAT([&] { session.dump(on_property); }, is_unsent);
  EXPECT_THAT([&] { session.monitor({"/a"}, on_property, [] {}); }, is_unsent);
  ::close(peer);
}

TEST(PropertySession, SetAndCreateEndOnceTheServiceHasThem) {
  vgnctl::simulated_properties_t properties;
  property_session_t session;
  session.set("/a", "1");
  EXPECT_EQ(properties.value("/a"), "1");
  session.create("/b");
  EXPECT_TRUE(properties.exists("/b"));
}

TEST(PropertySession, SetAndCreateThatTheServiceIgnoresAreFailures) {
  const fake_property_service_t service(fake_property_service_t::from({}));
  const auto refused = ThrowsMessage<zyl::exception_t>(StrEq("the property service does not take /a"));
  EXPECT_THAT([] { property_session_t().set("/a", "1"); }, refused);
  EXPECT_THAT([] { property_session_t().create("/a"); }, refused);
}

TEST(PropertySession, ListEndsAtTheEmptyPath) {
  const fake_property_service_t service(
      answering(response("/a/1", "one") + response("/a/2", "") + response("", "") + response("/late", "")));
  EXPECT_THAT(listed("/a"), ElementsAre(Pair("/a/1", "one"), Pair("/a/2", "")));
  EXPECT_THAT(service.requests().front(), ElementsAre("list", "/a"));
}

TEST(PropertySession, ListEndsWithSilenceOnAServiceThatSendsNoEmptyPath) {
  const fake_property_service_t service(answering(response("/a/1", "one") + response("/a/2", "two")));
  EXPECT_THAT(listed("/a"), ElementsAre(Pair("/a/1", "one"), Pair("/a/2", "two")));
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("list", "/a")));
}

TEST(PropertySession, ListEndsAlsoWhileTheServiceSaysOtherThings) {
  fake_property_service_t service(answering(response("/a/1", "one")));
  property_session_t session;
  std::atomic<bool> ended = false;
  std::thread chatter([&] {
    while (!ended) {
      service.send({"changed", "/a/1", "two"});
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  properties_t found;
  session.list("/a", [&](const std::string& at, const std::string& value) { found.emplace_back(at, value); });
  ended = true;
  chatter.join();
  EXPECT_THAT(found, ElementsAre(Pair("/a/1", "one")));
}

TEST(PropertySession, ServiceThatDoesNotKnowListsGivesAnEmptyOne) {
  const fake_property_service_t service;
  EXPECT_THAT(listed("/a"), IsEmpty());
  EXPECT_THAT(dumped(), IsEmpty());
  EXPECT_THAT(service.requests(), ElementsAre(ElementsAre("list", "/a"), ElementsAre("get_all")));
}

TEST(PropertySession, MessagesThatAreNoPropertyAreNotListed) {
  const fake_property_service_t service(answering(zyl::build_frame({"changed", "/a/1", "one"}) +
                                                  zyl::build_frame({"get_response", "/a/1"}) + response("/a/2", "two") +
                                                  no_property() + response("", "")));
  EXPECT_THAT(listed("/a"), ElementsAre(Pair("/a/2", "two")));
}

TEST(PropertySession, DumpAsksForAllAndEndsLikeAList) {
  const auto entries = response("/a", "1") + response("/b", "2");
  {
    const fake_property_service_t service(answering(entries + response("", "")));
    EXPECT_THAT(dumped(), ElementsAre(Pair("/a", "1"), Pair("/b", "2")));
    EXPECT_THAT(service.requests().front(), ElementsAre("get_all"));
  }
  const fake_property_service_t service(answering(entries));
  EXPECT_THAT(dumped(), ElementsAre(Pair("/a", "1"), Pair("/b", "2")));
}

TEST(PropertySession, ListsOfTenThousandPropertiesAndLongestValuesComeWhole) {
  vgnctl::simulated_properties_t properties;
  const std::string value(zyl::longest_property - std::string_view("/big/1").size(), 'v');
  properties.publish("/big/1", value);
  properties.publish("/big/2", value);
  for (int i = 10'000; i < 20'000; ++i) {
    properties.publish("/many/" + std::to_string(i), std::to_string(i));
  }
  EXPECT_THAT(listed("/big"), ElementsAre(Pair("/big/1", value), Pair("/big/2", value)));
  const auto many = listed("/many");
  ASSERT_EQ(many.size(), 10'000U);
  EXPECT_THAT(many.front(), Pair("/many/10000", "10000"));
  EXPECT_THAT(many.back(), Pair("/many/19999", "19999"));
  EXPECT_EQ(dumped().size(), 10'002U);
}
