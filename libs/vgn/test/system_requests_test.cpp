#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "libs/vgn/test/system_fixture.h"
#include "test_support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class streamer_requests : public system_fixture {
 protected:
  streamer_requests() {
    open();
    driver.inputs[3] = {.name = "hdmi_in_0", .kind = 4, .hw = 1};
    driver.outputs[20] = {.name = "hdmi_out_0", .kind = 0};
  }
};

TEST_F(streamer_requests, list_the_resources) {
  driver.inputs[9] = {.name = "inject_0", .kind = 1};
  std::vector<uint32_t> inputs;
  std::vector<uint32_t> outputs;
  ASSERT_TRUE(system.get_resources(inputs, outputs));
  EXPECT_THAT(inputs, ElementsAre(3U, 9U));
  EXPECT_THAT(outputs, ElementsAre(20U));
}

TEST_F(streamer_requests, list_no_resources_with_a_second_call_for_empty_vectors) {
  driver.inputs.clear();
  driver.outputs.clear();
  std::vector<uint32_t> inputs{1};
  std::vector<uint32_t> outputs{2};
  EXPECT_TRUE(system.get_resources(inputs, outputs));
  EXPECT_THAT(inputs, IsEmpty());
  EXPECT_THAT(outputs, IsEmpty());
  EXPECT_EQ(driver.resource_calls, 2U);
}

TEST_F(streamer_requests, shrink_the_list_to_what_the_second_call_gave) {
  driver.claimed_inputs = 7;
  std::vector<uint32_t> inputs;
  std::vector<uint32_t> outputs;
  ASSERT_TRUE(system.get_resources(inputs, outputs));
  EXPECT_THAT(inputs, ElementsAre(3U));
}

TEST_F(streamer_requests, do_not_believe_a_driver_that_claims_millions_of_resources) {
  driver.claimed_inputs = 0xFFFFFFF0;
  std::vector<uint32_t> inputs{1};
  std::vector<uint32_t> outputs{2};
  EXPECT_FALSE(system.get_resources(inputs, outputs));
  EXPECT_THAT(inputs, ElementsAre(1U));
  EXPECT_THAT(outputs, ElementsAre(2U));
}

TEST_F(streamer_requests, describe_an_input) {
  vgn::resource_t resource;
  ASSERT_TRUE(system.get_input(3, resource));
  EXPECT_EQ(resource.name, "hdmi_in_0");
  EXPECT_EQ(resource.kind, 4U);
  EXPECT_EQ(resource.hw_source, 1U);
}

TEST_F(streamer_requests, describe_an_output) {
  driver.outputs[21] = {.name = "frame_capture_out_0", .kind = 1};
  vgn::resource_t resource;
  ASSERT_TRUE(system.get_output(21, resource));
  EXPECT_EQ(resource.name, "frame_capture_out_0");
  EXPECT_EQ(resource.kind, 1U);
}

TEST_F(streamer_requests, read_a_name_that_fills_its_field) {
  const std::string longest(32, 'n');
  driver.inputs[4] = {.name = longest};
  vgn::resource_t resource;
  ASSERT_TRUE(system.get_input(4, resource));
  EXPECT_EQ(resource.name, longest);
}

TEST_F(streamer_requests, read_an_edid_of_any_size) {
  for (const size_t size : {0U, 1U, 128U, 384U}) {
    std::vector<uint8_t> plugged(size);
    std::iota(plugged.begin(), plugged.end(), uint8_t{1});
    driver.outputs[20].edid = plugged;
    std::vector<uint8_t> edid{7};
    EXPECT_TRUE(system.get_edid(20, edid));
    EXPECT_EQ(edid, plugged);
  }
}

TEST_F(streamer_requests, keep_only_the_edid_bytes_that_the_second_call_gave) {
  driver.outputs[20].edid = {1, 2, 3};
  driver.claimed_edid_size = 256;
  std::vector<uint8_t> edid;
  ASSERT_TRUE(system.get_edid(20, edid));
  EXPECT_THAT(edid, ElementsAre(1, 2, 3));
}

TEST_F(streamer_requests, do_not_believe_a_driver_that_claims_more_than_256_edid_blocks) {
  driver.claimed_edid_size = 256 * 128 + 1;
  std::vector<uint8_t> edid{7};
  EXPECT_FALSE(system.get_edid(20, edid));
  EXPECT_THAT(edid, ElementsAre(7));
}

