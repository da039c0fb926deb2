#include "zyl/property_client.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <atomic>
#include <ostream>
#include <string>
#include <thread>

#include "test_support/fake_property_service.h"

using test_support::fake_property_service_t;
using testing::ElementsAre;

namespace {

using namespace std::string_literals;

constexpr int generous_ms = 20'000;
constexpr int without_end = -1;

struct message_t {
  bool received = false;
  std::string command;
  std::string path;
  std::string value;

  bool operator==(const message_t&) const = default;
};

void PrintTo(const message_t& message, std::ostream* out) {
  *out << message.received << " \"" << message.command << "\" \"" << message.path << "\" \"" << message.value << '"';
}

const message_t none{};
const message_t bad_payload{false, "error", "bad_payload", ""};

/// A client that is connected to a service.
class PropertyClient : public testing::Test {
 protected:
  PropertyClient() { EXPECT_TRUE(client.connect()); }

  message_t receive(int timeout_ms) {
    message_t message{false, "stale", "stale", "stale"};
    message.received = client.receive(message.command, message.path, message.value, timeout_ms);
    return message;
  }

  /// Bytes that have come and that the client has not read.
  int waiting_bytes() const {
    int count = 0;
    EXPECT_EQ(::ioctl(client.descriptor(), FIONREAD, &count), 0);
    return count;
  }

  fake_property_service_t service;
  zyl::property_client_t client;
};

message_t changed(const std::string& path, const std::string& value) { return {true, "changed", path, value}; }

}  // namespace

TEST_F(PropertyClient, SendsEachRequestAsItsFields) {
  EXPECT_TRUE(client.create("/a"));
  EXPECT_TRUE(client.get("/b"));
  EXPECT_TRUE(client.set("/c", "3"));
  EXPECT_TRUE(client.list("/d"));
  EXPECT_TRUE(client.monitor("/e"));
  EXPECT_TRUE(client.get_all());
  EXPECT_TRUE(client.set("", ""));
  ASSERT_TRUE(service.hears_count(7));
  EXPECT_THAT(service.requests(),
              ElementsAre(ElementsAre("create", "/a"), ElementsAre("get", "/b"), ElementsAre("set", "/c", "3"),
                          ElementsAre("list", "/d"), ElementsAre("monitor", "/e"), ElementsAre("get_all"),
                          ElementsAre("set", "", "")));
}

