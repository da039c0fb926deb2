#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libs/control_lib/test/vgn_zsd_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class vgn_zsd_discovery : public vgn_zsd_fixture {
 protected:
  vgn_zsd_discovery() {
    interface->started().connect([this] { ++starts; });
  }

  std::vector<std::string> lines_about(const std::string& list) const {
    std::vector<std::string> found;
    for (const auto& line : log.lines()) {
      if (line.starts_with(list + "[")) {
        found.push_back(line);
      }
    }
    return found;
  }

  void discover() {
    system->device_added(streamer_device());
    interface->start();
  }

  int starts = 0;
};

TEST_F(vgn_zsd_discovery, tells_of_a_device_and_its_resources) {
  discover();
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::start", "system_added(/dev/vgnsys-0)",
                                       "get_resources() => input_ids=[1, 2, 3, 4] output_ids=[20, 21]",
                                       R"(hdmi_inputs[0] name="hdmi_in_0" index=0 id=1)",
                                       R"(hdmi_inputs[1] name="hdmi_in_1" index=1 id=2)",
                                       R"(inject_inputs[0] name="inject_0" index=0 id=3)",
                                       R"(inject_inputs[1] name="inject_1" index=1 id=4)",
                                       R"(hdmi_outputs[0] name="hdmi_out_0" index=0 id=20)",
                                       R"(hdmi_outputs[1] name="hdmi_out_1" index=1 id=21)"));
  EXPECT_EQ(interface->output_count(), 2);
  EXPECT_EQ(starts, 1);
}

TEST_F(vgn_zsd_discovery, sorts_inputs_by_kind) {
  driver.inputs = {{1, {.name = "encoder", .kind = 2}},   {2, {.name = "decoder", .kind = 3}},
                   {3, {.name = "mediacast", .kind = 5}}, {4, {.name = "lbr", .kind = 6}},
                   {5, {.name = "strange", .kind = 7}},   {6, {.name = "another", .kind = 3}}};
  discover();
  EXPECT_THAT(lines_about("decoder_inputs"), ElementsAre(R"(decoder_inputs[0] name="decoder" index=0 id=2)",
                                                         R"(decoder_inputs[1] name="another" index=1 id=6)"));
  EXPECT_THAT(lines_about("mediacast_inputs"), ElementsAre(R"(mediacast_inputs[0] name="mediacast" index=0 id=3)"));
  EXPECT_THAT(lines_about("v4l2_inputs"), ElementsAre(R"(v4l2_inputs[0] name="lbr" index=0 id=4)"));
  EXPECT_TRUE(log.said("Skipping input encoder"));
  EXPECT_TRUE(log.said("Skipping input strange"));
}

TEST_F(vgn_zsd_discovery, puts_capture_outputs_where_their_names_say) {
  driver.outputs = {{30, {.name = "frame_capture_out_2", .kind = 1}},
                    {31, {.name = "frame_capture_v4l2_out_0", .kind = 1}},
                    {32, {.name = "frame_capture_out_0", .kind = 1}}};
  discover();
  EXPECT_THAT(lines_about("capture_outputs"),
              ElementsAre(R"(capture_outputs[0] name="frame_capture_out_0" index=0 id=32)",
                          R"(capture_outputs[2] name="frame_capture_out_2" index=2 id=30)"));
  EXPECT_THAT(lines_about("v4l2_outputs"),
              ElementsAre(R"(v4l2_outputs[0] name="frame_capture_v4l2_out_0" index=0 id=31)"));
  EXPECT_EQ(interface->output_count(), 0);
}