TEST_F(streamer_requests, set_the_timing_as_it_is) {
  const vgn::timing_t timing{594000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5};
  EXPECT_TRUE(system.set_timing(20, timing));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_timing 20 594000 3840 2160"));
  EXPECT_EQ(driver.last_timing.h_total, 4400U);
  EXPECT_EQ(driver.last_timing.v_sync_end, 2178U);
  EXPECT_EQ(driver.last_timing.flags, 5U);
}

TEST_F(streamer_requests, set_the_audio_clock_of_the_timing) {
  EXPECT_TRUE(system.set_audio_clock(20, 48000, 594000));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_audio_clock 20 6144 594000 148500"));
}

TEST_F(streamer_requests, set_and_remove_a_source_by_input_output_and_hardware_number) {
  EXPECT_TRUE(system.set_output_source(20, 3, 1));
  EXPECT_TRUE(system.remove_output_source(20, 3, 1));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 1", "remove_source 20 <- 3 hw 1"));
}

TEST_F(streamer_requests, set_mute_freeze_and_mux_mode) {
  EXPECT_TRUE(system.set_output_mute(20, true));
  EXPECT_TRUE(system.set_output_freeze(20, true));
  EXPECT_TRUE(system.set_output_freeze(20, false));
  EXPECT_TRUE(system.set_hdmi_mux_input_mode(3));
  EXPECT_THAT(driver.take_commands(), ElementsAre("mute 20 1", "freeze 20 1", "freeze 20 0", "mux_mode 3"));
}

TEST_F(streamer_requests, read_back_what_requests_of_write_direction_answer) {
  driver.inputs[3].connected = true;
  driver.inputs[3].audio_channels = 8;
  driver.inputs[3].active_audio = 1;
  driver.outputs[20].connected = true;
  bool input_connected = false;
  bool output_connected = false;
  uint32_t channels = 0;
  uint32_t active_audio = 0;
  EXPECT_TRUE(system.get_input_connected(3, input_connected));
  EXPECT_TRUE(system.get_output_connected(20, output_connected));
  EXPECT_TRUE(system.get_audio_channels(3, channels));
  EXPECT_TRUE(system.get_active_audio(3, active_audio));
  EXPECT_TRUE(input_connected);
  EXPECT_TRUE(output_connected);
  EXPECT_EQ(channels, 8U);
  EXPECT_EQ(active_audio, 1U);
}

TEST_F(streamer_requests, read_the_content_protection_of_inputs_and_outputs) {
  driver.inputs[3].authentication = 3;
  driver.inputs[3].encryption = 2;
  driver.outputs[20].authentication = 4;
  vgn::hdcp_status_t status;
  ASSERT_TRUE(system.get_hdcp_status(3, status));
  EXPECT_EQ(status.authentication, vgn::hdcp_auth_e::hdcp_22);
  EXPECT_EQ(status.encryption, vgn::hdcp_enc_e::success);
  ASSERT_TRUE(system.get_hdcp_status(20, status));
  EXPECT_EQ(status.authentication, vgn::hdcp_auth_e::failure);
}

TEST_F(streamer_requests, that_fail_leave_their_results_as_they_were) {
  driver.failing = {vgn::resources_request,        vgn::input_request,          vgn::output_request,
                    vgn::read_edid_request,        vgn::hdcp_status_request,    vgn::input_connected_request,
                    vgn::output_connected_request, vgn::audio_channels_request, vgn::active_audio_request};
  std::vector<uint32_t> inputs{1};
  std::vector<uint32_t> outputs{2};
  vgn::resource_t resource{.name = "kept"};
  std::vector<uint8_t> edid{7};
  vgn::hdcp_status_t status{vgn::hdcp_auth_e::busy, vgn::hdcp_enc_e::busy};
  bool connected = true;
  uint32_t value = 5;

  EXPECT_FALSE(system.get_resources(inputs, outputs));
  EXPECT_FALSE(system.get_input(3, resource));
  EXPECT_FALSE(system.get_output(20, resource));
  EXPECT_FALSE(system.get_edid(20, edid));
  EXPECT_FALSE(system.get_hdcp_status(3, status));
  EXPECT_FALSE(system.get_input_connected(3, connected));
  EXPECT_FALSE(system.get_output_connected(20, connected));
  EXPECT_FALSE(system.get_audio_channels(3, value));
  EXPECT_FALSE(system.get_active_audio(3, value));

  EXPECT_THAT(inputs, ElementsAre(1U));
  EXPECT_THAT(outputs, ElementsAre(2U));
  EXPECT_EQ(resource.name, "kept");
  EXPECT_THAT(edid, ElementsAre(7));
  EXPECT_EQ(status.authentication, vgn::hdcp_auth_e::busy);
  EXPECT_TRUE(connected);
  EXPECT_EQ(value, 5U);
}

