#include "app/vgn_streamer_proxy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <future>
#include <ostream>
#include <thread>

#include "app/test/streamer_proxy_fixture.h"
#include "test_support/edid_builder.h"
#include "zyl/post.h"

namespace {

using control_lib::property_response_e;
using test_support::data_block;
using test_support::edid_builder_t;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using vgn_control::vgn_streamer_proxy;

TEST(StreamerProxyLoggers, TheLevelFileKnowsThoseOfThePartsThatLogNothing) {
  for (const char* const name : {"edid_tarn", "lin_ipc", "lin_property"}) {
    EXPECT_NE(spdlog::get(name), nullptr) << name;
  }
}

TEST_F(StreamerProxyTest, RunMakesItsPartsAndStartsThemInOrder) {
  run({[this] {
    EXPECT_THAT(take(), ElementsAre("bus monitor /xk_splash/0/ready", "bus monitor /xk_splash/1/ready",
                                    "engine observe", "engine close_all", "hdmi stop",  //
                                    "bus set /xk_splash/0/graphic ''", "bus set /xk_splash/0/info ''",
                                    "bus set /xk_splash/0/mode ''", "bus set /xk_splash/0/uci ''",
                                    "bus set /xk_splash/1/graphic ''", "bus set /xk_splash/1/info ''",
                                    "bus set /xk_splash/1/mode ''", "bus set /xk_splash/1/uci ''",  //
                                    "hdmi start", "engine open real"));
  }});
  EXPECT_EQ(log.lines().front(), "vgn_streamer_proxy::run");
  EXPECT_TRUE(log.said("vgn_streamer_proxy::disconnect_xk_splash (all)"));
}

TEST_F(StreamerProxyTest, TheEndLetsGoOfInterfaceThenEngineThenBus) {
  run({[this] { forget(); }});
  EXPECT_THAT(take(), ElementsAre("engine close_all", "hdmi stop", "hdmi gone", "engine gone", "bus gone"));
}

TEST_F(StreamerProxyTest, AStopBeforeTheRunIsKept) {
  proxy.stop();
  run_until_stopped({});
  EXPECT_THAT(take(), Contains("bus gone"));
}

TEST_F(StreamerProxyTest, AnotherThreadCanStopIt) {
  std::promise<void> running;
  std::thread other([&] {
    running.get_future().wait();
    proxy.stop();
  });
  run_until_stopped({[&] { running.set_value(); }});
  other.join();
  EXPECT_THAT(take(), Contains("bus gone"));
}

struct model_outputs_t {
  const char* part_number;
  std::size_t outputs;
};

// What CTest shows of it; the default is its bytes.
void PrintTo(const model_outputs_t& model, std::ostream* out) { *out << model.part_number; }

class StreamerProxyModelTest : public StreamerProxyTest, public testing::WithParamInterface<model_outputs_t> {};

TEST_P(StreamerProxyModelTest, ResetsFourPropertiesForEachOutputOfTheModel) {
  set_model(GetParam().part_number);
  run({[this] {
    lines_t sets = take("bus");
    std::erase_if(sets, [](const std::string& line) { return line.rfind("bus set ", 0) != 0; });
    EXPECT_EQ(sets.size(), 4 * GetParam().outputs);
  }});
}

INSTANTIATE_TEST_SUITE_P(Models, StreamerProxyModelTest,
                         testing::Values(model_outputs_t{"part-137", 1}, model_outputs_t{"part-105", 2},
                                         model_outputs_t{"part-106", 2}, model_outputs_t{"part-085", 3},
                                         model_outputs_t{"part-100", 3}, model_outputs_t{"part-104", 0},
                                         model_outputs_t{"no such part", 0}));

TEST_F(StreamerProxyTest, ADisconnectedImageIsAnnouncedForTheFirstOutputAlone) {
  put_disconnected_image();
  run({[this] {
    const lines_t bus_lines = take("bus");
    EXPECT_THAT(bus_lines, Contains("bus set /xk_splash/0/graphic '" + image + "'"));
    EXPECT_THAT(bus_lines, Not(Contains("bus set /xk_splash/1/graphic '" + image + "'")));
    EXPECT_EQ(bus_lines.back(), "bus set /xk_splash/0/info ''");
  }});
}

TEST_F(StreamerProxyTest, ADesignThatRunsAlreadyKeepsTheStreamerDown) {
  proxy.set_design_running();
  run({[this] {
    EXPECT_THAT(take(),
                ElementsAre("bus monitor /xk_splash/0/ready", "bus monitor /xk_splash/1/ready", "engine observe"));
  }});
}

TEST_F(StreamerProxyTest, ADesignThatStopsStartsTheStreamerFromScratch) {
  proxy.set_design_running();
  run({[this] {
         forget();
         proxy.set_design_stopped();
         EXPECT_THAT(take(), IsEmpty());
       },
       [this] {
         EXPECT_THAT(take(), IsSupersetOf({"hdmi start", "engine open real"}));
       }});
}

TEST_F(StreamerProxyTest, ADesignThatStartsStopsTheStreamerOnce) {
  run({[this] {
         forget();
         proxy.set_design_running();
         proxy.set_design_running();
       },
       [this] { EXPECT_THAT(take(), ElementsAre("engine close_all", "hdmi stop")); }});
  EXPECT_TRUE(log.said("vgn_streamer_proxy::set_design_running"));
}

TEST_F(StreamerProxyTest, StoppingADesignThatDoesNotRunChangesNothing) {
  run({[this] {
         forget();
         proxy.set_design_stopped();
       },
       [this] { EXPECT_THAT(take(), IsEmpty()); }});
  EXPECT_TRUE(log.said("vgn_streamer_proxy::set_design_stopped"));
}

TEST_F(StreamerProxyTest, ADesignThatStartsAndStopsBeforeTheLoopTurnsChangesNothing) {
  run({[this] {
         forget();
         proxy.set_design_running();
         proxy.set_design_stopped();
       },
       [this] { EXPECT_THAT(take(), IsEmpty()); }});
}

TEST_F(StreamerProxyTest, WhenTheStreamerSystemIsUpEachOutputIsEnabledAndAskedForItsDisplay) {
  run({[this] {
    forget();
    streamer_system_up();
    EXPECT_THAT(take(), ElementsAre("hdmi observe 0", "hdmi enable 0 on no-force", "hdmi get_connection 0",  //
                                    "hdmi observe 1", "hdmi enable 1 on no-force", "hdmi get_connection 1"));
    EXPECT_TRUE(log.said("vgn_streamer_proxy::on_vgn_start display_count=2"));
    EXPECT_EQ(log.lines().back(), "vgn_streamer_proxy::disconnect_xk_splash (all)");
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected", "1 disconnected"));
}

TEST_F(StreamerProxyTest, AThirdOutputIsEnabledButNotFollowed) {
  run({[this] {
    hdmi->count = 3;
    forget();
    streamer_system_up();
    EXPECT_THAT(take(), IsSupersetOf({"hdmi observe 2", "hdmi enable 2 on no-force"}));
    plug(2, timing_1080p);
    EXPECT_THAT(take(), IsEmpty());
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected", "1 disconnected"));
}

TEST_F(StreamerProxyTest, ADisplayThatWasThereAlreadyGetsItsMode) {
  run({[this] {
    plug(1, timing_1080p);
    forget();
    streamer_system_up();
    EXPECT_THAT(take(), Contains("hdmi set_mode 1 1920 1080 148500"));
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected", "1 1920x1080@60"));
}

TEST_F(StreamerProxyTest, ADisplayThatIsPluggedInGetsTheBestModeOfItsEdid) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    forget();
    plug(0, timing_4k);
    EXPECT_THAT(take(), ElementsAre("hdmi get_connection 0", "hdmi get_edid 0", "hdmi set_mode 0 3840 2160 594000"));
  }});
  EXPECT_TRUE(log.said("vgn_streamer_proxy::on_output_connection(hdmi_index=0) display connected"));
  EXPECT_TRUE(log.said("vgn_streamer_proxy::set_preferred_mode hdmi_index=0 mode=3840x2160@60"));
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 3840x2160@60"));
}

TEST_F(StreamerProxyTest, AModeBeyondTheLimitsIsPassedOver) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    auto wider = timing_4k;
    wider.h_active = 4096;
    wider.h_sync_start = 4184;
    wider.h_sync_end = 4272;
    plug(0, wider);
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 640x480@60"));
}

struct passed_over_t {
  const char* why;
  edid_builder_t edid;
  const char* chosen;
};

void PrintTo(const passed_over_t& mode, std::ostream* out) { *out << mode.why; }

class StreamerProxyModeTest : public StreamerProxyTest, public testing::WithParamInterface<passed_over_t> {};

TEST_P(StreamerProxyModeTest, AFirstModeThatIsNotWantedIsPassedOver) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    plug_bytes(0, GetParam().edid.build());
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre(std::string("0 ") + GetParam().chosen));
}

constexpr uint8_t video_tag = 2;
constexpr uint8_t vic_480p_4_3 = 2;
constexpr uint8_t vic_720p = 4;
constexpr uint8_t vic_1080i = 5;
constexpr edid_lib::vid_timing_t timing_640x400{25200, 640, 656, 752, 800, 400, 412, 414, 525, 5};

INSTANTIATE_TEST_SUITE_P(
    Modes, StreamerProxyModeTest,
    testing::Values(passed_over_t{"Interlaced", edid_builder_t().cta(1, {data_block(video_tag, {vic_1080i, vic_720p})}),
                                  "1280x720@60"},
                    passed_over_t{"NonSquare",
                                  edid_builder_t().cta(1, {data_block(video_tag, {vic_480p_4_3, vic_720p})}),
                                  "1280x720@60"},
                    passed_over_t{"TooSmall", edid_builder_t().detailed(0, timing_640x400), "640x480@60"}),
    [](const auto& test) { return test.param.why; });

TEST_F(StreamerProxyTest, AnUnpluggedDisplayIsToldToTheCoordinator) {
  run({[this] {
    streamer_system_up();
    plug(0, timing_1080p);
    coordinator_heard();
    forget();
    unplug(0);
    EXPECT_THAT(take(), ElementsAre("hdmi get_connection 0"));
  }});
  EXPECT_TRUE(log.said("vgn_streamer_proxy::on_output_connection(hdmi_index=0) display disconnected"));
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected"));
}

TEST_F(StreamerProxyTest, AConnectionThatCannotBeReadCountsAsNoDisplay) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    hdmi->outputs[0].readable = false;
    plug(0, timing_1080p);
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected"));
}

TEST_F(StreamerProxyTest, AnEmptyEdidLeavesTheOutputAsItIs) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    forget();
    plug_bytes(0, {});
    EXPECT_THAT(take(), ElementsAre("hdmi get_connection 0", "hdmi get_edid 0"));
  }});
  EXPECT_EQ(level_of("vgn_streamer_proxy::on_output_connection empty edid"), spdlog::level::err);
  EXPECT_THAT(coordinator_heard(), IsEmpty());
}

