// A client without a service, or with one that does not answer.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>

#include "test_support/stub_property_service.h"
#include "zyl/property_client.h"

using test_support::stub_property_service_t;

namespace {

constexpr int without_end = -1;

/// Interrupts the process every millisecond for as long as this object lives.
class interruptions_t {
 public:
  interruptions_t() {
    struct sigaction action {};
    action.sa_handler = [](int /*signal*/) { ++seen; };
    ::sigaction(SIGALRM, &action, &previous);
    repeat_every_us(1000);
  }
  ~interruptions_t() {
    repeat_every_us(0);
    ::sigaction(SIGALRM, &previous, nullptr);
  }
  interruptions_t(const interruptions_t&) = delete;
  interruptions_t& operator=(const interruptions_t&) = delete;
  interruptions_t(interruptions_t&&) = delete;
  interruptions_t& operator=(interruptions_t&&) = delete;

  static int count() { return seen; }

 private:
  static void repeat_every_us(suseconds_t interval) {
    const itimerval timer{{0, interval}, {0, interval}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
  }

  static inline std::atomic<int> seen = 0;
  struct sigaction previous {};
};

}  // namespace

TEST(PropertyClientAlone, IsRefusedWithoutAServiceAndThenRefusesEverything) {
  zyl::property_client_t client;
  EXPECT_FALSE(client.connect());
  EXPECT_FALSE(client.is_connected());
  EXPECT_FALSE(client.hung_up());
  std::string text = "stale";
  EXPECT_FALSE(client.read("/a", text, without_end));
  EXPECT_EQ(text, "");
  std::string command;
  std::string path;
  EXPECT_FALSE(client.receive(command, path, text, without_end));
}

TEST(PropertyClientAlone, RefusesRequestsWithoutWaitingForTheSocket) {
  zyl::property_client_t client;
  // If each request waited, all of them together would take longer than a test may.
  for (int i = 0; i < 1000; ++i) {
    EXPECT_FALSE(client.create("/a"));
    EXPECT_FALSE(client.get_all());
  }
}

TEST(PropertyClientAlone, InterruptionsDoNotMakeAWaitLonger) {
  const stub_property_service_t service;
  zyl::property_client_t client;
  ASSERT_TRUE(client.connect());
  const interruptions_t interruptions;
  std::string value;
  EXPECT_FALSE(client.read("/a", value, 50));
}

TEST(PropertyClientAlone, InterruptionsDoNotEndAWait) {
  const stub_property_service_t service;
  zyl::property_client_t client;
  ASSERT_TRUE(client.connect());
  const int peer = service.accept();
  const interruptions_t interruptions;
  std::thread answering([peer, before = interruptions_t::count()] {
    while (interruptions_t::count() < before + 10) {
      std::this_thread::yield();
    }
    const std::string answer = zyl::build_frame({"get_response", "/a", "1"});
    EXPECT_EQ(::send(peer, answer.data(), answer.size(), 0), static_cast<ssize_t>(answer.size()));
  });
  std::string value;
  EXPECT_TRUE(client.read("/a", value, without_end));
  EXPECT_EQ(value, "1");
  answering.join();
  ::close(peer);
}

TEST(PropertyClientAlone, GivesUpOnAServiceThatTakesNothing) {
  const stub_property_service_t service;
  zyl::property_client_t client;
  ASSERT_TRUE(client.connect());
  int sent = 0;
  while (client.set("/a", std::string(60'000, 'v'))) {
    ASSERT_LT(++sent, 1000);
  }
  EXPECT_TRUE(client.is_connected());
}

TEST(PropertyClientAlone, BrokenPipeIsAFailureAndNoSignal) {
  const stub_property_service_t service;
  zyl::property_client_t client;
  ASSERT_TRUE(client.connect());
  const int peer = service.accept();
  ASSERT_EQ(::shutdown(peer, SHUT_RD), 0);
  EXPECT_FALSE(client.set("/a", "1"));
  EXPECT_TRUE(client.is_connected());
  ::close(peer);
}
