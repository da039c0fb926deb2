// Property frames received a second by the size of the pieces in which they arrive, and junk skipped.

#include <benchmark/benchmark.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/support/allocation_count.h"
#include "bench/support/report.h"
#include "sim/descriptor.h"
#include "sim/unix_address.h"
#include "zyl/property_client.h"
#include "zyl/property_frame.h"

namespace {

/// A client and the service's end of its connection, both in the hands of this thread.
class connection_t {
 public:
  connection_t() : listener(sim::bind_unix_socket(SOCK_STREAM, zyl::property_service_path)) {
    if (listen(listener.get(), 1) != 0 || !client.connect()) {
      throw std::runtime_error("no connection");
    }
    service = sim::descriptor_t(accept(listener.get(), nullptr, nullptr));
  }

  void send(std::string_view bytes) const {
    if (::send(service.get(), bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("the client's socket takes no more");
    }
  }

  zyl::property_client_t client;

 private:
  sim::descriptor_t listener;
  sim::descriptor_t service;
};

const std::string& frame() {
  static const std::string bytes = zyl::build_frame({"changed", "/vgn_ui/hdmi1_current_screen", "live_screen"});
  return bytes;
}

/// As many frames as 64 KiB hold, or 4 KiB if they come byte by byte, each behind so much junk.
std::string frames_with_junk(std::size_t junk_size, std::size_t piece_size) {
  const std::string one = std::string(junk_size, 'i') + frame();
  std::string bytes;
  while (bytes.size() + one.size() <= (piece_size == 1 ? 4096 : 65536)) {
    bytes += one;
  }
  return bytes;
}

/// Calls `received` after each piece of `bytes` that was sent.
template <typename Received>
void send_in_pieces(const connection_t& connection, std::string_view bytes, std::size_t piece_size, Received received) {
  for (; !bytes.empty(); bytes.remove_prefix(std::min(piece_size, bytes.size()))) {
    connection.send(bytes.substr(0, piece_size));
    received();
  }
}

void count_frames(benchmark::State& state, int64_t frames, uint64_t allocations) {
  state.counters["frames/s"] = benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kIsRate);
  state.counters["allocations/frame"] = static_cast<double>(allocations) / static_cast<double>(frames);
}

/// `property_client_t::receive` until it has nothing more, after each piece. Sending is in the time.
void receive_frames(benchmark::State& state) {
  const auto piece_size = static_cast<std::size_t>(state.range(0));
  const std::string bytes = frames_with_junk(static_cast<std::size_t>(state.range(1)), piece_size);
  connection_t connection;
  std::string command;
  std::string path;
  std::string value;
  int64_t frames = 0;
  const uint64_t before = bench::allocation_count();
  for ([[maybe_unused]] auto step : state) {
    send_in_pieces(connection, bytes, piece_size, [&] {
      while (connection.client.receive(command, path, value, 0)) {
        ++frames;
      }
    });
  }
  count_frames(state, frames, bench::allocation_count() - before);
}

/// The same traffic, of which each piece is only received: what the sockets alone cost.
void receive_bytes(benchmark::State& state) {
  const auto piece_size = static_cast<std::size_t>(state.range(0));
  const auto junk_size = static_cast<std::size_t>(state.range(1));
  const std::string bytes = frames_with_junk(junk_size, piece_size);
  const connection_t connection;
  std::array<char, 65536> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): recv fills it
  int64_t received = 0;
  for ([[maybe_unused]] auto step : state) {
    send_in_pieces(connection, bytes, piece_size,
                   [&] { received += recv(connection.client.descriptor(), buffer.data(), buffer.size(), 0); });
  }
  count_frames(state, received / static_cast<int64_t>(junk_size + frame().size()), 0);
}

/// Junk in front of one frame, skipped by the buffer: `pieces` is how many bytes arrive between two looks at it.
void skip_junk(benchmark::State& state, std::string_view pattern, std::size_t pieces) {
  std::string bytes;
  while (bytes.size() < static_cast<std::size_t>(state.range(0))) {
    bytes += pattern;
  }
  bytes += frame();
  for ([[maybe_unused]] auto step : state) {
    zyl::property_frame_buffer_t buffer;
    bool found = false;
    for (std::size_t at = 0; at < bytes.size(); at += pieces) {
      buffer.append(std::string_view(bytes).substr(at, pieces));
      buffer.resynchronise();
      while (const auto fields = buffer.take_frame()) {
        found = fields->size() == 3;
        buffer.resynchronise();
      }
    }
    if (!found) {
      state.SkipWithError("the frame behind the junk is lost");
    }
  }
  state.SetComplexityN(state.range(0));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void register_receiving(const char* name, void (*receive)(benchmark::State&)) {
  for (const int64_t junk : {0, 1024}) {
    for (const int64_t piece : {1, 128, 65536}) {
      benchmark::RegisterBenchmark(name, receive)->Args({piece, junk})->ArgNames({"piece", "junk"});
    }
  }
}

void register_skipping(const std::string& name, std::string_view pattern) {
  for (const std::size_t pieces : {std::size_t{128}, std::string::npos}) {
    const std::string arrival = pieces == 128 ? "/pieces" : "/burst";
    benchmark::RegisterBenchmark(("skip_junk/" + name + arrival).c_str(),
                                 [=](benchmark::State& state) { skip_junk(state, pattern, pieces); })
        ->RangeMultiplier(16)
        ->Range(1 << 10, 1 << 22)
        ->Complexity(benchmark::oN);
  }
}

}  // namespace

int main(int argc, char** argv) {
  using namespace std::string_view_literals;
  register_receiving("receive_frames", receive_frames);
  register_receiving("receive_bytes", receive_bytes);
  register_skipping("noise", "\xff");
  register_skipping("beginnings", "ipc_magi");
  register_skipping("empty_frames", "ipc_magic\0\0"sv);
  register_skipping("broken_frames", "ipc_magic\2\0\0\2"sv);
  std::vector<bench::ratio_t> ratios;
  for (const std::string arguments :
       {"piece:1/junk:0", "piece:128/junk:0", "piece:65536/junk:0", "piece:65536/junk:1024"}) {
    ratios.push_back({"receive_frames/" + arguments, "receive_bytes/" + arguments});
  }
  return bench::run(argc, argv, {9, 0.02}, ratios);
}
