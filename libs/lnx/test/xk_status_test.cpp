#include "lnx/src/xk_status.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "test_support/fake_udev.h"
#include "test_support/opened_files.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string folder = "/sys/devices/platform/xk_status/";

struct status_t {
  const char* test_name;
  bool (*read)(std::string& out_text);
  const char* name;
};

constexpr status_t statuses[] = {
    {"AuxStatus", lnx::read_aux_status, "aux_status"}, {"PoeStatus", lnx::read_poe_status, "poe_status"},
    {"PoeClass", lnx::read_poe_class, "poe_class"},    {"BoardId", lnx::read_board_id, "board_id"},
    {"ProductId", lnx::read_product_id, "product_id"},
};

/// The text that is read, "failed" if none is.
std::string text_of(bool (*read)(std::string& out_text)) {
  std::string text = "as it was";
  return read(text) ? text : "failed, " + text;
}

class XkStatus : public testing::TestWithParam<status_t> {
 protected:
  void write(const std::string& content) { machine.write(folder + GetParam().name, content); }

  static std::string text() { return text_of(GetParam().read); }

  test_support::fake_udev_t machine;
};

INSTANTIATE_TEST_SUITE_P(, XkStatus, testing::ValuesIn(statuses),
                         [](const auto& test) { return test.param.test_name; });

/// Those that keep nothing.
class UncachedXkStatus : public XkStatus {};

INSTANTIATE_TEST_SUITE_P(, UncachedXkStatus, testing::Values(statuses[0], statuses[1], statuses[3], statuses[4]),
                         [](const auto& test) { return test.param.test_name; });

class PoeClass : public testing::Test {
 protected:
  PoeClass() { machine.write(folder + "board_id", "7\n"); }

  void write(const std::string& content) { machine.write(folder + "poe_class", content); }

  test_support::fake_udev_t machine;
};

}  // namespace

TEST_P(XkStatus, IsTheFirstLineOfItsFile) {
  write(" 4 of\t8\nmore\n");
  EXPECT_EQ(text(), " 4 of\t8");
}

TEST_P(XkStatus, NeedsNoLineEnd) {
  write("4");
  EXPECT_EQ(text(), "4");
}

TEST_P(XkStatus, FailsWithoutTheFile) { EXPECT_EQ(text(), "failed, as it was"); }

TEST_P(XkStatus, FailsWithAnEmptyFile) {
  write("");
  EXPECT_EQ(text(), "failed, as it was");
}

TEST_P(XkStatus, MayBeAnEmptyLine) {
  write("\n4\n");
  EXPECT_EQ(text(), "");
}

TEST_P(XkStatus, MayBeOfAnyLengthAndAnyBytes) {
  const std::string line = std::string(1'000'000, 'x') + std::string("\0\xFF\r", 3);
  write(line + "\nmore\n");
  EXPECT_TRUE(text() == line);
}

TEST_P(UncachedXkStatus, IsReadAnewEachTime) {
  write("4\n");
  EXPECT_EQ(text(), "4");
  write("5\n");
  EXPECT_EQ(text(), "5");
  std::filesystem::remove(machine.place(folder + GetParam().name));
  EXPECT_EQ(text(), "failed, as it was");
}

TEST_F(PoeClass, IsKeptOnceKnownWithoutOpeningTheFileAgain) {
  write("4\n");
  const test_support::opened_files_t opened(machine.place(folder));
  EXPECT_EQ(text_of(lnx::read_poe_class), "4");
  EXPECT_THAT(opened.take(), ElementsAre("poe_class"));
  EXPECT_EQ(text_of(lnx::read_poe_class), "4");
  EXPECT_THAT(opened.take(), IsEmpty());
  std::filesystem::remove(machine.place(folder + "poe_class"));
  EXPECT_EQ(text_of(lnx::read_poe_class), "4");
}

TEST_F(PoeClass, IsAskedForAgainWhileItIsMissingOrEmpty) {
  EXPECT_EQ(text_of(lnx::read_poe_class), "failed, as it was");
  write("");
  EXPECT_EQ(text_of(lnx::read_poe_class), "failed, as it was");
  write("\n");
  EXPECT_EQ(text_of(lnx::read_poe_class), "");
  write("3\n");
  EXPECT_EQ(text_of(lnx::read_poe_class), "3");
  write("4\n");
  EXPECT_EQ(text_of(lnx::read_poe_class), "3");
}

TEST_F(PoeClass, IsKeptWhateverItSays) {
  write("unknown\n");
  EXPECT_EQ(text_of(lnx::read_poe_class), "unknown");
  write("4\n");
  EXPECT_EQ(text_of(lnx::read_poe_class), "unknown");
}
