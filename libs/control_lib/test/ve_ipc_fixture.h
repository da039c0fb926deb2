#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "control_lib/src/ve_ipc.h"
#include "test_support/fake_video_engine.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "zyl/clock.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"

namespace control_lib {

/// Keeps what it hears.
class recording_observer_t : public ve_observer_t {
 public:
  using decoder_events_t = std::vector<std::pair<int, int>>;  // handle, event

  void ipc_event(int event) override { ipc_events.push_back(event); }
  void decoder_event(int handle, int event) override { decoder_events.emplace_back(handle, event); }

  /// What came since the last call.
  decoder_events_t take() { return std::exchange(decoder_events, {}); }

  std::vector<int> ipc_events;
  decoder_events_t decoder_events;
};

/// A client that the test polls itself, on a clock that stands still until it is moved, and a fake engine.
class ve_ipc_fixture_t : public testing::Test {
 protected:
  static constexpr int visengi = videng::depayloader_visengi;
  static constexpr int dmabuf = videng::depayloader_mediacast_dmabuf;

  ve_ipc_fixture_t() {
    zyl::set_clock([this] { return now_ms; });
  }
  ~ve_ipc_fixture_t() override {
    client.reset();
    zyl::set_clock({});
  }

  void start_engine(const test_support::fake_video_engine_t::options_t& options = {}) {
    engine = std::make_unique<test_support::fake_video_engine_t>(options);
  }

  void open() {
    client->add_ipc_observer(&observer);
    client->open(false);
  }

  /// An engine and a client that has its status block.
  void connect() {
    start_engine();
    open();
    ASSERT_TRUE(test_support::loop_until(loop.base(), [this] { return client->ready(); }));
    deliver();
    log.clear();
  }

  /// Runs what is posted, and what that posts.
  void deliver() {
    for (int round = 0; round < 2; ++round) {
      bool reached = false;
      zyl::post(loop.base(), [&reached] { reached = true; });
      ASSERT_TRUE(test_support::loop_until(loop.base(), [&reached] { return reached; }));
    }
  }

  void poll() {
    client->poll_status();
    deliver();
  }

  void poll_after(int64_t milliseconds) {
    now_ms += milliseconds;
    poll();
  }

  /// The entry of the decoder of a handle, as the engine sees it.
  videng::decoder_entry_t entry_of(int handle) {
    return engine->block().decoder(static_cast<std::size_t>(client->decoder_of(handle)));
  }

  /// The engine receives and decodes.
  void play(int handle) {
    entry_of(handle).rx_count().add(1);
    entry_of(handle).decoded_count().add(1);
  }

  /// A line that begins and ends so, at a level; how long the engine took stands between.
  bool said(spdlog::level::level_enum level, const std::string& begin, const std::string& end = "") const {
    for (const auto& line : log.entries()) {
      if (line.level == level && line.text.starts_with(begin) && line.text.ends_with(end)) {
        return true;
      }
    }
    return false;
  }

  int64_t now_ms = 1'000'000;
  test_support::log_capture_t log{"eng_engine_ipc", spdlog::level::trace};
  zyl::event_loop_t loop;
  std::unique_ptr<test_support::fake_video_engine_t> engine;
  recording_observer_t observer;
  std::unique_ptr<ve_ipc_t> client = std::make_unique<ve_ipc_t>(loop.base(), -1);
};

}  // namespace control_lib
