#include "control_lib/src/connector_power.h"

#include <gtest/gtest.h>

#include "test_support/fake_udev.h"

namespace {

using control_lib::connector_power;

class connector : public testing::Test {
 protected:
  test_support::fake_udev_t machine;
};

TEST_F(connector, of_the_first_input_is_read_from_its_gpio) {
  machine.write("/sys/class/gpio/gpio335/value", "1\n");
  machine.write("/sys/class/gpio/gpio334/value", "0\n");
  EXPECT_EQ(connector_power(0, 106), true);
  machine.write("/sys/class/gpio/gpio335/value", "0\n");
  EXPECT_EQ(connector_power(0, 106), false);
}

TEST_F(connector, of_any_other_input_is_read_from_the_other_gpio) {
  machine.write("/sys/class/gpio/gpio335/value", "0\n");
  machine.write("/sys/class/gpio/gpio334/value", "1\n");
  EXPECT_EQ(connector_power(1, 105), true);
  EXPECT_EQ(connector_power(2, 105), true);
}

TEST_F(connector, of_model_137_is_read_from_the_receiver_and_another_gpio) {
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Enabled\nmore\n");
  machine.write("/sys/class/gpio/gpio325/value", "1\n");
  EXPECT_EQ(connector_power(0, 137), true);
  EXPECT_EQ(connector_power(1, 137), true);
  machine.write("/proc/tarn/ep_snk0/rx-5v", "Disabled\n");
  machine.write("/sys/class/gpio/gpio325/value", "0\n");
  EXPECT_EQ(connector_power(0, 137), false);
  EXPECT_EQ(connector_power(1, 137), false);
}

TEST_F(connector, is_off_unless_the_first_line_is_the_very_word_or_number) {
  machine.write("/proc/tarn/ep_snk0/rx-5v", "enabled\n");
  EXPECT_EQ(connector_power(0, 137), false);
  machine.write("/proc/tarn/ep_snk0/rx-5v", "\nEnabled\n");
  EXPECT_EQ(connector_power(0, 137), false);
  for (const char* text : {"10\n", "on\n", "-1\n", "\n1\n", "1x\n", "1 0\n", "99999999999\n", " \n"}) {
    machine.write("/sys/class/gpio/gpio335/value", text);
    EXPECT_EQ(connector_power(0, 106), false) << text;
  }
}

TEST_F(connector, is_on_with_blanks_around_the_number) {
  for (const char* text : {"1", " 1\n", "1 \t\r\n"}) {
    machine.write("/sys/class/gpio/gpio335/value", text);
    EXPECT_EQ(connector_power(0, 106), true) << text;
  }
}

TEST_F(connector, is_not_known_without_its_file_or_a_line_in_it) {
  EXPECT_EQ(connector_power(0, 106), std::nullopt);
  EXPECT_EQ(connector_power(0, 137), std::nullopt);
  machine.write("/sys/class/gpio/gpio335/value", "");
  EXPECT_EQ(connector_power(0, 106), std::nullopt);
}

}  // namespace
