#include "tools/vgnctl/status/status_items.h"

#include <gtest/gtest.h>

#include <string>

#include "lnx/src/ktm5030.h"
#include "sim/ktm5030.h"
#include "sim/status_files.h"
#include "sim/testbed.h"
#include "zyl/event_loop.h"

namespace {

using nlohmann::json;

/// The board of the simulated appliance, as this process sees it.
class StatusItems : public testing::Test {
 protected:
  void set(const std::string& name, const std::string& content) { tree.set("/sim/hardware/" + name, content); }

  static vgnctl::status_item_t item(const std::string& name) {
    for (const auto& found : vgnctl::read_status()) {
      if (found.name == name) {
        return found;
      }
    }
    ADD_FAILURE() << "there is no " << name;
    return {};
  }

  static json value(const std::string& name) { return item(name).value; }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  sim::testbed_t bed;
  sim::status_files_t files{loop.base(), bed.root(), tree, story};
  sim::ktm5030_t device{loop.base(), bed, tree, story, true};
};

}  // namespace

TEST_F(StatusItems, AreRoundedToThousandths) {
  EXPECT_EQ(value("vccaux14_a"), json(12.0));
  EXPECT_EQ(value("vccaux14_b"), json(4.936));
  EXPECT_EQ(value("pl_temperature"), json(46.955));
  set("temp4_input", "-0.4");
  EXPECT_EQ(value("board_temperature_a").dump(), "0.0");
}

TEST_F(StatusItems, AreNotAvailableWithoutAFiniteNumber) {
  for (const char* content : {"nan", "inf", "-inf", "1e39", "", "absent"}) {
    set("temp1_input", content);
    EXPECT_EQ(value("board_temperature_b"), json()) << content;
  }
}

TEST_F(StatusItems, FanValuesThatAreNoneAreNotAvailable) {
  set("pwm1", "300");
  EXPECT_EQ(value("fan_pwm"), json());
  EXPECT_EQ(value("fan_ramp_rate"), json(16));
}

TEST_F(StatusItems, TextsAreWhatTheFilesSay) {
  set("product_id", " XK 1 ");
  EXPECT_EQ(value("product_id"), json(" XK 1 "));
}

TEST_F(StatusItems, PowerSourceIsToldWithItsMeaning) {
  set("poe_status", "0");
  EXPECT_EQ(value("power_source"), json(0));
  EXPECT_EQ(item("power_source").unit, "no supply known");
  set("poe_status", "absent");
  EXPECT_EQ(value("power_source"), json());
  EXPECT_EQ(item("power_source").unit, "");
  set("aux_status", "1");
  EXPECT_EQ(value("power_source"), json(1));
  EXPECT_EQ(item("power_source").unit, "auxiliary supply");
}

TEST_F(StatusItems, PowerOverEthernetIsToldByItsClass) {
  set("poe_class", "5");
  EXPECT_EQ(value("power_source"), json(4));
  EXPECT_EQ(item("power_source").unit, "PoE class 5 or more");
}

TEST_F(StatusItems, Ktm5030IsOnlyLookedAt) {
  tree.set("/sim/ktm5030/mode", "9");
  tree.set("/sim/ktm5030/info", "1 2 3");
  tree.set("/sim/ktm5030/event", "0");
  EXPECT_EQ(value("ktm5030_mode"), json(2));
  EXPECT_EQ(value("ktm5030_mode_byte"), json(9));
  EXPECT_EQ(value("ktm5030_info"), json::array({1, 2, 3}));
  EXPECT_EQ(tree.value("/sim/ktm5030/mode"), "9");
  // The event is still there for whom it is for.
  lnx::ktm5030_status_t status;
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 1U);
}

TEST_F(StatusItems, Ktm5030ModesZeroAndOneAreToldApart) {
  EXPECT_EQ(value("ktm5030_mode"), json(0));
  EXPECT_EQ(value("ktm5030_mode_byte"), json(0));
  tree.set("/sim/ktm5030/mode", "1");
  EXPECT_EQ(value("ktm5030_mode"), json(2));
  EXPECT_EQ(value("ktm5030_mode_byte"), json(1));
}

TEST_F(StatusItems, Ktm5030MayBeMissing) {
  tree.set("/sim/ktm5030/device", "absent");
  EXPECT_EQ(value("ktm5030_mode"), json());
  EXPECT_EQ(value("ktm5030_mode_byte"), json());
  EXPECT_EQ(value("ktm5030_info"), json());
}