TEST_F(vgn_zsd_discovery, goes_on_after_an_unknown_capture_output) {
  driver.outputs = {{30, {.name = "frame_grabber_0", .kind = 1}},
                    {31, {.name = "frame_capture_out_-1", .kind = 1}},
                    {32, {.name = "frame_capture_out_2000000000", .kind = 1}},
                    {35, {.name = "frame_capture_out_99999999999999", .kind = 1}},
                    {36, {.name = "frame_capture_v4l2_out_64", .kind = 1}},
                    {37, {.name = "frame_capture_out_", .kind = 1}},
                    {33, {.name = "writeback", .kind = 4}},
                    {34, {.name = "hdmi_out_0", .kind = 0}}};
  discover();
  EXPECT_TRUE(log.said("Unknown capture output: frame_grabber_0"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_out_-1"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_out_2000000000"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_out_99999999999999"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_v4l2_out_64"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_out_"));
  EXPECT_TRUE(log.said("Skipping output writeback"));
  EXPECT_EQ(interface->output_count(), 1);
  EXPECT_EQ(starts, 1);
}

TEST_F(vgn_zsd_discovery, goes_on_without_resources_that_cannot_be_read) {
  driver.failing = {vgn::input_request, vgn::output_request};
  discover();
  EXPECT_TRUE(log.said("get_input(1) failed"));
  EXPECT_TRUE(log.said("get_output(21) failed"));
  EXPECT_EQ(interface->output_count(), 0);
  EXPECT_TRUE(interface->active());
}

TEST_F(vgn_zsd_discovery, that_gets_no_list_of_resources_goes_on_with_none) {
  driver.failing = {vgn::resources_request};
  discover();
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::start", "system_added(/dev/vgnsys-0)",
                                       "get_resources failed!", "get_resources() => input_ids=[] output_ids=[]"));
  EXPECT_EQ(log.entries()[2].level, spdlog::level::err);
  EXPECT_EQ(interface->output_count(), 0);
  EXPECT_TRUE(interface->active());
  EXPECT_EQ(starts, 1);
}

TEST_F(vgn_zsd_discovery, initialises_the_mux_once_before_it_prints_the_resources) {
  discover();
  EXPECT_THAT(told_at_mux_init,
              ElementsAre(ElementsAre("vgn_zsd_interface_t::start", "system_added(/dev/vgnsys-0)",
                                      "get_resources() => input_ids=[1, 2, 3, 4] output_ids=[20, 21]")));
}

TEST_F(vgn_zsd_discovery, keeps_resources_of_kinds_without_a_list) {
  driver.inputs = {{1, {.name = "encoder", .kind = 2, .hw = 5}}};
  driver.outputs = {{30, {.name = "frame_grabber_0", .kind = 1}}, {33, {.name = "writeback", .kind = 4}}};
  discover();
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 30 <- 1 hw 5", "remove_source 33 <- 1 hw 5"));
  log.clear();
  observe_input(1);
  interface->link_changed(1, 1);
  interface->link_changed(30, 5);
  interface->link_changed(33, 5);
  EXPECT_THAT(events, ElementsAre("input 1 bits 16"));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=1, type=input_streamup observers=1",
                                       "vgn_zsd_interface_t::link_changed(id=30, type=output_connection observers=0",
                                       "vgn_zsd_interface_t::link_changed(id=33, type=output_connection observers=0"));
}

TEST_F(vgn_zsd_discovery, gives_a_place_to_the_first_of_two_capture_outputs_that_claim_it) {
  driver.outputs = {{30, {.name = "frame_capture_out_1", .kind = 1}},
                    {31, {.name = "frame_capture_out_01", .kind = 1}}};
  discover();
  EXPECT_THAT(lines_about("capture_outputs"),
              ElementsAre(R"(capture_outputs[1] name="frame_capture_out_1" index=1 id=30)"));
  EXPECT_TRUE(log.said("Unknown capture output: frame_capture_out_01"));
}

TEST_F(vgn_zsd_discovery, polls_until_the_device_goes) {
  const auto waited_for = [this] { return event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ADDED); };
  const int before = waited_for();
  discover();
  EXPECT_EQ(waited_for(), before + 2) << "the device's events and the poll";
  interface->stop();
  EXPECT_EQ(waited_for(), before);
  interface->start();
  EXPECT_EQ(waited_for(), before + 2);
  interface->system_removed(*system);
  EXPECT_EQ(waited_for(), before + 1) << "the device's events alone";
}

TEST_F(vgn_zsd_discovery, removes_every_source_from_every_output) {
  driver.inputs.erase(4);
  driver.inputs.erase(2);
  driver.outputs[22] = {.name = "frame_capture_out_0", .kind = 1};
  discover();
  EXPECT_THAT(driver.take_commands(),
              ElementsAre("remove_source 20 <- 1 hw 1", "remove_source 20 <- 3 hw 8", "remove_source 21 <- 1 hw 1",
                          "remove_source 21 <- 3 hw 8", "remove_source 22 <- 1 hw 1", "remove_source 22 <- 3 hw 8"));
}

TEST_F(vgn_zsd_discovery, bears_a_driver_that_refuses_to_remove_sources) {
  driver.failing = {vgn::remove_output_source_request};
  discover();
  EXPECT_EQ(starts, 1);
}