TEST_F(StreamerProxyTest, AnEdidWithNothingUsableLeavesTheOutputAsItIs) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    forget();
    plug_bytes(0, edid_builder_t().byte(35, 0).build());
    EXPECT_THAT(take(), ElementsAre("hdmi get_connection 0", "hdmi get_edid 0"));
  }});
  EXPECT_EQ(level_of("vgn_streamer_proxy::on_output_connection empty modes list"), spdlog::level::err);
  EXPECT_THAT(coordinator_heard(), IsEmpty());
}

TEST_F(StreamerProxyTest, OnlyConnectionEventsOfAnOutputMatter) {
  run({[this] {
    streamer_system_up();
    forget();
    hdmi->outputs[0].connected = true;
    hdmi->raise(0, ~(control_lib::output_connection_event | control_lib::output_disconnection_event));
    EXPECT_THAT(take(), IsEmpty());
    hdmi->raise(0, control_lib::output_hdcp_event | control_lib::output_disconnection_event);
    EXPECT_THAT(take(), Contains("hdmi get_connection 0"));
  }});
}

TEST_F(StreamerProxyTest, WhileADesignRunsConnectionEventsAreIgnored) {
  run({[this] {
         streamer_system_up();
         coordinator_heard();
         proxy.set_design_running();
       },
       [this] {
         forget();
         plug(0, timing_1080p);
         unplug(0);
         EXPECT_THAT(take(), IsEmpty());
       }});
  EXPECT_THAT(coordinator_heard(), IsEmpty());
}

