#include "sim/video_engine.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "sim/unix_address.h"

namespace sim {
namespace {

const std::string socket_path = "/var/tarn-engine-ipc/0/video-sp";
constexpr std::string_view splash_uri = "videng-pnl8-dmabuf";
constexpr int32_t frame_period_ms = 20;
constexpr std::size_t short_block_size = 100;

std::string decoder_path(std::size_t index) { return "/sim/engine/decoder/" + std::to_string(index); }
std::string raw_out_path(std::size_t n) { return "/sim/engine/raw_out/" + std::to_string(n); }

std::string decoder_name(const videng::status_block_t& block, std::size_t index) {
  const videng::decoder_entry_t entry = block.decoder(index);
  return "decoder " + std::to_string(index) + " (" + videng::depayloader_word(entry.type().load()) + " " +
         std::to_string(entry.instance().load()) + ")";
}

// A process that ended left its socket there; the next one makes it anew.
descriptor_t listen_for_clients() {
  std::filesystem::create_directories(std::filesystem::path(socket_path).parent_path());
  descriptor_t listener = bind_unix_socket(SOCK_SEQPACKET, socket_path);
  if (::listen(listener.get(), 8) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot serve " + socket_path);
  }
  return listener;
}

}  // namespace

video_engine_t::running_t::running_t() : uris(videng::decoder_count) {}

video_engine_t::video_engine_t(event_base* loop, property_tree_t& properties, story_t& told)
    : base(loop), tree(properties), story(told), frames(loop, frame_period_ms, false) {
  requests.status = [this](eipc::socket_t& asking) { hand_status_over(asking); };
  requests.decoder = [this](const videng::decoder_config_t& wanted) { configure_decoder(wanted); };
  requests.raw_out = [this](const videng::raw_out_config_t& wanted) { configure_raw_out(wanted); };
  frames.expired.connect([this] { count_frames(); });
  tree.publish("/sim/engine/fault", "");
  tree.on_set("/sim/engine/fault", [this](const std::string& name) { set_fault(name); });
  tree.on_set("/sim/engine/running", [this](const std::string& value) { run(value == "1"); });
  run(true);
}

video_engine_t::~video_engine_t() {
  if (running) {
    ::unlink(socket_path.c_str());
  }
}

void video_engine_t::run(bool wanted) {
  if (wanted != running.has_value()) {
    wanted ? start() : end();
  }
  tree.publish("/sim/engine/running", running ? "1" : "0");
}

void video_engine_t::start() {
  running.emplace();
  running->listener = listen_for_clients();
  running->connectable.reset(event_new(base, running->listener.get(), EV_READ | EV_PERSIST, on_connectable, this));
  event_add(running->connectable.get(), nullptr);
  publish_idle();
  story.tell("engine", "started");
}

void video_engine_t::end() {
  story.tell("engine", "ended");
  frames.cancel();
  running.reset();
  ::unlink(socket_path.c_str());
  publish_idle();
}

void video_engine_t::publish_idle() {
  tree.publish("/sim/engine/connected", "0");
  for (std::size_t index = 0; index < videng::decoder_count; ++index) {
    tree.publish(decoder_path(index), "");
  }
  for (std::size_t n = 0; n < videng::raw_outs.count; ++n) {
    tree.publish(raw_out_path(n), "-1 0 0");
  }
}

void video_engine_t::on_connectable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<video_engine_t*>(self)->accept_client();
}

