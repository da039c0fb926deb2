#pragma once

#include <functional>
#include <future>
#include <string>
#include <thread>

#include "sim/property_service.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"

namespace vgnctl {

/// The property service of the simulated appliance, on a thread of its own.
class simulated_properties_t {
 public:
  simulated_properties_t() : service(loop.base(), tree, story), server([this] { loop.run(); }) {}

  ~simulated_properties_t() {
    loop.stop();
    server.join();
  }

  simulated_properties_t(const simulated_properties_t&) = delete;
  simulated_properties_t& operator=(const simulated_properties_t&) = delete;
  simulated_properties_t(simulated_properties_t&&) = delete;
  simulated_properties_t& operator=(simulated_properties_t&&) = delete;

  void publish(const std::string& path, const std::string& value) {
    on_loop([&] { tree.publish(path, value); });
  }

  std::string value(const std::string& path) {
    std::string found;
    on_loop([&] { found = tree.value(path); });
    return found;
  }

  bool exists(const std::string& path) {
    bool found = false;
    on_loop([&] { found = tree.find(path) != nullptr; });
    return found;
  }

 private:
  void on_loop(const std::function<void()>& call) {
    std::promise<void> done;
    zyl::post(loop.base(), [&] {
      call();
      done.set_value();
    });
    done.get_future().wait();
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  sim::property_service_t service;
  std::thread server;
};

}  // namespace vgnctl
