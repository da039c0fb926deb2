#include "sim/property_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <fstream>
#include <functional>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "sim/unix_address.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"
#include "zyl/property_frame.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using fields_t = std::vector<std::string>;

constexpr int limit_ms = 30'000;

/// A client that speaks raw bytes, so that it can also speak them badly.
class raw_client_t {
 public:
  raw_client_t() : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = sim::unix_address(sim::property_service_t::default_path);
    connected = connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }

  bool is_connected() const { return connected; }

  void send(std::initializer_list<std::string_view> fields) { send_bytes(zyl::build_frame(fields)); }

  void send_bytes(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t count = ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
      ASSERT_GT(count, 0);
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  /// The next frame; no fields if the service closed the connection or said nothing for a long time.
  fields_t next() {
    for (;;) {
      frames.resynchronise();
      if (auto fields = frames.take_frame()) {
        return *fields;
      }
      if (!receive()) {
        return {};
      }
    }
  }

  /// What comes until the connection ends.
  bool ends() {
    while (receive()) {
    }
    return ended;
  }

 private:
  bool receive() {
    pollfd waiting{socket.get(), POLLIN, 0};
    if (poll(&waiting, 1, limit_ms) != 1) {
      return false;
    }
    std::string chunk(65536, '\0');
    const ssize_t count = recv(socket.get(), chunk.data(), chunk.size(), 0);
    ended = count <= 0;
    if (!ended) {
      frames.append(std::string_view(chunk).substr(0, static_cast<std::size_t>(count)));
    }
    return !ended;
  }

  sim::descriptor_t socket;
  bool connected = false;
  bool ended = false;
  zyl::property_frame_buffer_t frames;
};

/// The service on a thread of its own.
class PropertyService : public testing::Test {
 protected:
  PropertyService() : service(loop.base(), tree, story), server([this] { loop.run(); }) {}

  ~PropertyService() override {
    loop.stop();
    server.join();
  }

  /// Runs `call` on the service's thread and waits for it.
  void on_loop(const std::function<void()>& call) {
    std::promise<void> done;
    zyl::post(loop.base(), [&] {
      call();
      done.set_value();
    });
    done.get_future().wait();
  }

  std::size_t client_count() {
    std::size_t count = 0;
    on_loop([&] { count = service.client_count(); });
    return count;
  }

  static std::string told() {
    std::ifstream file("/tmp/story");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::property_service_t service;
  std::thread server;
};

}  // namespace

TEST_F(PropertyService, GetOfAPropertyThatDoesNotExistIsAnError) {
  raw_client_t client;
  client.send({"get", "/none"});
  EXPECT_THAT(client.next(), ElementsAre("error", "no_property", "/none"));
}

TEST_F(PropertyService, ACreatedPropertyIsEmptyAndASetOneHasItsValue) {
  raw_client_t client;
  client.send({"create", "/a"});
  client.send({"get", "/a"});
  client.send({"set", "/a", "value"});
  client.send({"get", "/a"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", ""));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", "value"));
}

TEST_F(PropertyService, CreateOfAPropertyThatExistsKeepsItsValue) {
  raw_client_t client;
  client.send({"set", "/a", "kept"});
  client.send({"create", "/a"});
  client.send({"get", "/a"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", "kept"));
}

TEST_F(PropertyService, EveryWatcherHearsASetTheSetterToo) {
  raw_client_t setter;
  raw_client_t watcher;
  setter.send({"monitor", "/a"});
  watcher.send({"monitor", "/a"});
  watcher.send({"get", "/a"});
  EXPECT_THAT(watcher.next(), ElementsAre("error", "no_property", "/a"));
  setter.send({"set", "/a", "1"});
  EXPECT_THAT(setter.next(), ElementsAre("changed", "/a", "1"));
  EXPECT_THAT(watcher.next(), ElementsAre("changed", "/a", "1"));
}

TEST_F(PropertyService, ASetOfTheValueThatIsThereIsHeardAgain) {
  raw_client_t client;
  client.send({"monitor", "/a"});
  client.send({"set", "/a", "1"});
  client.send({"set", "/a", "1"});
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "1"));
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "1"));
}

