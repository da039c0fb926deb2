#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/test/streamer_proxy_fixture.h"

namespace {

using control_lib::property_response_e;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

/// The streamer system is up, the engine is there, and a Full HD display is on the first output. Nothing is ready.
class SplashTest : public StreamerProxyTest {
 protected:
  void run(std::vector<step_t> steps) {
    steps.insert(steps.begin(), [this] {
      streamer_system_up();
      plug(0, timing_1080p);
      forget();
      log.clear();
    });
    StreamerProxyTest::run(std::move(steps));
  }
};

TEST_F(SplashTest, AReadySignalOpensTheSplashOfItsOutput) {
  run({[this] { ready(0); },
       [this] {
         EXPECT_THAT(take(),
                     ElementsAre("engine open_decoder 4 \"videng-pnl8-dmabuf0\":0 ''", "hdmi set_source 0 -1 0",
                                 "engine raw_out 0 15 1920 1080 wait no-force", "hdmi set_output 0 100 sound moving",
                                 "bus set /xk_splash/0/info ''", "bus set /xk_splash/0/mode 'boot_splash_screen'"));
         EXPECT_THAT(
             log.lines(),
             ElementsAre("vgn_streamer_proxy::connect_xk_splash(hdmi_index=0) splash_startup=TRUE",
                         "vgn_streamer_proxy::connect_xk_splash opened mediacast_dmabuf decoder videng-pnl8-dmabuf0",
                         "vgn_streamer_proxy::connect_xk_splash reconfiguring raw out videng-pnl8-dmabuf0"));
       }});
}

TEST_F(SplashTest, TheSecondOutputHasASplashOfItsOwn) {
  run({[this] { ready(1); },
       [this] {
         EXPECT_THAT(take(),
                     ElementsAre("engine open_decoder 4 \"videng-pnl8-dmabuf1\":0 ''", "hdmi set_source 1 -1 0",
                                 "engine raw_out 1 15 0 0 wait no-force", "hdmi set_output 1 101 sound moving",
                                 "bus set /xk_splash/1/info ''", "bus set /xk_splash/1/mode 'boot_splash_screen'"));
       }});
}

TEST_F(SplashTest, TheFirstAnswerToTheMonitorCountsAsAReadySignal) {
  run({[this] { property(property_response_e::get, "/xk_splash/0/ready", "1"); },
       [this] { EXPECT_THAT(take("engine"), Not(IsEmpty())); }});
}

TEST_F(SplashTest, AReadySignalIsHandledAfterTheCallThatBringsIt) {
  run({[this] {
    ready(0);
    EXPECT_THAT(take(), IsEmpty());
  }});
}

TEST_F(SplashTest, OtherPropertiesAndValuesAreIgnored) {
  run({[this] {
         ready(2);
         property(property_response_e::changed, "/xk_splash/0/ready", "0");
         property(property_response_e::get, "/xk_splash/0/ready", "");
         property(property_response_e::changed, "/xk_splash/0/mode", "1");
         property(property_response_e::no_prop_error, "/xk_splash/0/ready", "1");
       },
       [this] { EXPECT_THAT(take(), IsEmpty()); }});
}

TEST_F(SplashTest, ARepeatedReadySignalOpensTheSplashAnew) {
  run({[this] { ready(0); }, [this] { forget(); }, [this] { ready(0); },
       [this] {
         EXPECT_THAT(take(),
                     ElementsAre("engine raw_out 0 -1 0 0 no-wait no-force", "engine close_decoder 5",
                                 "bus set /xk_splash/0/mode 'disable'",  //
                                 "engine open_decoder 4 \"videng-pnl8-dmabuf0\":0 ''", "hdmi set_source 0 -1 0",
                                 "engine raw_out 0 16 1920 1080 wait no-force", "hdmi set_output 0 100 sound moving",
                                 "bus set /xk_splash/0/info ''", "bus set /xk_splash/0/mode 'boot_splash_screen'"));
       }});
}

TEST_F(SplashTest, ADecoderThatCannotBeOpenedEndsTheAttempt) {
  run({[this] {
         engine->next_handle = -1;
         ready(0);
       },
       [this] { EXPECT_THAT(take(), ElementsAre("engine open_decoder 4 \"videng-pnl8-dmabuf0\":0 ''")); }});
  EXPECT_EQ(level_of("vgn_streamer_proxy::connect_xk_splash open_decoder failed videng-pnl8-dmabuf0"),
            spdlog::level::err);
}

TEST_F(SplashTest, ARefusedRawOutputStopsNothing) {
  run({[this] {
         engine->accepts = false;
         ready(0);
       },
       [this] { EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'boot_splash_screen'"); }});
}

TEST_F(SplashTest, NothingIsOpenedWithoutTheEngineUntilItComes) {
  run({[this] {
         engine->is_ready = false;
         ready(0);
       },
       [this] {
         EXPECT_THAT(take(), IsEmpty());
         engine->is_ready = true;
         proxy.ipc_event(control_lib::ve_ipc_up);
         EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'boot_splash_screen'");
       }});
}

TEST_F(SplashTest, AnEngineThatComesOpensTheSplashOfBothOutputs) {
  run({[this] {
         engine->is_ready = false;
         ready(0);
         ready(1);
       },
       [this] {
         engine->is_ready = true;
         proxy.ipc_event(control_lib::ve_ipc_up);
         EXPECT_THAT(take("bus"),
                     ElementsAre("bus set /xk_splash/0/info ''", "bus set /xk_splash/0/mode 'boot_splash_screen'",
                                 "bus set /xk_splash/1/info ''", "bus set /xk_splash/1/mode 'boot_splash_screen'"));
       }});
}

TEST_F(SplashTest, NothingIsOpenedWithoutTheStreamerDevice) {
  run({[this] {
         hdmi->is_in_use = false;
         ready(0);
       },
       [this] { EXPECT_THAT(take(), IsEmpty()); }});
}

TEST_F(SplashTest, TheEngineAloneOpensNothingBeforeAReadySignal) {
  run({[this] {
    proxy.ipc_event(control_lib::ve_ipc_up);
    EXPECT_THAT(take(), IsEmpty());
  }});
}

TEST_F(SplashTest, WhenTheEngineGoesBothSplashesAreClosed) {
  run({[this] {
         ready(0);
         ready(1);
       },
       [this] {
         forget();
         proxy.ipc_event(control_lib::ve_ipc_down);
         EXPECT_THAT(take(), ElementsAre("engine raw_out 0 -1 0 0 no-wait no-force", "engine close_decoder 5",
                                         "bus set /xk_splash/0/mode 'disable'",  //
                                         "engine raw_out 1 -1 0 0 no-wait no-force", "engine close_decoder 6",
                                         "bus set /xk_splash/1/mode 'disable'"));
       }});
}

TEST_F(SplashTest, AnUnknownEngineEventIsIgnored) {
  run({[this] {
    proxy.ipc_event(2);
    EXPECT_THAT(take(), IsEmpty());
  }});
}

TEST_F(SplashTest, OfA4kDisplayTheCoordinatorHearsAllAndTheRawOutputRunsAtFullHd) {
  run({[this] { ready(0); },
       [this] {
         unplug(0);
         coordinator_heard();
         forget();
         plug(0, timing_4k);
         const lines_t lines = take();
         EXPECT_THAT(lines, Contains("hdmi set_mode 0 3840 2160 594000"));
         EXPECT_THAT(lines, Contains("engine raw_out 0 16 1920 1080 wait no-force"));
         EXPECT_THAT(coordinator_heard(), ElementsAre("0 3840x2160@60"));
       }});
}

TEST_F(SplashTest, ASizeBeyondFullHdInEitherDirectionBecomesFullHd) {
  std::vector<step_t> steps;
  for (const control_lib::video_size_t size : {control_lib::video_size_t{1920, 1200}, {1921, 480}, {3840, 2160}}) {
    steps.push_back([this, size] {
      hdmi->outputs[1].size = size;
      ready(1);
    });
  }
  run(steps);
  lines_t raw_outs = take("engine");
  std::erase_if(raw_outs, [](const std::string& line) { return line.find(" wait ") == std::string::npos; });
  EXPECT_THAT(raw_outs,
              ElementsAre("engine raw_out 1 15 1920 1080 wait no-force", "engine raw_out 1 16 1920 1080 wait no-force",
                          "engine raw_out 1 17 1920 1080 wait no-force"));
}

TEST_F(SplashTest, ASmallerSizeStays) {
  run({[this] {
         hdmi->outputs[1].size = {1280, 720};
         ready(1);
       },
       [this] { EXPECT_THAT(take(), Contains("engine raw_out 1 15 1280 720 wait no-force")); }});
}

TEST_F(SplashTest, ARawOutputThatIsRightAlreadyIsNotTouched) {
  run({[this] { ready(0); },
       [this] {
         forget();
         plug(0, timing_1080p);
         EXPECT_THAT(take(),
                     ElementsAre("hdmi get_connection 0", "hdmi get_edid 0", "hdmi set_mode 0 1920 1080 148500",
                                 "bus set /xk_splash/0/info ''", "bus set /xk_splash/0/mode 'boot_splash_screen'"));
       }});
}

TEST_F(SplashTest, AnUnplugClosesTheSplash) {
  run({[this] { ready(0); },
       [this] {
         coordinator_heard();
         forget();
         log.clear();
         unplug(0);
         EXPECT_THAT(take(), ElementsAre("hdmi get_connection 0", "engine raw_out 0 -1 0 0 no-wait no-force",
                                         "engine close_decoder 5", "bus set /xk_splash/0/mode 'disable'"));
         EXPECT_TRUE(log.said("vgn_streamer_proxy::disconnect_pnl8_splash hdmi_index=0"));
         EXPECT_THAT(coordinator_heard(), ElementsAre("0 disconnected"));
       }});
}

TEST_F(SplashTest, APlugAfterAnUnplugOpensItAgainWithoutAnotherReadySignal) {
  run({[this] { ready(0); },
       [this] {
         unplug(0);
         forget();
         plug(0, timing_1080p);
         EXPECT_THAT(take(), Contains("engine raw_out 0 16 1920 1080 wait no-force"));
       }});
}

TEST_F(SplashTest, WithADisconnectedImageTheFirstOutputShowsIt) {
  put_disconnected_image();
  run({[this] { ready(0); }, [this] { EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'graphic'"); }});
}

TEST_F(SplashTest, WithADisconnectedImageTheSecondOutputSetsTheModeOfTheFirst) {
  put_disconnected_image();
  run({[this] { ready(1); },
       [this] {
         const lines_t lines = take("bus");
         EXPECT_THAT(lines, ElementsAre("bus set /xk_splash/0/info ''", "bus set /xk_splash/0/mode 'graphic'"));
       }});
}

TEST_F(SplashTest, ADisconnectedImageThatIsGoneAtTheNextStartIsForgotten) {
  put_disconnected_image();
  run({[this] {
         remove_disconnected_image();
         ready(0);
       },
       [this] { EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'graphic'"); },
       [this] { proxy.set_design_running(); }, [this] { proxy.set_design_stopped(); },
       [this] {
         forget();
         ready(0);
       },
       [this] { EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'boot_splash_screen'"); }});
}

/// The proxy was given a text for each output.
class SplashInfoTest : public StreamerProxyTest {
 protected:
  SplashInfoTest() : StreamerProxyTest({"first text", "second text"}) {}
};

TEST_F(SplashInfoTest, EachOutputShowsItsOwnText) {
  run({[this] {
         ready(0);
         ready(1);
       },
       [this] {
         EXPECT_THAT(take("bus"), IsSupersetOf({"bus set /xk_splash/0/info 'first text'",
                                                "bus set /xk_splash/1/info 'second text'"}));
       }});
}

TEST_F(SplashInfoTest, ADisconnectedImageComesWithTheTextOfTheFirstOutput) {
  put_disconnected_image();
  run({[this] { EXPECT_EQ(take("bus").back(), "bus set /xk_splash/0/info 'first text'"); }, [this] { ready(1); },
       [this] {
         EXPECT_THAT(take("bus"),
                     ElementsAre("bus set /xk_splash/0/info 'first text'", "bus set /xk_splash/0/mode 'graphic'"));
       }});
}

TEST_F(SplashTest, WhenTheStreamerSystemComesBackAnOpenSplashIsClosed) {
  run({[this] { ready(0); },
       [this] {
         forget();
         streamer_system_up();
         EXPECT_EQ(take().back(), "bus set /xk_splash/0/mode 'disable'");
       }});
}

TEST_F(SplashTest, ADesignThatStartsClosesTheSplashBeforeTheEngineLink) {
  run({[this] { ready(0); },
       [this] {
         forget();
         proxy.set_design_running();
       },
       [this] {
         EXPECT_THAT(take(), ElementsAre("engine raw_out 0 -1 0 0 no-wait no-force", "engine close_decoder 5",
                                         "bus set /xk_splash/0/mode 'disable'", "engine close_all", "hdmi stop"));
       }});
}

TEST_F(SplashTest, TheSplashProviderStaysReadyThroughADesign) {
  run({[this] { ready(0); }, [this] { proxy.set_design_running(); }, [this] { proxy.set_design_stopped(); },
       [this] {
         forget();
         proxy.ipc_event(control_lib::ve_ipc_up);
         EXPECT_THAT(take(), Contains("bus set /xk_splash/0/mode 'boot_splash_screen'"));
       }});
}

}  // namespace