TEST_F(StreamerProxyTest, FromTheMomentADesignIsSaidToRunConnectionEventsAreIgnored) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    forget();
    proxy.set_design_running();
    plug(0, timing_1080p);
    EXPECT_THAT(take(), IsEmpty());
  }});
  EXPECT_THAT(coordinator_heard(), IsEmpty());
}

TEST_F(StreamerProxyTest, APlugWhileADesignComesAndGoesBeforeTheLoopTurnsIsNotMissed) {
  run({[this] {
    streamer_system_up();
    coordinator_heard();
    proxy.set_design_running();
    plug(0, timing_1080p);
    proxy.set_design_stopped();
  }});
  EXPECT_THAT(coordinator_heard(), ElementsAre("0 1920x1080@60"));
}

TEST_F(StreamerProxyTest, ACoordinatorWithoutTheSlotIsACriticalLine) {
  QObject stranger;
  vgn_streamer_proxy to_stranger(
      &stranger, {
                     [this](event_base*) { return std::make_unique<test_support::mock_property_monitor_t>(journal); },
                     [this](event_base* loop) {
                       auto made = std::make_unique<test_support::mock_vgn_zsd_interface_t>(loop, journal);
                       hdmi = made.get();
                       return made;
                     },
                     [this, &to_stranger](event_base* loop) {
                       zyl::post(loop, [this, &to_stranger] {
                         streamer_system_up();
                         to_stranger.stop();
                       });
                       return std::make_unique<test_support::mock_ve_ipc_t>(loop, journal);
                     },
                 });
  to_stranger.run();
  EXPECT_EQ(level_of("Invocation of the hdmiPropertiesChanged failed"), spdlog::level::critical);
}

}  // namespace