TEST_F(PropertyService, ASetOfAnotherPropertyIsNotHeard) {
  raw_client_t client;
  client.send({"monitor", "/a"});
  client.send({"set", "/b", "1"});
  client.send({"set", "/a", "2"});
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "2"));
}

TEST_F(PropertyService, WhatThePartsPublishIsHeardAndWhatClientsSetReachesThem) {
  raw_client_t client;
  client.send({"monitor", "/a"});
  client.send({"get", "/a"});
  client.next();
  on_loop([&] {
    tree.on_set("/b", [&](const std::string& value) { tree.publish("/a", "seen " + value); });
    tree.publish("/a", "published");
  });
  client.send({"set", "/b", "it"});
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "published"));
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "seen it"));
}

TEST_F(PropertyService, ListAnswersEachPropertyBelowInPathOrderThenAnEmptyPath) {
  raw_client_t client;
  client.send({"set", "/b/2", "two"});
  client.send({"set", "/b/1", "one"});
  client.send({"set", "/c", "other"});
  client.send({"list", "/b"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/b/1", "one"));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/b/2", "two"));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "", ""));
}

TEST_F(PropertyService, GetAllAnswersEveryPropertyThenAnEmptyPath) {
  raw_client_t client;
  client.send({"set", "/b", "two"});
  client.send({"set", "/a", "one"});
  client.send({"get_all"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", "one"));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/b", "two"));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "", ""));
}