TEST_F(PropertyClient, DescriptorIsNonBlockingAndClosesOnExec) {
  EXPECT_NE(::fcntl(client.descriptor(), F_GETFL) & O_NONBLOCK, 0);
  EXPECT_NE(::fcntl(client.descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(PropertyClient, ReceivesMessagesOneByOneInOrder) {
  service.send_bytes(zyl::build_frame({"changed", "/a", "1"}) + zyl::build_frame({"get_response", "/b", ""}));
  EXPECT_EQ(receive(0), changed("/a", "1"));
  EXPECT_EQ(receive(0), (message_t{true, "get_response", "/b", ""}));
  EXPECT_EQ(receive(0), none);
}

TEST_F(PropertyClient, SkipsJunkInFrontOfAFrame) {
  service.send_bytes("xx" + zyl::build_frame({"changed", "/a", "1"}));
  EXPECT_EQ(receive(0), changed("/a", "1"));
}

TEST_F(PropertyClient, KeepsTheBeginningOfAFrameUntilItsRestArrives) {
  const std::string frame = zyl::build_frame({"changed", "/a", "1"});
  service.send_bytes("junk" + frame.substr(0, 6));
  EXPECT_EQ(receive(0), none);
  service.send_bytes(frame.substr(6));
  EXPECT_EQ(receive(0), changed("/a", "1"));
}

TEST_F(PropertyClient, ReceivesAFrameCutAtAnyByte) {
  const std::string frame = zyl::build_frame({"changed", "/a", "1"});
  for (std::size_t cut = 1; cut < frame.size(); ++cut) {
    service.send_bytes(frame.substr(0, cut));
    EXPECT_EQ(receive(0), none);
    service.send_bytes(frame.substr(cut));
    EXPECT_EQ(receive(0), changed("/a", "1")) << "cut at " << cut;
  }
}

TEST_F(PropertyClient, FrameOfTwoFieldsIsABadPayload) {
  service.send({"changed", "/a"});
  EXPECT_EQ(receive(0), bad_payload);
  EXPECT_EQ(receive(0), none);
}

TEST_F(PropertyClient, BadPayloadCountsAsAMessageWhileFurtherBytesWait) {
  service.send_bytes(zyl::build_frame({"changed", "/a"}) + zyl::build_frame({"changed", "/a", "1"}));
  EXPECT_EQ(receive(0), (message_t{true, "error", "bad_payload", ""}));
  EXPECT_EQ(receive(0), changed("/a", "1"));
}

TEST_F(PropertyClient, StrayByteBehindThreeFieldsIsIgnored) {
  service.send_bytes("ipc_magic\x0A\0\x01\0a\x01\0b\x01\0cx"s);
  EXPECT_EQ(receive(0), (message_t{true, "a", "b", "c"}));
}

TEST_F(PropertyClient, EmptyFrameGivesNothingAndTheCallWaitsOn) {
  service.send_bytes(zyl::build_frame({}));
  std::atomic<bool> done = false;
  std::thread sender([&] {
    while (!done) {
      // Again if it was drained together with the empty frame: then the call waits for the next bytes.
      if (waiting_bytes() == 0) {
        service.send({"changed", "/a", "1"});
      }
      std::this_thread::yield();
    }
  });
  EXPECT_EQ(receive(generous_ms), changed("/a", "1"));
  done = true;
  sender.join();
}

TEST_F(PropertyClient, FrameBehindAnEmptyOneComesWithTheNextCall) {
  service.send_bytes(zyl::build_frame({}) + zyl::build_frame({"changed", "/a", "1"}));
  EXPECT_EQ(receive(0), none);
  EXPECT_EQ(receive(0), changed("/a", "1"));
}

TEST_F(PropertyClient, LongestValueThatFitsComesWhole) {
  const std::string value(65535 - 2 - 7 - 2 - 2 - 2, 'v');
  service.send({"changed", "/a", value});
  EXPECT_EQ(receive(0), changed("/a", value));
}

TEST_F(PropertyClient, OneCallDrainsABoundedNumberOfBytes) {
  const std::string front = zyl::build_frame({"changed", "/a", "1"});
  service.send_bytes(front + std::string(100'000 - front.size(), 'x'));
  ASSERT_EQ(waiting_bytes(), 100'000);
  EXPECT_EQ(receive(0), changed("/a", "1"));
  EXPECT_EQ(waiting_bytes(), 100'000 - 65'536);
}

TEST_F(PropertyClient, LongestFrameComesWithOneCallThoughItNeedsTwoDrains) {
  const std::string frame = zyl::build_frame({"changed", "/a", std::string(65535 - 2 - 7 - 2 - 2 - 2, 'v')});
  ASSERT_GT(frame.size(), 65'536U);
  service.send_bytes(frame);
  ASSERT_EQ(waiting_bytes(), static_cast<int>(frame.size()));
  EXPECT_TRUE(receive(0).received);
  EXPECT_EQ(waiting_bytes(), 0);
}

TEST_F(PropertyClient, RequestBehindAnAnswerFailsIfTheServiceHasGoneMeanwhile) {
  service.send({"changed", "/a", "1"});
  EXPECT_EQ(receive(0), changed("/a", "1"));
  service.close_clients();
  EXPECT_FALSE(client.set("/a", "2"));
}

TEST_F(PropertyClient, WhatWasDrainedBeforeTheServiceClosedIsReceivedAfterwards) {
  service.send_bytes(zyl::build_frame({"changed", "/a", "1"}) + zyl::build_frame({"changed", "/a", "2"}) +
                     zyl::build_frame({"changed", "/a", "3"}));
  EXPECT_EQ(receive(0), changed("/a", "1"));
  service.close_clients();
  EXPECT_EQ(receive(0), changed("/a", "2"));
  EXPECT_TRUE(client.hung_up());
  EXPECT_EQ(receive(0), changed("/a", "3"));
  EXPECT_EQ(receive(0), none);
}

TEST_F(PropertyClient, ChunksThatAreJustFullLoseNothing) {
  for (const std::size_t size : {127U, 128U, 129U, 255U, 256U, 257U, 1024U}) {
    const std::string value(size - zyl::build_frame({"changed", "/a", ""}).size(), 'v');
    service.send({"changed", "/a", value});
    EXPECT_EQ(receive(0), changed("/a", value));
    EXPECT_EQ(receive(0), none);
  }
}

TEST_F(PropertyClient, FloodOfMessagesAllArrive) {
  constexpr int count = 20'000;
  std::thread sender([&] {
    for (int i = 0; i < count; ++i) {
      service.send({"changed", "/n", std::to_string(i)});
    }
  });
  for (int i = 0; i < count; ++i) {
    ASSERT_EQ(receive(generous_ms), changed("/n", std::to_string(i)));
  }
  sender.join();
}

TEST_F(PropertyClient, ValueBeyondSixteenBitsCannotBeSentIntact) {
  EXPECT_TRUE(client.set("/a", std::string(70'000, 'v')));
  EXPECT_TRUE(client.get("/fence"));
  ASSERT_TRUE(service.hears({"get", "/fence"}));
  for (const auto& request : service.requests()) {
    EXPECT_FALSE(request.size() == 3 && request[2].size() == 70'000);
  }
}

TEST_F(PropertyClient, WhatTheServiceWroteLastBeforeClosingIsNotRead) {
  service.send({"changed", "/a", "1"});
  service.close_clients();
  EXPECT_EQ(receive(generous_ms), none);
  EXPECT_TRUE(client.hung_up());
  EXPECT_TRUE(client.is_connected());
}

TEST_F(PropertyClient, ServiceThatEndsItsSendingSideDoesNotHoldTheCaller) {
  service.send_bytes(zyl::build_frame({"changed", "/a", "1"}) + "ipc_m");
  service.end_sending();
  EXPECT_EQ(receive(generous_ms), changed("/a", "1"));
  EXPECT_EQ(receive(generous_ms), none);
  EXPECT_TRUE(client.hung_up());
}

TEST_F(PropertyClient, RequestsToAServiceThatHasGoneFailWithoutASignal) {
  EXPECT_TRUE(client.get("/fence"));
  ASSERT_TRUE(service.hears({"get", "/fence"}));
  EXPECT_FALSE(client.hung_up());
  service.close_clients();
  EXPECT_FALSE(client.set("/a", "1"));
  EXPECT_FALSE(client.set("/a", "2"));
}

TEST_F(PropertyClient, ConnectingAgainForgetsTheOldConnection) {
  service.send_bytes("ipc_magic\x40");
  EXPECT_EQ(receive(0), none);
  service.end_sending();
  EXPECT_EQ(receive(0), none);
  ASSERT_TRUE(client.connect());
  EXPECT_FALSE(client.hung_up());
  EXPECT_TRUE(client.get("/fence"));
  ASSERT_TRUE(service.hears({"get", "/fence"}));
  EXPECT_TRUE(service.has_clients(1));
  service.send({"changed", "/a", "1"});
  EXPECT_EQ(receive(0), changed("/a", "1"));
}

TEST_F(PropertyClient, DisconnectingForgetsWhatWasReceived) {
  service.send_bytes(zyl::build_frame({"changed", "/a", "1"}) + zyl::build_frame({"changed", "/a", "2"}));
  EXPECT_EQ(receive(0), changed("/a", "1"));
  client.disconnect();
  EXPECT_EQ(receive(without_end), none);
}

TEST_F(PropertyClient, DisconnectingTwiceIsAllowed) {
  client.disconnect();
  client.disconnect();
  EXPECT_FALSE(client.is_connected());
  EXPECT_EQ(client.descriptor(), -1);
}

TEST_F(PropertyClient, ReadFailsOnAChangeInFrontAndTheAnswerWaitsForTheNextRead) {
  service.send({"changed", "/a", "1"});
  std::string value = "stale";
  EXPECT_FALSE(client.read("/a", value, generous_ms));
  EXPECT_EQ(value, "");
  service.send({"get_response", "/a", "2"});
  EXPECT_TRUE(client.read("/a", value, generous_ms));
  EXPECT_EQ(value, "2");
}

TEST_F(PropertyClient, ReadWithoutAnAnswerFailsWithAnEmptyValue) {
  std::string value = "stale";
  EXPECT_FALSE(client.read("/a", value, 1));
  EXPECT_EQ(value, "");
}

TEST(PropertyClientRead, GivesTheValueAndAnEmptyOneForAMissingProperty) {
  const fake_property_service_t service(fake_property_service_t::from({{"/a", "1"}}));
  zyl::property_client_t client;
  ASSERT_TRUE(client.connect());
  std::string value = "stale";
  EXPECT_TRUE(client.read("/a", value, generous_ms));
  EXPECT_EQ(value, "1");
  EXPECT_TRUE(client.read("/unknown", value, generous_ms));
  EXPECT_EQ(value, "");
}

TEST(PropertyClientRead, AsksThroughTheVirtualGet) {
  class counting_client_t : public zyl::property_client_t {
   public:
    bool get(const std::string& path) override {
      ++asked;
      return zyl::property_client_t::get(path);
    }
    int asked = 0;
  };
  const fake_property_service_t service(fake_property_service_t::from({{"/a", "1"}}));
  counting_client_t client;
  ASSERT_TRUE(client.connect());
  std::string value;
  EXPECT_TRUE(client.read("/a", value, generous_ms));
  EXPECT_EQ(client.asked, 1);
}
