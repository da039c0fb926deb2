#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "zyl/property_frame.h"

namespace test_support {

/// A property service at its literal path, on a thread of its own. It records the requests of all clients, answers what
/// it was told to answer, and sends what the test wants sent; each `send` has left when it returns. Any thread.
class fake_property_service_t {
 public:
  using request_t = std::vector<std::string>;
  /// Gives the bytes to send back for a request; `client` counts the connections from 0.
  using answer_t = std::function<std::string(const request_t& request, int client)>;

  explicit fake_property_service_t(answer_t answer = nothing);
  ~fake_property_service_t();

  fake_property_service_t(const fake_property_service_t&) = delete;
  fake_property_service_t& operator=(const fake_property_service_t&) = delete;
  fake_property_service_t(fake_property_service_t&&) = delete;
  fake_property_service_t& operator=(fake_property_service_t&&) = delete;

  /// Hears everything and says nothing.
  static std::string nothing(const request_t& request, int client);
  /// Answers each "get" from `values`, others with "no_property".
  static answer_t from(std::map<std::string, std::string> values);

  /// From now on the answer for the path comes so much later than the request.
  void delay_answer(const std::string& path, std::chrono::milliseconds delay);

  /// The requests of all clients, in the order of arrival.
  std::vector<request_t> requests() const;
  void forget_requests();

  /// Waits for the request. False if it does not come for 20 seconds.
  bool hears(const request_t& request) const;
  bool hears_count(std::size_t count) const;
  /// Waits until so many clients are connected. False if that does not happen for 20 seconds.
  bool has_clients(std::size_t count) const;

  /// Sends to every client; waits for one if there is none.
  void send(std::initializer_list<std::string_view> fields) { send_bytes(zyl::build_frame(fields)); }
  void send_bytes(std::string_view bytes);

  /// Closes the connections and goes on listening.
  void close_clients();
  /// Closes only the sending side of the connections.
  void end_sending();

 private:
  struct client_t {
    int fd;
    int number;
    zyl::property_frame_buffer_t received;
  };

  using clock_t = std::chrono::steady_clock;
  struct late_answer_t {
    clock_t::time_point due;
    int client;
    std::string bytes;
  };

  void serve();
  int until_late_answer_ms() const;
  void send_late_answers();
  void give_answer(const client_t& client, const request_t& request);
  void accept_client();
  bool serve_client(client_t& client);
  void wake() const;
  bool wait_for(const std::function<bool()>& condition) const;

  answer_t answer;
  int listener;
  int wake_fd;
  bool stopping = false;
  int accepted = 0;
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  std::vector<client_t> clients;
  std::vector<request_t> heard;
  std::map<std::string, std::chrono::milliseconds> delays;
  std::vector<late_answer_t> late_answers;
  std::thread server;
};

}  // namespace test_support
