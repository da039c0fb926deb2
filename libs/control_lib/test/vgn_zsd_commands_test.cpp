#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libs/control_lib/test/vgn_zsd_fixture.h"

namespace {

using control_lib::video_size_t;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr edid_lib::vid_timing_t full_hd{148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr edid_lib::vid_timing_t ultra_hd{594000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5};

class vgn_zsd_commands : public vgn_zsd_fixture {
 protected:
  vgn_zsd_commands() {
    bring_up();
    observe_output(0);
  }

  /// An enabled output without history.
  void enable() {
    interface->enable_hdmi_output(0, true, false);
    forget();
  }
};

using enable_hdmi_output = vgn_zsd_commands;

TEST_F(enable_hdmi_output, acts_on_the_first_call_either_way) {
  EXPECT_TRUE(interface->enable_hdmi_output(0, true, false));
  EXPECT_TRUE(interface->enable_hdmi_output(1, false, false));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::enable_hdmi_output(0) previous=unknown new=enable",
                                       "vgn_zsd_interface_t::enable_hdmi_output(1) previous=unknown new=disable"));
  EXPECT_THAT(events, ElementsAre("output 20 bits 32"));
}

TEST_F(enable_hdmi_output, does_nothing_when_nothing_changes) {
  enable();
  EXPECT_TRUE(interface->enable_hdmi_output(0, true, false));
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(enable_hdmi_output, acts_by_force_when_nothing_changes) {
  enable();
  EXPECT_TRUE(interface->enable_hdmi_output(0, true, true));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::enable_hdmi_output(0) previous=enable new=enable"));
  EXPECT_THAT(events, ElementsAre("output 20 bits 32"));
}

TEST_F(enable_hdmi_output, takes_the_source_from_an_output_that_is_turned_off) {
  interface->set_output(0, 3, false, false);
  forget();
  EXPECT_TRUE(interface->enable_hdmi_output(0, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8"));
  interface->enable_hdmi_output(0, false, true);
  EXPECT_THAT(driver.take_commands(), IsEmpty());
}

TEST_F(enable_hdmi_output, is_false_when_the_source_will_not_go) {
  interface->set_output(0, 3, false, false);
  driver.failing = {vgn::remove_output_source_request};
  EXPECT_FALSE(interface->enable_hdmi_output(0, false, false));
}

TEST_F(enable_hdmi_output, does_not_program_a_mode_that_was_set_before) {
  interface->set_output_mode(0, full_hd);
  forget();
  interface->enable_hdmi_output(0, true, false);
  EXPECT_THAT(driver.take_commands(), IsEmpty());
}

using set_output_mode = vgn_zsd_commands;

TEST_F(set_output_mode, programs_clock_then_timing_of_an_enabled_output) {
  enable();
  EXPECT_TRUE(interface->set_output_mode(0, ultra_hd));
  EXPECT_THAT(driver.take_commands(),
              ElementsAre("set_audio_clock 20 6144 594000 148500", "set_timing 20 594000 3840 2160"));
  EXPECT_EQ(driver.last_timing.h_sync_start, 4016U);
  EXPECT_EQ(driver.last_timing.h_sync_end, 4104U);
  EXPECT_EQ(driver.last_timing.h_total, 4400U);
  EXPECT_EQ(driver.last_timing.v_sync_start, 2168U);
  EXPECT_EQ(driver.last_timing.v_sync_end, 2178U);
  EXPECT_EQ(driver.last_timing.v_total, 2250U);
  EXPECT_EQ(driver.last_timing.flags, 5U);
}

TEST_F(set_output_mode, only_remembers_the_timing_of_an_output_that_is_not_enabled) {
  EXPECT_TRUE(interface->set_output_mode(0, ultra_hd));
  EXPECT_THAT(driver.take_commands(), IsEmpty());
  video_size_t size;
  EXPECT_TRUE(interface->get_output_mode(0, size));
  EXPECT_EQ(size, (video_size_t{3840, 2160}));
}

TEST_F(set_output_mode, raises_its_event_only_when_the_timing_changes) {
  interface->set_output_mode(0, full_hd);
  interface->set_output_mode(0, full_hd);
  interface->set_output_mode(0, ultra_hd);
  EXPECT_THAT(events, ElementsAre("output 20 bits 64", "output 20 bits 64"));
}

TEST_F(set_output_mode, raises_its_event_before_it_remembers_the_timing) {
  std::vector<int> widths_seen;
  interface->add_output_observer(0, [this, &widths_seen](uint32_t, uint32_t) {
    video_size_t size;
    interface->get_output_mode(0, size);
    widths_seen.push_back(size.width);
  });
  interface->set_output_mode(0, full_hd);
  interface->set_output_mode(0, ultra_hd);
  EXPECT_THAT(widths_seen, ElementsAre(0, 1920));
}

TEST_F(set_output_mode, programs_the_same_timing_again) {
  enable();
  interface->set_output_mode(0, full_hd);
  interface->set_output_mode(0, full_hd);
  EXPECT_THAT(driver.take_commands(), SizeIs(4));
}

TEST_F(set_output_mode, is_false_when_the_driver_refuses) {
  enable();
  driver.failing = {vgn::set_audio_clock_request};
  EXPECT_FALSE(interface->set_output_mode(0, full_hd));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_timing 20 148500 1920 1080"));
}

using set_output = vgn_zsd_commands;

TEST_F(set_output, routes_an_input_and_enables_the_output) {
  EXPECT_TRUE(interface->set_output(0, 3, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 8"));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::set_output(inject_0 -> hdmi_out_0, muted=false, "
                                       "freeze=false remove_output_source=no set_output_source=yes ",
                                       "vgn_zsd_interface_t::enable_hdmi_output(0) previous=unknown new=enable"));
}

TEST_F(set_output, to_what_is_routed_already_changes_nothing) {
  interface->set_output(0, 3, true, true);
  forget();
  EXPECT_TRUE(interface->set_output(0, 3, true, true));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::set_output(inject_0 -> hdmi_out_0, muted=true, "
                                       "freeze=true remove_output_source=no set_output_source=no "));
  EXPECT_THAT(driver.take_commands(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(set_output, removes_the_old_source_before_it_sets_the_new_one) {
  interface->set_output(0, 3, false, false);
  forget();
  EXPECT_TRUE(interface->set_output(0, 4, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8", "set_source 20 <- 4 hw 9"));
  EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::set_output(inject_1 -> hdmi_out_0, muted=false, "
                                       "freeze=false remove_output_source=yes set_output_source=yes "));
}

TEST_F(set_output, to_no_input_removes_the_source) {
  for (const int none : {-1, 99}) {
    interface->set_output(0, 3, false, false);
    forget();
    EXPECT_TRUE(interface->set_output(0, none, false, false));
    EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8"));
    EXPECT_THAT(log.lines(), ElementsAre("vgn_zsd_interface_t::set_output(none -> hdmi_out_0, muted=false, "
                                         "freeze=false remove_output_source=yes set_output_source=no "));
  }
}

TEST_F(set_output, takes_id_0_for_an_input_like_any_other) {
  system->device_removed(streamer_device());
  driver.inputs[0] = {.name = "inject_z", .kind = 1, .hw = 7};
  bring_up();
  EXPECT_TRUE(interface->set_output(0, 0, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 0 hw 7"));
}

TEST_F(set_output, sends_mute_and_freeze_only_when_they_change) {
  interface->set_output(0, 3, false, false);
  forget();
  interface->set_output(0, 3, true, false);
  interface->set_output(0, 3, true, true);
  interface->set_output(0, 3, false, true);
  EXPECT_THAT(driver.take_commands(), ElementsAre("mute 20 1", "freeze 20 1", "mute 20 0"));
}

TEST_F(set_output, in_its_short_form_keeps_mute_and_freeze) {
  interface->set_output(0, 3, true, true);
  forget();
  EXPECT_TRUE(interface->set_output(0, 4));
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8", "set_source 20 <- 4 hw 9"));
}

TEST_F(set_output, tells_of_a_connection_that_has_changed_unseen) {
  enable();
  driver.outputs[20].connected = true;
  interface->set_output(0, 3, false, false);
  EXPECT_EQ(log.lines().back(), "vgn_zsd_interface_t::set_output() Output 0 connection status changed 0 -> 1");
  forget();
  interface->set_output(0, 3, false, false);
  EXPECT_THAT(log.lines(), SizeIs(1)) << "the connection was told a second time";
}

TEST_F(set_output, that_the_driver_refuses_can_be_tried_again) {
  driver.failing = {vgn::set_output_source_request, vgn::set_output_mute_request};
  EXPECT_FALSE(interface->set_output(0, 3, true, false));
  driver.failing.clear();
  EXPECT_TRUE(interface->set_output(0, 3, true, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 8", "mute 20 1"));
}

TEST_F(set_output, that_cannot_remove_the_old_source_is_false_and_still_sets_the_new_one) {
  interface->set_output(0, 3, false, false);
  forget();
  driver.failing = {vgn::remove_output_source_request};
  EXPECT_FALSE(interface->set_output(0, 4, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 4 hw 9"));
  EXPECT_FALSE(interface->set_output(0, -1, false, false));
  EXPECT_TRUE(interface->set_output(0, -1, false, false)) << "a source that would not go has been remembered";
}

TEST_F(set_output, mutes_before_it_freezes) {
  interface->set_output(0, 3, true, true);
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 8", "mute 20 1", "freeze 20 1"));
}

TEST_F(set_output, tells_of_no_change_of_a_display_that_was_there_at_the_start) {
  system->device_removed(streamer_device());
  driver.outputs[20].connected = true;
  bring_up();
  interface->set_output(0, 3, false, false);
  EXPECT_THAT(log.lines(), SizeIs(2)) << "more than the route and the enabling were told";
}

using set_output_source = vgn_zsd_commands;

TEST_F(set_output_source, to_no_input_blanks_the_output) {
  interface->set_output(0, 3, false, false);
  forget();
  EXPECT_TRUE(interface->set_output_source(0, -1, 0));
  EXPECT_TRUE(interface->set_output_source(0, -1, 0));
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8"));
}

TEST_F(set_output_source, sets_an_input_at_the_number_given) {
  EXPECT_TRUE(interface->set_output_source(0, 3, 77));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 77"));
  interface->set_output(0, 3, false, false);
  EXPECT_THAT(driver.take_commands(), IsEmpty()) << "the source that was set has been forgotten";
}

TEST_F(set_output_source, that_the_driver_refuses_leaves_the_source_as_it_was) {
  interface->set_output(0, 3, false, false);
  forget();
  driver.failing = {vgn::set_output_source_request};
  EXPECT_FALSE(interface->set_output_source(0, 4, 9));
  driver.failing.clear();
  interface->set_output_source(0, -1, 0);
  EXPECT_THAT(driver.take_commands(), ElementsAre("remove_source 20 <- 3 hw 8"));
}

TEST_F(vgn_zsd_commands, out_of_range_are_false_and_silent) {
  for (const int index : {-1, 2, 1000}) {
    EXPECT_FALSE(interface->enable_hdmi_output(index, true, true));
    EXPECT_FALSE(interface->set_output_mode(index, full_hd));
    EXPECT_FALSE(interface->set_output(index, 3, true, true));
    EXPECT_FALSE(interface->set_output(index, 3));
    EXPECT_FALSE(interface->set_output_source(index, 3, 8));
  }
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(driver.take_commands(), IsEmpty());
}

TEST_F(vgn_zsd_commands, without_a_device_are_false_and_silent) {
  interface->stop();
  forget();
  EXPECT_FALSE(interface->enable_hdmi_output(0, true, true));
  EXPECT_FALSE(interface->set_output_mode(0, full_hd));
  EXPECT_FALSE(interface->set_output(0, 3, true, true));
  EXPECT_FALSE(interface->set_output_source(0, 3, 8));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(vgn_zsd_commands, from_other_threads_are_posted_with_their_arguments) {
  interface->owner_calls = false;
  EXPECT_TRUE(interface->enable_hdmi_output(0, true, true));
  EXPECT_TRUE(interface->set_output_mode(0, full_hd));
  EXPECT_TRUE(interface->set_output(0, 3, true, false));
  EXPECT_TRUE(interface->set_output(0, 4));
  EXPECT_TRUE(interface->set_output_source(0, 3, 77));
  interface->stop();
  interface->start();
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(driver.take_commands(), IsEmpty());
  ASSERT_THAT(interface->posted, SizeIs(7));

  interface->owner_calls = true;
  for (const auto& call : interface->posted) {
    call();
  }
  const auto commands = driver.take_commands();
  ASSERT_GE(commands.size(), 7U);
  EXPECT_THAT(
      std::vector<std::string>(commands.begin(), commands.begin() + 7),
      ElementsAre("set_audio_clock 20 6144 148500 148500", "set_timing 20 148500 1920 1080", "set_source 20 <- 3 hw 8",
                  "mute 20 1", "remove_source 20 <- 3 hw 8", "set_source 20 <- 4 hw 9", "set_source 20 <- 3 hw 77"));
  EXPECT_TRUE(interface->active());
}

}  // namespace
