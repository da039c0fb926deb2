#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine_lib/engine_ipc_socket.h"
#include "engine_lib/videng_messages.h"
#include "engine_lib/videng_status_mapping.h"

namespace test_support {

/// A video engine at its literal path, on a thread of its own, for one client at a time. It hands out a status block,
/// records what it is told to configure, and answers each configuration with the result that it was given. Before that
/// it counts one more frame of what the decoder played until then. Any thread.
///
/// Its decoders: visengi 0 and 1 at entries 0 and 1, mediacast_rtsp 0 at 2, mediacast_dmabuf 0 and 1 at 7 and 9. Its
/// raw outputs are in the reverse order of their displays.
class fake_video_engine_t {
 public:
  struct options_t {
    std::size_t block_size = videng::status_block_t::size;
    bool answers = true;          // the request for the block
    bool with_descriptor = true;  // in that answer
  };

  fake_video_engine_t() : fake_video_engine_t(options_t()) {}
  explicit fake_video_engine_t(const options_t& wanted);
  ~fake_video_engine_t();

  fake_video_engine_t(const fake_video_engine_t&) = delete;
  fake_video_engine_t& operator=(const fake_video_engine_t&) = delete;
  fake_video_engine_t(fake_video_engine_t&&) = delete;
  fake_video_engine_t& operator=(fake_video_engine_t&&) = delete;

  /// The engine's own view of the block, for what it reports.
  videng::status_block_t block() const { return mapping.block(); }

  /// What it writes as the result of each configuration from now on; 0: nothing.
  void set_result(int32_t value);

  /// What it was told since `forget`, in order.
  std::vector<videng::decoder_config_t> decoder_configs() const;
  std::vector<videng::raw_out_config_t> raw_out_configs() const;
  void forget();

  /// Waits until it has been told so many times to set a decoder, or a raw output, up. False if that does not come for
  /// 20 seconds.
  bool hears_decoder_configs(std::size_t count) const;
  bool hears_raw_out_configs(std::size_t count) const;

  /// Keeps the connection, but reads no more from it.
  void stop_reading();

  /// How many clients have come so far.
  int connections() const;

  /// Sends raw bytes as one packet to the client.
  void send(const std::string& packet);

  /// Hands the block out, asked or not.
  void send_block();

  /// Closes the connection and goes on listening.
  void disconnect();

 private:
  void serve();
  void accept_client();
  bool serve_client();
  void take(const eipc::message_type& type, zyl::datastream_strio_t& data);
  void take_decoder_config(zyl::datastream_strio_t& data);
  void take_raw_out_config(zyl::datastream_strio_t& data);
  void wake() const;

  options_t options;
  int block_fd;
  videng::status_mapping_t mapping;
  lnx::unix_socket_t listener;
  int wake_fd;

  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  std::unique_ptr<eipc::socket_t> client;
  std::vector<videng::decoder_config_t> decoders_told;
  std::vector<videng::raw_out_config_t> raw_outs_told;
  int32_t result = 1;
  int accepted = 0;
  bool reading = true;
  bool stopping = false;

  std::thread server;
};

}  // namespace test_support
