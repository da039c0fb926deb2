#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "libs/control_lib/test/vgn_zsd_fixture.h"
#include "test_support/fake_udev.h"
#include "zyl/platform.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class vgn_zsd_poll : public vgn_zsd_fixture {
 protected:
  vgn_zsd_poll() { set_model("part-106"); }
  ~vgn_zsd_poll() override { zyl::platform_t::install(nullptr); }

  void set_model(const std::string& part) {
    platform = zyl::platform_t([&part](const std::string& path) {
      return std::optional<std::string>(path.ends_with("part_number") ? part : "");
    });
    zyl::platform_t::install(&platform);
  }

  void watch() {
    bring_up();
    observe_input(1);
    observe_input(2);
    observe_output(0);
    observe_output(1);
  }

  test_support::fake_udev_t machine;
  zyl::platform_t platform;
};

TEST_F(vgn_zsd_poll, finds_nothing_new_in_what_it_found_at_the_start) {
  driver.inputs[1] = {.name = "hdmi_in_0",
                      .kind = 0,
                      .hw = 1,
                      .connected = true,
                      .authentication = 2,
                      .encryption = 1,
                      .audio_channels = 2,
                      .active_audio = 1};
  driver.outputs[20].authentication = 1;
  watch();
  interface->on_poll_event();
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(vgn_zsd_poll, raises_a_change_of_an_inputs_connection_once) {
  watch();
  driver.inputs[2].connected = true;
  interface->on_poll_event();
  interface->on_poll_event();
  EXPECT_THAT(log.lines(),
              ElementsAre("vgn_zsd_interface_t::on_poll_event() input_index=1 input_id=2 connection status "
                          "changed 0 -> 1"));
  EXPECT_THAT(events, ElementsAre("input 2 bits 1"));
}

TEST_F(vgn_zsd_poll, tells_each_change_of_content_protection_and_raises_it_once) {
  watch();
  driver.inputs[1].authentication = 3;
  driver.inputs[1].encryption = 2;
  interface->on_poll_event();
  EXPECT_THAT(log.lines(),
              ElementsAre("vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 changed vgn_hdcp_auth_sts_off "
                          "-> vgn_hdcp_auth_sts_22",
                          "vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 changed vgn_hdcp_enc_sts_off "
                          "-> vgn_hdcp_enc_sts_success"));
  EXPECT_THAT(events, ElementsAre("input 1 bits 2"));
}

TEST_F(vgn_zsd_poll, raises_a_change_of_encryption_alone) {
  watch();
  driver.inputs[1].encryption = 3;
  driver.outputs[20].encryption = 1;
  interface->on_poll_event();
  interface->on_poll_event();
  EXPECT_THAT(log.lines(),
              ElementsAre("vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 changed vgn_hdcp_enc_sts_off "
                          "-> vgn_hdcp_enc_sts_failure",
                          "vgn_zsd_interface_t::on_poll_event() Output 0 changed vgn_hdcp_enc_sts_off -> "
                          "vgn_hdcp_enc_sts_busy"));
  EXPECT_THAT(events, ElementsAre("input 1 bits 2", "output 20 bits 16"));
}

TEST_F(vgn_zsd_poll, raises_a_change_of_audio_channels) {
  watch();
  driver.inputs[1].audio_channels = 8;
  interface->on_poll_event();
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 audio channels "
                                       "changed 0 -> 8"));
  EXPECT_THAT(events, ElementsAre("input 1 bits 4"));
}

TEST_F(vgn_zsd_poll, raises_active_audio_behind_all_else_and_with_its_bits) {
  watch();
  driver.inputs[1].connected = true;
  driver.inputs[1].authentication = 1;
  driver.inputs[1].audio_channels = 2;
  driver.inputs[1].active_audio = 1;
  interface->on_poll_event();
  EXPECT_EQ(log.lines().back(),
            "vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 active audio changed 0 -> 1");
  EXPECT_THAT(events, ElementsAre("input 1 bits 7", "input 1 bits 15"));
}

TEST_F(vgn_zsd_poll, raises_active_audio_alone) {
  watch();
  driver.inputs[1].active_audio = 1;
  interface->on_poll_event();
  EXPECT_THAT(events, ElementsAre("input 1 bits 8"));
}

TEST_F(vgn_zsd_poll, raises_a_change_of_an_outputs_content_protection) {
  watch();
  driver.outputs[21].authentication = 4;
  interface->on_poll_event();
  interface->on_poll_event();
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::on_poll_event() Output 1 changed vgn_hdcp_auth_sts_off -> "
                                       "vgn_hdcp_auth_sts_failure"));
  EXPECT_THAT(events, ElementsAre("output 21 bits 16"));
}

TEST_F(vgn_zsd_poll, that_cannot_read_changes_nothing) {
  driver.inputs[1].connected = true;
  driver.inputs[1].authentication = 2;
  driver.inputs[1].active_audio = 1;
  watch();
  driver.failing = {vgn::hdcp_status_request, vgn::input_connected_request, vgn::audio_channels_request,
                    vgn::active_audio_request};
  interface->on_poll_event();
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(vgn_zsd_poll, does_nothing_without_a_device) {
  watch();
  interface->stop();
  forget();
  interface->on_poll_event();
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(vgn_zsd_poll, sees_the_cable_of_a_blocked_input_by_its_connector) {
  watch();
  blocked_inputs = {0, 1};
  machine.write("/sys/class/gpio/gpio335/value", "1\n");
  machine.write("/sys/class/gpio/gpio334/value", "0\n");
  driver.inputs[1].authentication = 2;
  driver.inputs[1].audio_channels = 2;
  driver.inputs[1].active_audio = 1;
  driver.inputs[2].connected = true;
  interface->on_poll_event();
  EXPECT_THAT(events, ElementsAre("input 1 bits 1"));
  EXPECT_THAT(log.lines(), IsEmpty()) << "the device was asked about an input that it does not see";
  machine.write("/sys/class/gpio/gpio334/value", "1\n");
  interface->on_poll_event();
  EXPECT_THAT(events, ElementsAre("input 1 bits 1", "input 2 bits 1"));
}

TEST_F(vgn_zsd_poll, sees_the_cables_of_blocked_inputs_of_model_137_by_the_receiver_and_gpio) {
  set_model("part-137");
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Disabled\n");
  machine.write("/sys/class/gpio/gpio325/value", "0\n");
  watch();
  blocked_inputs = {0, 1};
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Enabled\n");
  machine.write("/sys/class/gpio/gpio325/value", "1\n");
  interface->on_poll_event();
  EXPECT_THAT(events, ElementsAre("input 1 bits 1", "input 2 bits 1"));
}

TEST_F(vgn_zsd_poll, sees_all_cables_of_model_137_by_their_connectors) {
  set_model("part-137");
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Disabled\n");
  machine.write("/sys/class/gpio/gpio325/value", "1\n");
  watch();
  driver.inputs[2].connected = false;
  interface->on_poll_event();
  EXPECT_THAT(events, IsEmpty());
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Enabled\n");
  driver.inputs[1].audio_channels = 2;
  interface->on_poll_event();
  EXPECT_THAT(log.lines(),
              ElementsAre("vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 connection status "
                          "changed 0 -> 1",
                          "vgn_zsd_interface_t::on_poll_event() input_index=0 input_id=1 audio channels "
                          "changed 0 -> 2"));
  EXPECT_THAT(events, ElementsAre("input 1 bits 5"));
}

}  // namespace