void video_engine_t::accept_client() {
  descriptor_t connection(::accept4(running->listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!connection) {
    return;  // it has given up meanwhile
  }
  running->clients.push_back(std::make_unique<engine_client_t>(
      base, std::move(connection), requests, [this](const engine_client_t& gone) { remove_client(gone); }));
  story.tell("engine", "client connected");
  tree.publish("/sim/engine/connected", "1");
  if (fault == "junk") {
    running->clients.back()->send_junk();
  }
}

void video_engine_t::remove_client(const engine_client_t& gone) {
  auto& clients = running->clients;
  clients.erase(
      std::remove_if(clients.begin(), clients.end(), [&gone](const auto& client) { return client.get() == &gone; }),
      clients.end());
  story.tell("engine", "client disconnected");
  tree.publish("/sim/engine/connected", clients.empty() ? "0" : "1");
}

void video_engine_t::set_fault(const std::string& name) {
  fault = name;
  story.tell("engine", name.empty() ? "works" : "fault " + name);
  if (fault == "junk" && running) {
    for (const auto& client : running->clients) {
      client->send_junk();
    }
  }
}

void video_engine_t::hand_status_over(eipc::socket_t& asking) {
  descriptor_t short_block;
  eipc::gen::fd_resp_t response;
  response.fd = running->block.descriptor();
  if (fault == "short") {
    short_block = make_shared_memory(short_block_size);
    response.fd = short_block.get();
  }
  story.tell("engine", "status block handed over");
  asking.sendto(eipc::gen::fd_resp_t::kind, response, "");
}

bool video_engine_t::takes(const std::string& configuration) {
  const bool taken = fault != "stall" && fault != "refuse";
  story.tell("engine", configuration + (taken ? "" : fault == "stall" ? ", left waiting" : ", refused"));
  return taken;
}

void video_engine_t::answer(const videng::status_result_t& result) const {
  if (fault != "stall") {
    result.store(fault == "refuse" ? -1 : 1);
  }
}

// The result is the last that happens: the client goes on at once, and what it then does comes later in the story.
void video_engine_t::configure_decoder(const videng::decoder_config_t& wanted) {
  if (wanted.decoder >= videng::decoder_count) {
    story.tell("engine", "there is no decoder " + std::to_string(wanted.decoder));
    return;
  }
  const videng::status_block_t block = running->block.view();
  const std::string name = decoder_name(block, wanted.decoder);
  if (takes(name + ": " + (wanted.uri.empty() ? "cleared" : wanted.uri))) {
    running->uris[wanted.decoder] = wanted.uri;
    tree.publish(decoder_path(wanted.decoder), wanted.uri);
    run_frames();
  }
  answer(block.decoder(wanted.decoder).config_result());
}

void video_engine_t::configure_raw_out(const videng::raw_out_config_t& wanted) {
  if (wanted.raw_out >= videng::raw_outs.count) {
    story.tell("engine", "there is no raw out " + std::to_string(wanted.raw_out));
    return;
  }
  const std::string size = std::to_string(wanted.width) + "x" + std::to_string(wanted.height);
  const std::string decoder = std::to_string(static_cast<int32_t>(wanted.decoder));
  const bool cleared = wanted.decoder == videng::raw_out_config_t::no_decoder;
  if (takes("raw out " + std::to_string(wanted.raw_out) + ": " +
            (cleared ? "cleared" : "decoder instance " + decoder + ", " + size))) {
    tree.publish(raw_out_path(wanted.raw_out),
                 decoder + " " + std::to_string(wanted.width) + " " + std::to_string(wanted.height));
  }
  answer(running->block.view().raw_out_config_result(wanted.raw_out));
}

void video_engine_t::run_frames() {
  const bool plays = std::any_of(running->uris.begin(), running->uris.end(),
                                 [](const std::string& uri) { return uri.starts_with(splash_uri); });
  if (plays && !frames.running()) {
    frames.arm();
  } else if (!plays) {
    frames.cancel();
  }
}

bool video_engine_t::is_drawn(const std::string& uri) const {
  if (!uri.starts_with(splash_uri)) {
    return false;
  }
  const std::string drawn = tree.value("/sim/splash/" + uri.substr(splash_uri.size()) + "/drawn");
  return !drawn.empty() && drawn != "disable";
}

void video_engine_t::count_frames() {
  for (std::size_t index = 0; index < videng::decoder_count; ++index) {
    const videng::decoder_entry_t decoder = running->block.view().decoder(index);
    if (decoder.type().load() == videng::depayloader_mediacast_dmabuf && is_drawn(running->uris[index])) {
      decoder.payload_count().add(1);
      decoder.rx_count().add(1);
      decoder.frame_count().add(1);
      decoder.decoded_count().add(1);
    }
  }
}

}  // namespace sim
