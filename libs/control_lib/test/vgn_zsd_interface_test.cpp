#include "control_lib/src/vgn_zsd_interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "libs/control_lib/test/vgn_zsd_fixture.h"

namespace {

using control_lib::video_size_t;
using testing::ElementsAre;
using testing::IsEmpty;

std::string content_of(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

using get_output_connection = vgn_zsd_fixture;

TEST_F(get_output_connection, asks_the_device) {
  bring_up();
  driver.outputs[21].connected = true;
  bool connected = false;
  EXPECT_TRUE(interface->get_output_connection(1, connected));
  EXPECT_TRUE(connected);
  EXPECT_TRUE(interface->get_output_connection(0, connected));
  EXPECT_FALSE(connected);
  EXPECT_THAT(
      log.lines(),
      ElementsAre("vgn_zsd_interface_t::get_output_connection(index=1, id=21) => success=TRUE connected=TRUE",
                  "vgn_zsd_interface_t::get_output_connection(index=0, id=20) => success=TRUE connected=FALSE"));
}

TEST_F(get_output_connection, that_fails_leaves_the_answer_as_it_was) {
  bring_up();
  driver.failing = {vgn::output_connected_request};
  bool connected = true;
  EXPECT_FALSE(interface->get_output_connection(0, connected));
  EXPECT_TRUE(connected);
  EXPECT_THAT(
      log.lines(),
      ElementsAre("vgn_zsd_interface_t::get_output_connection(index=0, id=20) => success=FALSE connected=FALSE"));
}

TEST_F(get_output_connection, is_remembered) {
  bring_up();
  driver.outputs[20].connected = true;
  bool connected = false;
  interface->get_output_connection(0, connected);
  forget();
  interface->set_output(0, -1, false, false);
  for (const auto& line : log.lines()) {
    EXPECT_EQ(line.find("connection status changed"), std::string::npos) << line;
  }
}

using get_output_edid = vgn_zsd_fixture;

TEST_F(get_output_edid, reads_it_and_leaves_a_copy_in_a_file) {
  bring_up();
  driver.outputs[21].edid = {0x00, 0xFF, 0x0A};
  std::vector<uint8_t> edid;
  EXPECT_TRUE(interface->get_output_edid(1, edid));
  EXPECT_THAT(edid, ElementsAre(0x00, 0xFF, 0x0A));
  EXPECT_EQ(content_of("/tmp/cur_edid_out_1.bin"), std::string("\x00\xFF\x0A", 3));

  driver.outputs[21].edid = {0x07};
  EXPECT_TRUE(interface->get_output_edid(1, edid));
  EXPECT_EQ(content_of("/tmp/cur_edid_out_1.bin"), "\x07");
}

TEST_F(get_output_edid, gives_what_is_there_when_the_display_has_none) {
  bring_up();
  std::vector<uint8_t> edid{1};
  EXPECT_TRUE(interface->get_output_edid(0, edid));
  EXPECT_THAT(edid, IsEmpty());
}

TEST_F(get_output_edid, that_fails_touches_neither_bytes_nor_file) {
  bring_up();
  driver.failing = {vgn::read_edid_request};
  std::vector<uint8_t> edid{1};
  EXPECT_FALSE(interface->get_output_edid(0, edid));
  EXPECT_THAT(edid, ElementsAre(1));
  EXPECT_FALSE(std::filesystem::exists("/tmp/cur_edid_out_0.bin"));
}

using vgn_zsd_queries = vgn_zsd_fixture;

TEST_F(vgn_zsd_queries, give_a_mode_of_no_size_before_there_is_one) {
  bring_up();
  video_size_t size{1, 2};
  EXPECT_TRUE(interface->get_output_mode(0, size));
  EXPECT_EQ(size, (video_size_t{0, 0}));
}

TEST_F(vgn_zsd_queries, find_inject_inputs_by_their_place) {
  bring_up();
  EXPECT_EQ(interface->inject_input_id(0), 3);
  EXPECT_EQ(interface->inject_input_id(1), 4);
  EXPECT_EQ(interface->inject_input_id(2), -1);
  EXPECT_EQ(interface->inject_input_id(-1), -1);
}

TEST_F(vgn_zsd_queries, out_of_range_are_false_silent_and_change_nothing) {
  bring_up();
  bool connected = true;
  std::vector<uint8_t> edid{1};
  video_size_t size{1, 2};
  for (const int index : {-1, 2}) {
    EXPECT_FALSE(interface->get_output_connection(index, connected));
    EXPECT_FALSE(interface->get_output_edid(index, edid));
    EXPECT_FALSE(interface->get_output_mode(index, size));
    EXPECT_FALSE(interface->add_output_observer(index, {}));
  }
  EXPECT_FALSE(interface->add_input_observer(20, {}));
  EXPECT_TRUE(connected);
  EXPECT_THAT(edid, ElementsAre(1));
  EXPECT_EQ(size, (video_size_t{1, 2}));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(vgn_zsd_queries, know_no_output_before_there_is_a_device) {
  bool connected = false;
  EXPECT_EQ(interface->output_count(), -1);
  EXPECT_EQ(interface->inject_input_id(0), -1);
  EXPECT_FALSE(interface->get_output_connection(0, connected));
  EXPECT_FALSE(interface->active());
}

}  // namespace
