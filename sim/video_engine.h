#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sim/descriptor.h"
#include "sim/engine_block.h"
#include "sim/engine_client.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"
#include "zyl/sigc_timer.h"

namespace sim {

/// The video engine as its clients meet it: the socket "/var/tarn-engine-ipc/0/video-sp" and the status block. It runs
/// from its construction on. Loop thread only.
///
/// It takes every configuration at once, and counts frames of a decoder of kind "mediacast_dmabuf" that plays
/// "videng-pnl8-dmabuf<n>" as long as "/sim/splash/<n>/drawn" says that somebody draws them.
///
/// Properties:
///   "/sim/engine/running"          "1"/"0"; set it to end the engine as in a crash, or to start it
///   "/sim/engine/connected"        "1" while a client is connected
///   "/sim/engine/fault"            set to "" for none, "stall": takes no configuration, "refuse": refuses each,
///                                  "junk": sends packets that are no messages, now and to every new client,
///                                  "short": hands out a status block that is too small
///   "/sim/engine/decoder/<index>"  the URI it is configured for, "" when cleared
///   "/sim/engine/raw_out/<n>"      decoder instance, width and height, "-1 0 0" when cleared
class video_engine_t {
 public:
  /// All arguments by reference must outlive this object; the tree must not change once it is gone.
  video_engine_t(event_base* base, property_tree_t& properties, story_t& story);
  ~video_engine_t();

  video_engine_t(const video_engine_t&) = delete;
  video_engine_t& operator=(const video_engine_t&) = delete;
  video_engine_t(video_engine_t&&) = delete;
  video_engine_t& operator=(video_engine_t&&) = delete;

  /// Starts or ends it; every start has a new, empty status block. Throws `std::system_error` if it cannot be served.
  void run(bool wanted);

 private:
  /// What exists while the engine runs.
  struct running_t {
    running_t();

    engine_block_t block;
    std::vector<std::string> uris;  ///< by decoder index
    descriptor_t listener;
    zyl::event_ptr_t connectable;
    std::vector<std::unique_ptr<engine_client_t>> clients;
  };

  static void on_connectable(evutil_socket_t fd, short events, void* self);
  void start();
  void end();
  void accept_client();
  void remove_client(const engine_client_t& gone);
  void set_fault(const std::string& name);
  void publish_idle();

  void hand_status_over(eipc::socket_t& asking);
  void configure_decoder(const videng::decoder_config_t& wanted);
  void configure_raw_out(const videng::raw_out_config_t& wanted);
  /// Whether the configuration is taken; tells it, and what keeps it from being taken.
  bool takes(const std::string& configuration);
  void answer(const videng::status_result_t& result) const;

  void run_frames();
  void count_frames();
  bool is_drawn(const std::string& uri) const;

  event_base* base;
  property_tree_t& tree;
  story_t& story;
  engine_requests_t requests;
  std::string fault;
  zyl::sigc_timer_t frames;
  std::optional<running_t> running;
};

}  // namespace sim
