#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "control_lib/src/ve_ipc.h"
#include "engine_lib/videng_messages.h"
#include "zyl/log/module_logger.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

const char* const engine_path = "/var/tarn-engine-ipc/0/video-sp";

constexpr int video_family = 4;

constexpr useconds_t result_round_us = 5000;
constexpr int result_rounds = 400;
constexpr int result_round_ms = 5;

/// The descriptor of the first record that has one, -1 if none has.
int first_fd(const std::vector<lnx::cmsg_t>& cmsgs) {
  const auto found = std::find_if(cmsgs.begin(), cmsgs.end(), [](const lnx::cmsg_t& cmsg) { return cmsg.has_fd(); });
  return found != cmsgs.end() ? found->fd() : -1;
}

/// The file's size; 0 for what cannot hold a status block: touching a page behind the end would kill the process.
std::size_t usable_size(int fd) {
  struct stat status {};
  if (fd < 1 || fstat(fd, &status) < 0 || status.st_size < off_t{videng::status_block_t::size}) {
    return 0;
  }
  return static_cast<std::size_t>(status.st_size);
}

}  // namespace

ve_ipc_t::ve_ipc_t(event_base* base, int poll_interval_ms)
    : loop_base(base), poll_timer(base, poll_interval_ms, false), alive(std::make_shared<bool>(true)) {
  // Once and for all: the socket holds its receivers' lock while one of them runs.
  socket.add_receiver(this, {eipc::gen::fd_resp_t::kind});
  poll_timer.expired.connect(sigc::mem_fun(*this, &ve_ipc_t::poll_status));
}

ve_ipc_t::~ve_ipc_t() { ve_ipc_t::close_all(); }

void ve_ipc_t::open(bool as_simulated) {
  const zyl::recursive_lock_t lock(mutex);
  close_all();
  simulated = as_simulated;
  if (simulated) {
    make_simulated_block();
  } else {
    connect_engine();
  }
  poll_timer.arm();
}

void ve_ipc_t::close_all() {
  poll_timer.cancel();
  const zyl::recursive_lock_t lock(mutex);
  for (decoder_t& decoder : decoders) {
    decoder.decrypt_timer.reset();
  }
  reset();
}

bool ve_ipc_t::is_connected() {
  const zyl::recursive_lock_t lock(mutex);
  return simulated || socket.is_open();
}

bool ve_ipc_t::ready() {
  const zyl::recursive_lock_t lock(mutex);
  return is_connected() && m_videng_status.has_value();
}

void ve_ipc_t::add_ipc_observer(ve_observer_t* obs) {
  const zyl::recursive_lock_t lock(mutex);
  if (obs != nullptr) {
    ipc_observers.push_back(obs);
  }
}

uint8_t* ve_ipc_t::status_block() {
  const zyl::recursive_lock_t lock(mutex);
  return m_videng_status ? reinterpret_cast<uint8_t*>(m_videng_status->bytes().data()) : nullptr;
}

void ve_ipc_t::connect_engine() {
  if (!try_connect()) {
    read_event.reset();
    if (socket.is_open()) {
      socket.close();
    }
    log_error_s() << "video_engine ipc open failed";
  }
}

// Not blocking: an engine that hangs takes neither connections nor messages, and the lock is held here.
bool ve_ipc_t::try_connect() {
  if (socket.create(SOCK_SEQPACKET) < 0 || socket.set_blocking(false) < 0 || socket.connect(engine_path) < 0) {
    return false;
  }
  read_event.reset(event_new(loop_base, socket.descriptor(), EV_READ | EV_PERSIST, on_readable, this));
  if (read_event == nullptr || event_add(read_event.get(), nullptr) < 0) {
    return false;
  }
  return socket.sendto(eipc::gen::fd_req_t::kind, eipc::gen::fd_req_t(), "") >= 0;
}

void ve_ipc_t::make_simulated_block() {
  simulated_block.assign(videng::status_block_t::size, std::byte{0});
  m_videng_status.emplace(simulated_block);
  m_videng_status->decoder(0).type().store(videng::depayloader_visengi);
  m_videng_status->decoder(1).type().store(videng::depayloader_visengi);
  m_videng_status->decoder(1).instance().store(1);
  m_videng_status->decoder(2).type().store(videng::depayloader_mediacast_rtsp);
  post_ipc_event(ve_ipc_up);
}

