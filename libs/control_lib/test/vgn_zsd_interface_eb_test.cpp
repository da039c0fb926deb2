#include "control_lib/src/vgn_zsd_interface_eb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "test_support/fake_vgn_device.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class vgn_zsd_interface_eb : public testing::Test {
 protected:
  vgn_zsd_interface_eb() {
    driver.inputs[1] = {.name = "hdmi_in_0", .kind = 0, .hw = 1};
    driver.inputs[3] = {.name = "inject_0", .kind = 1, .hw = 8};
    driver.outputs[20] = {.name = "hdmi_out_0", .kind = 0};
    auto system = std::make_unique<vgn::system_t>(loop.base(), driver.make_device(), false);
    system->device_added(lnx::udev_device_t({.subsystem = "misc", .sysname = "vgnsys-0", .devnode = "/dev/vgnsys-0"}));
    interface = std::make_unique<control_lib::vgn_zsd_interface_eb_t>(loop.base(), 6, std::move(system));
    interface->start();
    driver.take_commands();
  }

  template <typename Call>
  static void on_another_thread(const Call& call) {
    std::thread(call).join();
  }

  test_support::fake_vgn_driver_t driver;
  zyl::event_loop_t loop;
  std::unique_ptr<control_lib::vgn_zsd_interface_eb_t> interface;
};

TEST_F(vgn_zsd_interface_eb, acts_at_once_on_its_owners_thread) {
  EXPECT_TRUE(interface->set_output(0, 3, false, false));
  EXPECT_THAT(driver.take_commands(), ElementsAre("set_source 20 <- 3 hw 8"));
}

TEST_F(vgn_zsd_interface_eb, takes_calls_of_other_threads_to_its_loop) {
  on_another_thread([this] {
    EXPECT_TRUE(interface->set_output(0, 3, true, false));
    EXPECT_TRUE(interface->set_output_source(0, -1, 0));
  });
  EXPECT_THAT(driver.take_commands(), IsEmpty());
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_THAT(driver.take_commands(),
              ElementsAre("set_source 20 <- 3 hw 8", "mute 20 1", "remove_source 20 <- 3 hw 8"));
}

TEST_F(vgn_zsd_interface_eb, starts_and_stops_for_other_threads) {
  on_another_thread([this] { interface->stop(); });
  EXPECT_TRUE(interface->active());
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_FALSE(interface->active());
  on_another_thread([this] { interface->start(); });
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_TRUE(interface->active());
}

TEST_F(vgn_zsd_interface_eb, that_has_died_is_not_called_by_what_was_posted) {
  on_another_thread([this] { interface->set_output(0, 3, false, false); });
  interface.reset();
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_THAT(driver.take_commands(), IsEmpty());
}

TEST_F(vgn_zsd_interface_eb, polls_by_itself) {
  uint32_t heard = 0;
  interface->add_input_observer(1, [&heard](uint32_t, uint32_t bits) { heard |= bits; });
  driver.inputs[1].connected = true;
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&heard] { return heard == 1; }));
}

}  // namespace
