// From setting a property to hearing that it changed: both monitors on the simulated appliance's property service,
// beside what the kernel asks for the same bytes and beside D-Bus. Each other end is a process of its own.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/allocation_count.h"
#include "bench/support/dbus_properties.h"
#include "bench/support/peer_process.h"
#include "bench/support/raw_echo.h"
#include "bench/support/report.h"
#include "control_lib/src/property_monitor_engine.h"
#include "sim/property_service.h"
#include "zyl/event_loop.h"
#include "zyl/property_frame.h"
#include "zyl/qt/property_monitor.h"

namespace {

/// A property of the daemon, and one as long below "/sim/", whose sets the simulation's story does not tell: writing
/// that line is no work of the bus.
const std::string told_property = "/vgn_ui/hdmi1_current_screen";
const std::string property = "/sim/ui/hdmi1_current_screen";

constexpr const char* echo_path = "/tmp/vgn_bench_echo";
constexpr const char* bus_address = "unix:path=/tmp/vgn_bench_bus";

/// A screen's word of always the same length, different from the one before.
const std::string& next_value() {
  static const std::string values[] = {"live_screen", "idle_screen"};
  static unsigned turn = 0;
  return values[++turn % 2];
}

/// The property service as the simulated appliance runs it, its story in a file.
void serve_properties(int ready_fd) {
  zyl::event_loop_t loop;
  sim::story_t story("/tmp/vgn_bench_story");
  sim::property_tree_t tree;
  const sim::property_service_t service(loop.base(), tree, story);
  bench::tell_ready(ready_fd);
  loop.run();
}

const bench::peer_process_t& property_service() {
  static const bench::peer_process_t service(serve_properties);
  return service;
}

/// Times `round_trip` and counts what it allocates, here and in `other_end`.
template <typename RoundTrip>
void measure(benchmark::State& state, const bench::peer_process_t& other_end, RoundTrip round_trip) {
  for (int warm_up = 0; warm_up < 10; ++warm_up) {
    round_trip();
  }
  const uint64_t before = bench::allocation_count();
  const uint64_t other_before = other_end.allocation_count();
  for ([[maybe_unused]] auto step : state) {
    round_trip();
  }
  const auto trips = static_cast<double>(state.iterations());
  state.counters["allocations"] = static_cast<double>(bench::allocation_count() - before) / trips;
  state.counters["allocations_of_service"] = static_cast<double>(other_end.allocation_count() - other_before) / trips;
}

/// As many bytes each way as the property service gets and gives.
void raw_echo(benchmark::State& state) {
  static const std::size_t request_size = zyl::build_frame({"set", property, next_value()}).size();
  static const std::size_t answer_size = zyl::build_frame({"changed", property, next_value()}).size();
  static const bench::peer_process_t peer(
      [](int ready_fd) { bench::serve_raw_echo(echo_path, request_size, answer_size, ready_fd); });
  static const bench::raw_echo_client_t client(echo_path);
  measure(state, peer, [] {
    if (!client.exchange(request_size, answer_size)) {
      throw std::runtime_error("the raw echo has gone");
    }
  });
}

/// `PropertyMonitor` on the Qt loop.
void qt_monitor(benchmark::State& state, const std::string& watched) {
  const auto& service = property_service();
  const QByteArray path = watched.c_str();
  PropertyMonitor monitor({path});
  QByteArray told;
  QObject::connect(&monitor, &PropertyMonitor::valueChanged,
                   [&](const QByteArray& /*name*/, const QByteArray& value) { told = value; });
  const QByteArray values[] = {"live_screen", "idle_screen"};
  unsigned turn = 0;
  measure(state, service, [&] {
    const QByteArray& value = values[++turn % 2];
    monitor.setValue(path, value);
    while (told != value) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  });
}

/// `control_lib::property_monitor_engine_t` on the libevent loop.
void engine_monitor(benchmark::State& state, const std::string& watched) {
  class observer_t final : public control_lib::property_observer_eb_t {
   public:
    void on_property(control_lib::property_response_e /*kind*/, const std::string& /*path*/,
                     const std::string& value) override {
      told = value;
    }
    std::string told;
  };
  const auto& service = property_service();
  zyl::event_loop_t loop;
  observer_t observer;
  control_lib::property_monitor_engine_t monitor(loop.base());
  monitor.monitor(watched, &observer);
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);  // what was posted is sent
  measure(state, service, [&] {
    const std::string& value = next_value();
    monitor.set(watched, value);
    while (observer.told != value) {
      event_base_loop(loop.base(), EVLOOP_ONCE);
    }
  });
}

/// A text served over a session bus, and this process's connection to it.
struct dbus_t {
  bench::peer_process_t daemon{[](int ready_fd) { bench::run_dbus_daemon(bus_address, ready_fd); }};
  bench::peer_process_t service{[](int ready_fd) { bench::serve_dbus_properties(bus_address, ready_fd); }};
  bench::dbus_properties_client_t client{bus_address};
};

dbus_t& dbus() {
  static dbus_t made;
  return made;
}

/// The same over D-Bus, by its standard interface for properties.
void dbus_property(benchmark::State& state) {
  auto& bus = dbus();
  measure(state, bus.service, [&bus] { bus.client.set_property_and_wait(next_value()); });
}

/// The same over D-Bus, by a bare call and a bare signal.
void dbus_signal(benchmark::State& state) {
  auto& bus = dbus();
  measure(state, bus.service, [&bus] { bus.client.call_and_wait(next_value()); });
}

BENCHMARK(raw_echo)->UseRealTime();
BENCHMARK_CAPTURE(qt_monitor, untold, property)->UseRealTime();
BENCHMARK_CAPTURE(qt_monitor, told, told_property)->UseRealTime();
BENCHMARK_CAPTURE(engine_monitor, untold, property)->UseRealTime();
BENCHMARK_CAPTURE(engine_monitor, told, told_property)->UseRealTime();
BENCHMARK(dbus_property)->UseRealTime();
BENCHMARK(dbus_signal)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication app(argc, argv);
  std::vector<bench::ratio_t> ratios;
  for (const std::string monitor : {"qt_monitor", "engine_monitor"}) {
    ratios.push_back({monitor + "/untold", "raw_echo", 1.25});
    ratios.push_back({monitor + "/told", "raw_echo"});
    ratios.push_back({monitor + "/untold", "dbus_property", 0.25});
    ratios.push_back({monitor + "/untold", "dbus_signal", 0.25});
  }
  return bench::run(argc, argv, {301, 0.002}, ratios);
}
