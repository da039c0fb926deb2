#include "app/test/streamer_proxy_fixture.h"

#include <QCoreApplication>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <utility>

#include "test_support/edid_builder.h"
#include "test_support/stub_platform.h"
#include "zyl/post.h"

StreamerProxyTest::StreamerProxyTest(vgn_control::vgn_streamer_proxy::info_texts_t info_texts)
    : proxy(&coordinator,
            {
                [this](event_base* loop) {
                  base = loop;
                  auto made = std::make_unique<test_support::mock_property_monitor_t>(journal);
                  bus = made.get();
                  return made;
                },
                [this](event_base* loop) {
                  auto made = std::make_unique<test_support::mock_vgn_zsd_interface_t>(loop, journal);
                  hdmi = made.get();
                  return made;
                },
                [this](event_base* loop) {
                  auto made = std::make_unique<test_support::mock_ve_ipc_t>(loop, journal);
                  engine = made.get();
                  zyl::post(base, [this] { step(0); });
                  return made;
                },
            },
            std::move(info_texts)) {
  set_model("part-106");
}

void StreamerProxyTest::run(std::vector<step_t> steps) {
  steps.push_back([this] { proxy.stop(); });
  run_until_stopped(std::move(steps));
}

void StreamerProxyTest::run_until_stopped(std::vector<step_t> steps) {
  script = std::move(steps);
  proxy.run();
}

void StreamerProxyTest::step(std::size_t index) {
  if (index < script.size()) {
    script[index]();
    zyl::post(base, [this, index] { step(index + 1); });
  }
}

StreamerProxyTest::lines_t StreamerProxyTest::take(const std::string& who) {
  lines_t lines = journal.take();
  std::erase_if(lines, [&who](const std::string& line) { return line.rfind(who + " ", 0) != 0; });
  return lines;
}

StreamerProxyTest::lines_t StreamerProxyTest::coordinator_heard() {
  QCoreApplication::sendPostedEvents(&coordinator);
  return std::exchange(coordinator.heard, {});
}

void StreamerProxyTest::plug_bytes(std::size_t index, std::vector<uint8_t> edid) {
  hdmi->outputs[index].connected = true;
  hdmi->outputs[index].edid = std::move(edid);
  hdmi->raise(index, control_lib::output_connection_event);
}

void StreamerProxyTest::plug(std::size_t index, const edid_lib::vid_timing_t& timing) {
  plug_bytes(index, test_support::edid_builder_t().detailed(0, timing).build());
}

void StreamerProxyTest::unplug(std::size_t index) {
  hdmi->outputs[index].connected = false;
  hdmi->raise(index, control_lib::output_disconnection_event);
}

void StreamerProxyTest::ready(int index) {
  property(control_lib::property_response_e::changed, "/xk_splash/" + std::to_string(index) + "/ready", "1");
}

spdlog::level::level_enum StreamerProxyTest::level_of(const std::string& text) const {
  for (const auto& entry : log.entries()) {
    if (entry.text == text) {
      return entry.level;
    }
  }
  return spdlog::level::off;
}

void StreamerProxyTest::set_model(const char* part_number) { test_support::set_model(part_number); }

void StreamerProxyTest::put_disconnected_image() {
  const std::filesystem::path path(image);
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path) << "picture";
}

void StreamerProxyTest::remove_disconnected_image() { std::filesystem::remove(image); }