TEST_F(vgn_zsd_discovery, of_a_second_device_leaves_the_resources_of_the_first) {
  bring_up();
  observe_output(0);
  driver.outputs.clear();
  interface->system_added(*system);
  EXPECT_THAT(log.lines(),
              ElementsAre("system_added(/dev/vgnsys-0)", "system_added called again without sytem_removed"));
  EXPECT_EQ(interface->output_count(), 2);
  EXPECT_EQ(starts, 1);
  interface->link_changed(20, 5);
  EXPECT_THAT(events, ElementsAre("output 20 bits 1"));
}

TEST_F(vgn_zsd_discovery, has_made_the_interface_active_when_it_tells_of_the_start) {
  bool was_active = false;
  interface->started().connect([this, &was_active] { was_active = interface->active(); });
  EXPECT_FALSE(interface->active());
  discover();
  EXPECT_TRUE(was_active);
}

TEST_F(vgn_zsd_discovery, forgets_all_when_the_device_goes_and_starts_anew_when_it_is_back) {
  bring_up();
  observe_output(0);
  system->device_removed(streamer_device());
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::system_removed(/dev/vgnsys-0)"));
  EXPECT_EQ(interface->output_count(), -1);
  EXPECT_FALSE(interface->active());

  system->device_added(streamer_device());
  EXPECT_EQ(starts, 2);
  EXPECT_EQ(interface->output_count(), 2);
  interface->link_changed(20, 5);
  EXPECT_THAT(events, IsEmpty()) << "an observer has outlived its output";
}

TEST_F(vgn_zsd_discovery, stops_and_starts_again) {
  bring_up();
  interface->stop();
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::stop done"));
  EXPECT_EQ(interface->output_count(), -1);
  EXPECT_FALSE(interface->active());
  EXPECT_FALSE(driver.is_open);
  interface->start();
  EXPECT_EQ(starts, 2);
  EXPECT_EQ(interface->output_count(), 2);
}

class link_changed : public vgn_zsd_fixture {
 protected:
  link_changed() {
    bring_up();
    observe_output(0);
    observe_input(1);
    forget();
  }
};

TEST_F(link_changed, is_raised_on_outputs_with_the_bits_of_the_event) {
  for (const uint32_t type : {5U, 6U, 7U, 8U}) {
    interface->link_changed(20, type);
  }
  EXPECT_THAT(events, ElementsAre("output 20 bits 1", "output 20 bits 2", "output 20 bits 4", "output 20 bits 8"));
}

TEST_F(link_changed, is_raised_on_inputs_with_the_bits_of_the_event) {
  for (const uint32_t type : {1U, 2U, 3U}) {
    interface->link_changed(1, type);
  }
  EXPECT_THAT(events, ElementsAre("input 1 bits 16", "input 1 bits 32", "input 1 bits 64"));
}

TEST_F(link_changed, is_told_in_one_line_with_the_count_of_observers) {
  interface->link_changed(20, 5);
  interface->link_changed(21, 6);
  interface->link_changed(1, 3);
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=20, type=output_connection observers=1",
                                       "vgn_zsd_interface_t::link_changed(id=21, type=output_disconnection observers=0",
                                       "vgn_zsd_interface_t::link_changed(id=1, type=input_avi_infoframe observers=1"));
}

TEST_F(link_changed, of_a_link_alone_only_tells) {
  interface->link_changed(1, 0);
  interface->link_changed(20, 4);
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=1, type=input_link observers=1",
                                       "vgn_zsd_interface_t::link_changed(id=20, type=output_link observers=1"));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(link_changed, of_an_id_that_nothing_has_is_ignored) {
  interface->link_changed(99, 5);
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=99, type=output_connection ignoring"));
}

TEST_F(link_changed, of_an_outputs_event_with_an_inputs_id_is_ignored) {
  interface->link_changed(1, 5);
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=1, type=output_connection ignoring"));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(link_changed, of_an_unknown_type_is_ignored) {
  interface->link_changed(20, 9);
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::link_changed(id=20, type=(unknown) ignoring"));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(link_changed, is_not_raised_on_an_input_that_the_mux_blocks) {
  blocked_inputs = {0};
  interface->link_changed(1, 1);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(link_changed, comes_from_the_driver) {
  driver.tell(5, 20);
  ASSERT_TRUE(test_support::loop_until(loop.base(), [this] { return !events.empty(); }));
  EXPECT_THAT(events, ElementsAre("output 20 bits 1"));
}

}  // namespace