TEST_F(PropertyService, AValueMayHoldAnyBytes) {
  const std::string value("\0ipc_magic\xff\n", 12);
  raw_client_t client;
  client.send({"set", "/a", value});
  client.send({"get", "/a"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", value));
}

TEST_F(PropertyService, RequestsCutAtEveryByteAreUnderstood) {
  const std::string requests = zyl::build_frame({"set", "/a", "1"}) + zyl::build_frame({"get", "/a"});
  for (std::size_t cut = 1; cut < requests.size(); ++cut) {
    raw_client_t client;
    client.send_bytes(std::string_view(requests).substr(0, cut));
    on_loop([] {});
    client.send_bytes(std::string_view(requests).substr(cut));
    ASSERT_THAT(client.next(), ElementsAre("get_response", "/a", "1")) << "cut at " << cut;
  }
}

TEST_F(PropertyService, JunkBetweenRequestsIsSkipped) {
  raw_client_t client;
  client.send_bytes("xxipc_magi");
  client.send({"set", "/a", "1"});
  client.send_bytes("ipc_mag garbage");
  client.send({"get", "/a"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", "1"));
}

TEST_F(PropertyService, FramesThatAreNoRequestAreIgnored) {
  raw_client_t client;
  client.send_bytes(zyl::build_frame({}));
  client.send({"frobnicate", "/a"});
  client.send({"get"});
  client.send({"get", "/a", "extra"});
  client.send({"set", "/a"});
  client.send({"set", "", "no path"});
  client.send({"create", ""});
  client.send({"get_all"});
  EXPECT_THAT(client.next(), ElementsAre("get_response", "", ""));
}

TEST_F(PropertyService, AValueThatNoResponseCanCarryIsIgnoredAndTheLongestOtherIsKept) {
  const std::string longest(65535 - 6 - 12 - 2, 'v');
  raw_client_t client;
  client.send({"set", "/a", longest + "v"});
  client.send({"get", "/a"});
  client.send({"set", "/a", longest});
  client.send({"get", "/a"});
  EXPECT_THAT(client.next(), ElementsAre("error", "no_property", "/a"));
  EXPECT_THAT(client.next(), ElementsAre("get_response", "/a", longest));
}

TEST_F(PropertyService, AClientThatGoesAwayIsForgotten) {
  raw_client_t stays;
  {
    raw_client_t goes;
    goes.send({"monitor", "/a"});
    goes.send({"get", "/a"});
    goes.next();
    EXPECT_EQ(client_count(), 2U);
  }
  for (int i = 0; i < limit_ms && client_count() != 1; ++i) {
    poll(nullptr, 0, 1);
  }
  EXPECT_EQ(client_count(), 1U);
  stays.send({"set", "/a", "1"});
  stays.send({"get", "/a"});
  EXPECT_THAT(stays.next(), ElementsAre("get_response", "/a", "1"));
}

TEST_F(PropertyService, AnswersForASlowReaderWaitUntilItReads) {
  const std::string value(1000, 'v');
  constexpr int requests = 5000;
  raw_client_t client;
  client.send({"set", "/a", value});
  std::thread sender([&] {
    for (int i = 0; i < requests; ++i) {
      client.send({"get", "/a"});
    }
  });
  // Nothing is read until the service takes no more requests from it; another client is served all the same.
  raw_client_t other;
  other.send({"get", "/a"});
  EXPECT_THAT(other.next(), ElementsAre("get_response", "/a", value));
  for (int i = 0; i < requests; ++i) {
    ASSERT_THAT(client.next(), ElementsAre("get_response", "/a", value)) << "answer " << i;
  }
  sender.join();
}

TEST_F(PropertyService, AWatcherThatNeverReadsIsDroppedAndTheOthersAreServed) {
  raw_client_t deaf;
  deaf.send({"monitor", "/a"});
  deaf.send({"get", "/a"});
  deaf.next();
  raw_client_t setter;
  setter.send({"monitor", "/end"});
  const std::string value(60'000, 'v');
  for (int i = 0; i < 200; ++i) {
    setter.send({"set", "/a", value});
  }
  setter.send({"set", "/end", "1"});
  EXPECT_THAT(setter.next(), ElementsAre("changed", "/end", "1"));
  EXPECT_TRUE(deaf.ends());
  EXPECT_EQ(client_count(), 1U);
}

TEST_F(PropertyService, TheJunkFaultSendsBytesThatAreNoFrameAndTheConnectionGoesOn) {
  raw_client_t client;
  client.send({"monitor", "/a"});
  client.send({"set", "/sim/property/fault", "junk"});
  client.send({"set", "/a", "1"});
  EXPECT_EQ(client.next().size(), 2U);
  EXPECT_THAT(client.next(), ElementsAre("a"));
  EXPECT_THAT(client.next(), ElementsAre("changed", "/a", "1"));
}

TEST_F(PropertyService, TheStoryTellsWhoReadsWatchesAndSetsWhat) {
  raw_client_t client;
  client.send({"set", "/a", "1"});
  client.send({"monitor", "/a"});
  client.send({"get", "/a"});
  client.send({"get", "/b"});
  client.next();
  client.next();
  const std::string story_text = told();
  EXPECT_THAT(story_text, HasSubstr("\tproperty\tsim_test sets /a to \"1\"\n"));
  EXPECT_THAT(story_text, HasSubstr("\tproperty\tsim_test watches /a\n"));
  EXPECT_THAT(story_text, HasSubstr("\tproperty\tsim_test reads /a: \"1\"\n"));
  EXPECT_THAT(story_text, HasSubstr("\tproperty\tsim_test reads /b, which does not exist\n"));
}

TEST_F(PropertyService, TheStoryIsSilentAboutThePathsThatSteerTheSimulation) {
  raw_client_t client;
  client.send({"set", "/sim/hdmi/0/edid", "file"});
  client.send({"monitor", "/sim/hdmi/0/edid"});
  client.send({"get", "/sim/hdmi/0/edid"});
  client.next();
  EXPECT_EQ(told(), "");
}

TEST(PropertyServiceStart, ASocketLeftByAnEarlierRunIsReplaced) {
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  { const sim::property_service_t earlier(loop.base(), tree, story); }
  EXPECT_FALSE(raw_client_t().is_connected());
  sim::property_tree_t another_tree;
  const sim::property_service_t service(loop.base(), another_tree, story);
  EXPECT_TRUE(raw_client_t().is_connected());
}

TEST(PropertyServiceStart, APathThatCannotBeServedIsAnError) {
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  EXPECT_THROW(sim::property_service_t(loop.base(), tree, story, "/tmp/no/such/folder"), std::system_error);
  EXPECT_THROW(sim::property_service_t(loop.base(), tree, story, "/tmp/" + std::string(200, 'x')), std::system_error);
}