void ve_ipc_t::reset() {
  read_event.reset();  // before the socket: the loop would keep watching a dead descriptor
  if (socket.is_open()) {
    socket.close();
  }
  m_videng_status.reset();
  mapping = {};
  simulated_block = std::vector<std::byte>();  // plain braces would keep the memory
  dec_status = {};
  raw_out = {};
  for (decoder_handle_t& handle : handles) {
    handle.release();
  }
  for (decoder_t& decoder : decoders) {
    decoder.reset();
  }
}

void ve_ipc_t::on_readable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  auto& client = *static_cast<ve_ipc_t*>(self);
  if (client.socket.process() == 0) {
    return;
  }
  const zyl::recursive_lock_t lock(client.mutex);
  client.reset();
  client.post_ipc_event(ve_ipc_down);
  log_warn_s() << "video_engine disconnected";
}

void ve_ipc_t::received(eipc::socket_t& /*sk*/, const std::string& /*from*/, const eipc::message_type& type,
                        zyl::datastream_strio_t& /*data*/, const std::vector<lnx::cmsg_t>& cmsgs) {
  if (type.family != video_family) {
    log_error_s() << "ve_ipc_t::received wrong family type";
    return;
  }
  if (type == eipc::gen::fd_resp_t::kind) {
    const zyl::recursive_lock_t lock(mutex);
    take_status_block(cmsgs);
  }
}

// The descriptor of a block in use stays open, as the engine expects of its peers; a refused one is of no use.
void ve_ipc_t::take_status_block(const std::vector<lnx::cmsg_t>& cmsgs) {
  m_videng_status.reset();
  mapping = {};
  const int fd = first_fd(cmsgs);
  const std::size_t size = usable_size(fd);
  if (size == 0) {
    log_error_s() << "ve_ipc_t::received bad mmap fd or fstat";
    if (fd >= 0) {
      ::close(fd);
    }
    return;
  }
  mapping = videng::status_mapping_t(fd, size);
  if (!mapping.mapped()) {
    log_error_s() << "ve_ipc_t::received videng::status_get_resp mmap failed";
    ::close(fd);
    return;
  }
  m_videng_status = mapping.block();
  log_output_names();
  log_info_s() << "video_engine connected";
  post_ipc_event(ve_ipc_up);
}

void ve_ipc_t::log_output_names() {
  for (const auto* table : {&videng::raw_outs, &videng::uvcs, &videng::mc_hdmi_outs, &videng::mc_rtsp_outs}) {
    for (std::size_t i = 0; i < table->count; ++i) {
      log_info_s() << "m_videng_status->" << table->word << "[" << i << "]=\"" << m_videng_status->name(*table, i)
                   << "\"";
    }
  }
}

void ve_ipc_t::post(std::function<void()> call) {
  zyl::post(loop_base, [watched = std::weak_ptr(alive), wanted = std::move(call)] {
    if (!watched.expired()) {
      wanted();
    }
  });
}

void ve_ipc_t::post_ipc_event(int event) {
  post([this, event] { raise_ipc_event(event); });
}

void ve_ipc_t::raise_ipc_event(int event) {
  std::vector<ve_observer_t*> listening;
  {
    const zyl::recursive_lock_t lock(mutex);
    listening = ipc_observers;
  }
  for (ve_observer_t* observer : listening) {
    observer->ipc_event(event);
  }
}

// Not checked: an engine that has gone away shows on the read event, one that does not read in the status block.
void ve_ipc_t::send(const eipc::message_type& type, const eipc::message_base_t& message) {
  static_cast<void>(socket.sendto(type, message, ""));
}

// The engine answers by writing the block, not by a message: there is nothing that the loop could wait for.
bool ve_ipc_t::wait_for_result(videng::status_result_t result, std::ostringstream& line) {
  for (int round = 0;; ++round) {
    const int32_t value = result.load();
    if (value > 0) {
      log_debug_s() << line.str() << " ~" << round * result_round_ms << "ms OK";
      return true;
    }
    if (value < 0) {
      log_error_s() << line.str() << " ~" << round * result_round_ms << "ms ERROR";
      return false;
    }
    if (round == result_rounds) {
      log_error_s() << line.str() << " ~2000ms TIMEOUT";
      return false;
    }
    usleep(result_round_us);
  }
}

}  // namespace control_lib
