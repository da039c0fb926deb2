#include "test_support/fake_video_engine.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>

namespace test_support {
namespace {

const char* const engine_folder = "/var/tarn-engine-ipc";
const char* const socket_folder = "/var/tarn-engine-ipc/0";
const char* const socket_path = "/var/tarn-engine-ipc/0/video-sp";

constexpr auto patience = std::chrono::seconds(20);

int make_block_file(std::size_t size) {
  const int fd = memfd_create("video-status", MFD_CLOEXEC);
  [[maybe_unused]] const int sized = ftruncate(fd, static_cast<off_t>(size));
  return fd;
}

void describe(const videng::status_block_t& block) {
  struct place_t {
    std::size_t index;
    videng::depayloader_e type;
    int32_t instance;
  };
  for (const place_t& place : {place_t{0, videng::depayloader_visengi, 0},
                               {1, videng::depayloader_visengi, 1},
                               {2, videng::depayloader_mediacast_rtsp, 0},
                               {7, videng::depayloader_mediacast_dmabuf, 0},
                               {9, videng::depayloader_mediacast_dmabuf, 1}}) {
    block.decoder(place.index).type().store(place.type);
    block.decoder(place.index).instance().store(place.instance);
  }
  block.set_name(videng::raw_outs, 0, "zvid-raw-frame_inject_in_1");
  block.set_name(videng::raw_outs, 1, "zvid-raw-frame_inject_in_0");
  block.set_name(videng::uvcs, 0, "uvc-a");
}

}  // namespace

fake_video_engine_t::fake_video_engine_t(const options_t& wanted)
    : options(wanted), block_fd(make_block_file(options.block_size)), wake_fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (options.block_size >= videng::status_block_t::size) {
    mapping = videng::status_mapping_t(block_fd, options.block_size);
    describe(block());
  }
  mkdir(engine_folder, 0700);
  mkdir(socket_folder, 0700);
  unlink(socket_path);
  listener.create(SOCK_SEQPACKET);
  listener.bind(socket_path);
  listener.listen(4);
  server = std::thread([this] { serve(); });
}

fake_video_engine_t::~fake_video_engine_t() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  wake();
  server.join();
  unlink(socket_path);
  close(wake_fd);
  close(block_fd);
}

void fake_video_engine_t::set_result(int32_t value) {
  const std::lock_guard lock(mutex);
  result = value;
}

std::vector<videng::decoder_config_t> fake_video_engine_t::decoder_configs() const {
  const std::lock_guard lock(mutex);
  return decoders_told;
}

std::vector<videng::raw_out_config_t> fake_video_engine_t::raw_out_configs() const {
  const std::lock_guard lock(mutex);
  return raw_outs_told;
}

void fake_video_engine_t::forget() {
  const std::lock_guard lock(mutex);
  decoders_told.clear();
  raw_outs_told.clear();
}

bool fake_video_engine_t::hears_decoder_configs(std::size_t count) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, patience, [&] { return decoders_told.size() >= count; });
}

bool fake_video_engine_t::hears_raw_out_configs(std::size_t count) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, patience, [&] { return raw_outs_told.size() >= count; });
}

void fake_video_engine_t::stop_reading() {
  {
    const std::lock_guard lock(mutex);
    reading = false;
  }
  wake();
}

int fake_video_engine_t::connections() const {
  const std::lock_guard lock(mutex);
  return accepted;
}

void fake_video_engine_t::send(const std::string& packet) {
  const std::lock_guard lock(mutex);
  if (!client) {
    return;
  }
  ::send(client->descriptor(), packet.data(), packet.size(), MSG_NOSIGNAL);
}

void fake_video_engine_t::send_block() {
  const std::lock_guard lock(mutex);
  if (!client) {
    return;
  }
  if (options.with_descriptor) {
    eipc::gen::fd_resp_t answer;
    answer.fd = block_fd;
    client->sendto(eipc::gen::fd_resp_t::kind, answer, "");
  } else {
    client->sendto(eipc::gen::fd_resp_t::kind, eipc::gen::fd_req_t(), "");
  }
}

void fake_video_engine_t::disconnect() {
  {
    const std::lock_guard lock(mutex);
    client.reset();
  }
  wake();
}

void fake_video_engine_t::wake() const {
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t told = write(wake_fd, &one, sizeof one);
}

void fake_video_engine_t::serve() {
  for (;;) {
    std::array<pollfd, 3> watched{pollfd{wake_fd, POLLIN, 0}, {listener.descriptor(), POLLIN, 0}, {-1, POLLIN, 0}};
    {
      const std::lock_guard lock(mutex);
      if (stopping) {
        return;
      }
      watched[2].fd = client && reading ? client->descriptor() : -1;
    }
    ::poll(watched.data(), watched.size(), -1);
    uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(wake_fd, &count, sizeof count);
    if (watched[1].revents != 0) {
      accept_client();
    }
    if (watched[2].revents != 0 && !serve_client()) {
      disconnect();
    }
  }
}

void fake_video_engine_t::accept_client() {
  auto next = std::make_unique<eipc::socket_t>();
  if (listener.accept(*next, nullptr) < 0) {
    return;
  }
  const std::lock_guard lock(mutex);
  client = std::move(next);
  ++accepted;
}

bool fake_video_engine_t::serve_client() {
  std::string from;
  eipc::message_type type;
  zyl::datastream_strio_t data;
  std::vector<lnx::cmsg_t> cmsgs;
  int got = -1;
  {
    const std::lock_guard lock(mutex);
    if (!client || !reading) {
      return true;
    }
    got = client->get_message(from, type, data, cmsgs, 0);
  }
  if (got == 1) {
    take(type, data);
  }
  return got >= 0;
}

void fake_video_engine_t::take(const eipc::message_type& type, zyl::datastream_strio_t& data) {
  if (type == eipc::gen::fd_req_t::kind && options.answers) {
    send_block();
  } else if (type == videng::decoder_config_t::kind) {
    take_decoder_config(data);
  } else if (type == videng::raw_out_config_t::kind) {
    take_raw_out_config(data);
  }
}

void fake_video_engine_t::take_decoder_config(zyl::datastream_strio_t& data) {
  videng::decoder_config_t config;
  data >> config;
  const std::lock_guard lock(mutex);
  const videng::decoder_entry_t entry = block().decoder(config.decoder);
  entry.frame_count().add(1);
  if (result != 0) {
    entry.config_result().store(result);
  }
  decoders_told.push_back(config);
  changed.notify_all();
}

void fake_video_engine_t::take_raw_out_config(zyl::datastream_strio_t& data) {
  videng::raw_out_config_t config;
  data >> config;
  const std::lock_guard lock(mutex);
  if (result != 0) {
    block().raw_out_config_result(config.raw_out).store(result);
  }
  raw_outs_told.push_back(config);
  changed.notify_all();
}

}  // namespace test_support
