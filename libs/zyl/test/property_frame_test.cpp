#include "zyl/property_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

using namespace std::string_literals;

/// What comes out of `received` when it arrives in one piece.
std::vector<std::vector<std::string>> frames_in(std::string_view received) {
  zyl::property_frame_buffer_t buffer;
  buffer.append(received);
  std::vector<std::vector<std::string>> frames;
  buffer.resynchronise();
  while (auto fields = buffer.take_frame()) {
    frames.push_back(*fields);
    buffer.resynchronise();
  }
  return frames;
}

}  // namespace

TEST(PropertyFrame, IsMagicLengthAndFieldsInLittleEndian) {
  EXPECT_EQ(zyl::build_frame({"set", "/a", ""}), "ipc_magic\x0B\0\x03\0set\x02\0/a\0\0"s);
  EXPECT_EQ(zyl::build_frame({std::string(300, 'x')}).substr(0, 13), "ipc_magic\x2E\x01\x2C\x01"s);
}

TEST(PropertyFrame, LengthsAreTruncatedToSixteenBits) {
  const std::string frame = zyl::build_frame({std::string(70000, 'x')});
  EXPECT_EQ(frame.size(), 11U + 2U + 70000U);
  EXPECT_EQ(frame.substr(9, 4), "\x72\x11\x70\x11"s);
}

TEST(PropertyFrame, LongestPropertyFillsTheLongestResponse) {
  const std::string value(zyl::longest_property - 2, 'v');
  const std::string frame = zyl::build_frame({"get_response", "/a", value});
  EXPECT_EQ(frame.size(), 11U + 65535U);
  EXPECT_THAT(frames_in(frame), ElementsAre(ElementsAre("get_response", "/a", value)));
}

TEST(PropertyFrame, ComesBackAsItsFields) {
  EXPECT_THAT(frames_in(zyl::build_frame({"get_all"})), ElementsAre(ElementsAre("get_all")));
  EXPECT_THAT(frames_in(zyl::build_frame({"changed", "/a", "ipc_magic"}) + zyl::build_frame({"get", "/b"})),
              ElementsAre(ElementsAre("changed", "/a", "ipc_magic"), ElementsAre("get", "/b")));
}

TEST(PropertyFrame, JunkInFrontIsSkipped) {
  const std::string frame = zyl::build_frame({"changed", "/a", "1"});
  EXPECT_THAT(frames_in("xx" + frame), ElementsAre(ElementsAre("changed", "/a", "1")));
  EXPECT_THAT(frames_in("ipc_magipc_ma" + frame), ElementsAre(ElementsAre("changed", "/a", "1")));
}

TEST(PropertyFrame, BeginningOfAMagicAtTheEndIsKept) {
  const std::string frame = zyl::build_frame({"changed", "/a", "1"});
  for (std::size_t cut = 0; cut < frame.size(); ++cut) {
    zyl::property_frame_buffer_t buffer;
    buffer.append("junk" + frame.substr(0, cut));
    buffer.resynchronise();
    EXPECT_EQ(buffer.take_frame(), std::nullopt);
    EXPECT_EQ(buffer.empty(), cut == 0);
    buffer.append(frame.substr(cut));
    buffer.resynchronise();
    EXPECT_THAT(buffer.take_frame(), Optional(ElementsAre("changed", "/a", "1"))) << "cut at " << cut;
    EXPECT_TRUE(buffer.empty());
  }
}

TEST(PropertyFrame, EmptyPayloadIsAFrameWithoutFields) {
  EXPECT_THAT(frames_in(zyl::build_frame({})), ElementsAre(IsEmpty()));
}

TEST(PropertyFrame, TruncatedLastFieldIsDroppedAndThoseBeforeStay) {
  EXPECT_THAT(frames_in("ipc_magic\x09\0\x01\0a\x01\0b\x05\0c"s), ElementsAre(ElementsAre("a", "b")));
  EXPECT_THAT(frames_in("ipc_magic\x04\0\x01\0a\x01"s), ElementsAre(ElementsAre("a")));
}

TEST(PropertyFrame, ManyFramesAndMuchJunkComeThroughWhole) {
  std::string received;
  for (int i = 0; i < 20000; ++i) {
    received += std::string(40, 'i') + zyl::build_frame({"changed", "/n", std::to_string(i)});
  }
  const auto frames = frames_in(received);
  ASSERT_EQ(frames.size(), 20000U);
  EXPECT_THAT(frames.front(), ElementsAre("changed", "/n", "0"));
  EXPECT_THAT(frames.back(), ElementsAre("changed", "/n", "19999"));
}

TEST(PropertyFrame, ClearForgetsHalfAFrame) {
  zyl::property_frame_buffer_t buffer;
  buffer.append("ipc_magic\x05");
  buffer.clear();
  EXPECT_TRUE(buffer.empty());
  buffer.append(zyl::build_frame({"get", "/a"}));
  EXPECT_THAT(buffer.take_frame(), Optional(ElementsAre("get", "/a")));
}

TEST(PropertyFrame, IsPutBehindTheBytesThatAreThere) {
  std::string bytes = zyl::build_frame({"get", "/a"});
  zyl::append_frame(bytes, {"get", "/b"});
  EXPECT_THAT(frames_in(bytes), ElementsAre(ElementsAre("get", "/a"), ElementsAre("get", "/b")));
}

TEST(PropertyFrame, FieldsInTheBufferStayWhileFramesBehindThemArePassedOver) {
  zyl::property_frame_buffer_t buffer;
  buffer.append(zyl::build_frame({"changed", "/a", "1"}) + "junk" + zyl::build_frame({}) + "ipc_ma");
  const auto* fields = buffer.next_frame();
  ASSERT_NE(fields, nullptr);
  const std::vector<std::string_view> kept = *fields;
  buffer.resynchronise();
  fields = buffer.next_frame();
  ASSERT_NE(fields, nullptr);
  EXPECT_THAT(*fields, IsEmpty());
  buffer.resynchronise();
  EXPECT_EQ(buffer.next_frame(), nullptr);
  EXPECT_FALSE(buffer.empty());
  EXPECT_THAT(kept, ElementsAre("changed", "/a", "1"));
}
