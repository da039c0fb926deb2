#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libs/control_lib/test/vgn_zsd_fixture.h"

namespace {

using testing::IsEmpty;

class mux_logic : public vgn_zsd_fixture {
 protected:
  control_lib::vgn_zsd_interface_t::mux_logic_t mux;
};

TEST_F(mux_logic, of_a_model_without_a_mux_has_no_mode) {
  EXPECT_EQ(mux.mode(), 0);
  mux.set_mode(*interface, 3);
  EXPECT_EQ(mux.mode(), 0);
  EXPECT_EQ(mux.hdmi_mask(), 0U);
  EXPECT_EQ(mux.usb_mask(), 0U);
}

TEST_F(mux_logic, of_a_model_without_a_mux_blocks_nothing) {
  for (int index = -1; index < 4; ++index) {
    EXPECT_FALSE(mux.is_input_blocked(index));
  }
}

TEST_F(mux_logic, of_a_model_without_a_mux_tells_the_device_nothing) {
  bring_up();
  mux.init(*interface);
  mux.set_mode(*interface, 1);
  mux.reset(*interface);
  EXPECT_THAT(driver.take_commands(), IsEmpty());
}

}  // namespace
