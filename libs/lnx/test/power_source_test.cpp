#include "lnx/src/power_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "lnx/src/xk_status.h"
#include "test_support/fake_udev.h"
#include "test_support/opened_files.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string folder = "/sys/devices/platform/xk_status/";

class PowerSource : public testing::Test {
 protected:
  PowerSource() { write("board_id", "7\n"); }

  void write(const std::string& name, const std::string& content) { machine.write(folder + name, content); }

  void remove(const std::string& name) { std::filesystem::remove(machine.place(folder + name)); }

  /// By power over Ethernet of this class, which `read_poe_class` then knows.
  void feed_by_poe(const std::string& poe_class) {
    write("aux_status", "0\n");
    write("poe_status", "1\n");
    write("poe_class", poe_class);
  }

  static void expect_source(uint32_t expected) {
    uint32_t power_class = 77;
    EXPECT_TRUE(lnx::read_power_source(power_class));
    EXPECT_EQ(power_class, expected);
  }

  static void expect_failure() {
    uint32_t power_class = 77;
    EXPECT_FALSE(lnx::read_power_source(power_class));
    EXPECT_EQ(power_class, 77U);
  }

  test_support::fake_udev_t machine;
};

struct poe_source_t {
  const char* poe_class;
  uint32_t source;
};

class PowerSourceByClass : public PowerSource, public testing::WithParamInterface<poe_source_t> {};

INSTANTIATE_TEST_SUITE_P(, PowerSourceByClass,
                         testing::Values(poe_source_t{"3", 2}, poe_source_t{"4", 3}, poe_source_t{"5", 4}),
                         [](const auto& test) { return "Class" + std::string(test.param.poe_class); });

}  // namespace

TEST_F(PowerSource, IsOneWithTheAuxiliarySupplyAndThePoeFilesAreNotOpened) {
  feed_by_poe("4\n");
  write("aux_status", "1\n");
  const test_support::opened_files_t opened(machine.place(folder));
  expect_source(1);
  EXPECT_THAT(opened.take(), ElementsAre("aux_status"));
}

TEST_F(PowerSource, IsKeptOnceItIsTheAuxiliarySupply) {
  write("aux_status", "1\n");
  expect_source(1);
  feed_by_poe("4\n");
  const test_support::opened_files_t opened(machine.place(folder));
  expect_source(1);
  EXPECT_THAT(opened.take(), IsEmpty());
}

TEST_F(PowerSource, IsTwoWithPoeClassThree) {
  feed_by_poe("3\n");
  const test_support::opened_files_t opened(machine.place(folder));
  expect_source(2);
  EXPECT_THAT(opened.take(), ElementsAre("aux_status", "poe_status", "poe_class"));
}

TEST_F(PowerSource, IsThreeWithPoeClassFour) {
  feed_by_poe("4\n");
  expect_source(3);
}

TEST_F(PowerSource, IsFourWithPoeClassFive) {
  feed_by_poe("5\n");
  expect_source(4);
}

TEST_P(PowerSourceByClass, IsKeptOnceItIsPowerOverEthernet) {
  feed_by_poe(GetParam().poe_class);
  expect_source(GetParam().source);
  write("aux_status", "1\n");
  remove("poe_status");
  remove("poe_class");
  const test_support::opened_files_t opened(machine.place(folder));
  expect_source(GetParam().source);
  EXPECT_THAT(opened.take(), IsEmpty());
}

TEST_F(PowerSource, AsksPowerOverEthernetUnlessTheAuxiliaryStatusIsOne) {
  feed_by_poe("3\n");
  for (const char* aux_status : {"0\n", "2\n", "-1\n", "on\n", "", "\n", "1e39\n", "nan\n"}) {
    write("poe_status", "0\n");
    write("aux_status", aux_status);
    const test_support::opened_files_t opened(machine.place(folder));
    expect_source(0);
    EXPECT_THAT(opened.take(), ElementsAre("aux_status", "poe_status")) << aux_status;
  }
  remove("aux_status");
  write("poe_status", "1\n");
  expect_source(2);
}

TEST_F(PowerSource, TakesAStatusWithAFractionForItsInteger) {
  write("aux_status", "1.9\n");
  expect_source(1);
}

TEST_F(PowerSource, CannotBeToldWithoutThePoeStatusAndIsAskedAgain) {
  expect_failure();
  write("aux_status", "0\n");
  expect_failure();
  write("poe_status", "");
  expect_failure();
  feed_by_poe("4\n");
  expect_source(3);
}

TEST_F(PowerSource, IsZeroWhileThereIsNeitherAndIsAskedAgain) {
  write("aux_status", "0\n");
  for (const std::string& poe_status :
       {std::string("0\n"), std::string("2\n"), std::string("off\n"), std::string("\n"), std::string("-1\n"),
        std::string("1e39\n"), std::string("nan\n"), std::string(1'000'000, '1')}) {
    write("poe_status", poe_status);
    const test_support::opened_files_t opened(machine.place(folder));
    expect_source(0);
    EXPECT_THAT(opened.take(), ElementsAre("aux_status", "poe_status")) << poe_status.substr(0, 10);
  }
  write("aux_status", "1\n");
  expect_source(1);
}

TEST_F(PowerSource, CannotBeToldWithoutAPoeClassAndIsAskedAgain) {
  feed_by_poe("");
  expect_failure();
  remove("poe_class");
  expect_failure();
  write("poe_class", "\n");
  expect_failure();
  write("poe_class", "4\n");
  expect_source(3);
}

TEST_F(PowerSource, CannotBeToldWithAPoeClassThatIsNoNumber) {
  feed_by_poe("unknown\n");
  expect_failure();
  // The class is kept, but not the failure.
  write("poe_class", "4\n");
  expect_failure();
  write("aux_status", "1\n");
  expect_source(1);
}

TEST_F(PowerSource, UsesThePoeClassThatIsAlreadyKnown) {
  feed_by_poe("5\n");
  std::string text;
  ASSERT_TRUE(lnx::read_poe_class(text));
  write("poe_class", "3\n");
  const test_support::opened_files_t opened(machine.place(folder));
  expect_source(4);
  EXPECT_THAT(opened.take(), ElementsAre("aux_status", "poe_status"));
}

TEST(PoePowerClass, IsTwoBelowFourThreeAtFourAndFourAbove) {
  for (const char* text : {"0", "1", "2", "3", "-1", "-2147483648"}) {
    EXPECT_EQ(lnx::poe_power_class(text), 2U) << text;
  }
  EXPECT_EQ(lnx::poe_power_class("4"), 3U);
  for (const char* text : {"5", "6", "8", "2147483647"}) {
    EXPECT_EQ(lnx::poe_power_class(text), 4U) << text;
  }
}

TEST(PoePowerClass, IsThatOfTheNumberAtTheStartOfTheText) {
  for (const char* text : {"4", " 4", "\t+4", "4.9", "4 (25.5 W)", "004"}) {
    EXPECT_EQ(lnx::poe_power_class(text), 3U) << text;
  }
}

TEST(PoePowerClass, IsNothingWithoutANumberThatFits) {
  for (const char* text : {"", " ", "class 4", "-", "+ 4", "2147483648", "-2147483649", "99999999999999999999"}) {
    EXPECT_EQ(lnx::poe_power_class(text), std::nullopt) << text;
  }
  EXPECT_EQ(lnx::poe_power_class(std::string(1'000'000, '9')), std::nullopt);
}