TEST_F(streamer_requests, that_fail_in_their_second_call_leave_their_results_as_they_were) {
  driver.inputs[9] = {.name = "inject_0", .kind = 1};
  driver.outputs[20].edid = {1, 2, 3};
  driver.failing_call = {{vgn::resources_request, 2}, {vgn::read_edid_request, 2}};
  std::vector<uint32_t> inputs{1};
  std::vector<uint32_t> outputs{2};
  std::vector<uint8_t> edid{7};
  EXPECT_FALSE(system.get_resources(inputs, outputs));
  EXPECT_FALSE(system.get_edid(20, edid));
  EXPECT_THAT(inputs, ElementsAre(1U));
  EXPECT_THAT(outputs, ElementsAre(2U));
  EXPECT_THAT(edid, ElementsAre(7));
  EXPECT_EQ(driver.resource_calls, 1U) << "the first call has not been served";
}

TEST_F(streamer_requests, that_change_something_and_fail_are_errors_in_the_log) {
  const test_support::log_capture_t log("drv_vgnstreamer", spdlog::level::err);
  driver.failing = {vgn::set_timing_request,        vgn::set_audio_clock_request,
                    vgn::set_output_source_request, vgn::remove_output_source_request,
                    vgn::set_output_mute_request,   vgn::set_hdmi_mux_input_mode_request,
                    vgn::set_output_freeze_request};
  EXPECT_FALSE(system.set_timing(20, {}));
  EXPECT_FALSE(system.set_audio_clock(20, 48000, 148500));
  EXPECT_FALSE(system.set_output_source(20, 3, 1));
  EXPECT_FALSE(system.remove_output_source(20, 3, 1));
  EXPECT_FALSE(system.set_output_mute(20, true));
  EXPECT_FALSE(system.set_hdmi_mux_input_mode(3));
  EXPECT_FALSE(system.set_output_freeze(20, true));
  EXPECT_THAT(log.lines(),
              ElementsAre("ioctl set_timing failed errno=5", "ioctl set_audio_clock failed errno=5",
                          "ioctl set_output_source failed errno=5", "ioctl remove_output_source failed errno=5",
                          "ioctl set_output_mute failed errno=5", "ioctl set_hdmi_mux_input_mode failed errno=5",
                          "ioctl set_output_freeze failed errno=5"));
}

TEST_F(streamer_requests, that_ask_once_and_fail_are_errors_in_the_log) {
  const test_support::log_capture_t log("drv_vgnstreamer", spdlog::level::err);
  driver.failing = {vgn::resources_request, vgn::input_request, vgn::output_request, vgn::read_edid_request,
                    vgn::output_connected_request};
  std::vector<uint32_t> ids;
  vgn::resource_t resource;
  std::vector<uint8_t> edid;
  bool connected = false;
  system.get_resources(ids, ids);
  system.get_input(3, resource);
  system.get_output(20, resource);
  system.get_edid(20, edid);
  system.get_output_connected(20, connected);
  EXPECT_THAT(log.lines(), ElementsAre("ioctl get_resources failed errno=5", "ioctl get_input failed errno=5",
                                       "ioctl get_output failed errno=5", "ioctl get_edid failed errno=5",
                                       "ioctl get_output_connected failed errno=5"));
}

TEST_F(streamer_requests, that_are_polled_or_clear_a_route_fail_in_silence) {
  const test_support::log_capture_t log("drv_vgnstreamer");
  driver.failing = {vgn::hdcp_status_request, vgn::input_connected_request, vgn::audio_channels_request,
                    vgn::active_audio_request, vgn::remove_output_source_request};
  vgn::hdcp_status_t status;
  bool connected = false;
  uint32_t value = 0;
  EXPECT_FALSE(system.get_hdcp_status(3, status));
  EXPECT_FALSE(system.get_input_connected(3, connected));
  EXPECT_FALSE(system.get_audio_channels(3, value));
  EXPECT_FALSE(system.get_active_audio(3, value));
  EXPECT_FALSE(system.clear_output_source(20, 3, 1));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(streamer_requests, fail_without_a_device) {
  system.stop();
  bool connected = true;
  EXPECT_FALSE(system.get_output_connected(20, connected));
  EXPECT_FALSE(system.set_output_mute(20, true));
  EXPECT_TRUE(connected);
}

}  // namespace
