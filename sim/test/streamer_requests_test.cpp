#include "sim/streamer_requests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Pair;

/// The requests as a client in the same address space would make them.
class StreamerRequests : public testing::Test {
 protected:
  template <typename Record>
  sim::request_result_t request(uint32_t number, Record& record) {
    std::span<uint8_t> bytes(reinterpret_cast<uint8_t*>(&record), sizeof record);
    return sim::answer_streamer_request(model, number, bytes, [&](size_t offset, std::span<const uint8_t> written) {
      uint64_t address = 0;
      std::memcpy(&address, bytes.data() + offset, sizeof address);
      std::memcpy(reinterpret_cast<void*>(address), written.data(), written.size());
      return true;
    });
  }

  uint32_t output_id(size_t connector) { return model.hdmi_output(connector).resource.id; }

  sim::streamer_model_t model{2};
};

uint64_t address_of(void* memory) { return reinterpret_cast<uint64_t>(memory); }

TEST_F(StreamerRequests, GiveTheCountsFirstAndThenTheIds) {
  vgn::resources_record_t record{};
  EXPECT_EQ(request(vgn::resources_request, record).error, 0);
  ASSERT_EQ(record.input_count, model.inputs().size());
  ASSERT_EQ(record.output_count, model.outputs().size());
  std::vector<uint32_t> inputs(record.input_count);
  std::vector<uint32_t> outputs(record.output_count);
  record.input_ids = address_of(inputs.data());
  record.output_ids = address_of(outputs.data());
  EXPECT_EQ(request(vgn::resources_request, record).error, 0);
  for (const uint32_t id : inputs) {
    EXPECT_NE(model.find_input(id), nullptr) << id;
  }
  EXPECT_EQ(outputs[0], output_id(0));
  EXPECT_EQ(outputs[1], output_id(1));
}

TEST_F(StreamerRequests, NeverWriteMoreIdsThanTheClientHasRoomFor) {
  std::vector<uint32_t> ids(2, 999);
  vgn::resources_record_t record{1, 0, address_of(ids.data()), 0};
  EXPECT_EQ(request(vgn::resources_request, record).error, 0);
  EXPECT_NE(ids[0], 999U);
  EXPECT_EQ(ids[1], 999U);
}

TEST_F(StreamerRequests, NameTheResources) {
  vgn::resource_record_t record{};
  record.id = output_id(1);
  EXPECT_EQ(request(vgn::output_request, record).error, 0);
  EXPECT_STREQ(record.name, "hdmi_out_1");
  record.id = 0;
  EXPECT_EQ(request(vgn::input_request, record).error, 0);
  EXPECT_STREQ(record.name, "zvid-raw-frame_inject_in_0");
  EXPECT_EQ(record.kind, static_cast<uint32_t>(vgn::input_kind_e::inject));
}

TEST_F(StreamerRequests, GiveTheSizeOfAnEdidFirstAndThenItsBytes) {
  model.hdmi_output(0).connected = true;
  model.hdmi_output(0).edid = {1, 2, 3};
  vgn::edid_record_t record{output_id(0), 0, 0, 0};
  EXPECT_THAT(request(vgn::read_edid_request, record).published, IsEmpty());
  ASSERT_EQ(record.size, 3U);
  std::vector<uint8_t> bytes(3);
  record.bytes = address_of(bytes.data());
  EXPECT_THAT(request(vgn::read_edid_request, record).published, Contains(Pair("/sim/hdmi/0/edid_reads", "1")));
  EXPECT_EQ(bytes, (std::vector<uint8_t>{1, 2, 3}));
}

TEST_F(StreamerRequests, CutAnEdidToTheRoomThatTheClientHas) {
  model.hdmi_output(0).connected = true;
  model.hdmi_output(0).edid = {1, 2, 3};
  std::vector<uint8_t> bytes(3);
  vgn::edid_record_t record{output_id(0), 0, 2, address_of(bytes.data())};
  EXPECT_EQ(request(vgn::read_edid_request, record).error, 0);
  EXPECT_EQ(record.size, 2U);
  EXPECT_EQ(bytes, (std::vector<uint8_t>{1, 2, 0}));
}

TEST_F(StreamerRequests, CountTheReadOfAnEmptyEdidAtItsSize) {
  model.hdmi_output(0).connected = true;
  vgn::edid_record_t record{output_id(0), 0, 99, 0};
  EXPECT_THAT(request(vgn::read_edid_request, record).published, Contains(Pair("/sim/hdmi/0/edid_reads", "1")));
  EXPECT_EQ(record.size, 0U);
}

TEST_F(StreamerRequests, HaveNoEdidWithoutADisplay) {
  vgn::edid_record_t record{output_id(0), 0, 0, 0};
  EXPECT_EQ(request(vgn::read_edid_request, record).error, ENXIO);
}

TEST_F(StreamerRequests, WriteTheConnectionBack) {
  vgn::value_record_t record{output_id(0), 77};
  EXPECT_EQ(request(vgn::output_connected_request, record).error, 0);
  EXPECT_EQ(record.value, 0U);
  model.hdmi_output(0).connected = true;
  EXPECT_EQ(request(vgn::output_connected_request, record).error, 0);
  EXPECT_EQ(record.value, 1U);
}

TEST_F(StreamerRequests, RememberATimingAndTellIt) {
  vgn::timing_record_t record{output_id(1), {594000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5}, {}};
  const auto result = request(vgn::set_timing_request, record);
  EXPECT_EQ(result.story, "output 1: timing 3840x2160, 594000 kHz");
  EXPECT_THAT(result.published,
              testing::ElementsAre(Pair("/sim/hdmi/1/timing", "594000 3840 4016 4104 4400 2160 2168 2178 2250 5")));
}

TEST_F(StreamerRequests, RememberAnAudioClock) {
  vgn::audio_record_t record{output_id(0), 6144, 148500, 148500};
  EXPECT_THAT(request(vgn::set_audio_clock_request, record).published,
              testing::ElementsAre(Pair("/sim/hdmi/0/audio", "6144 148500 148500")));
}

TEST_F(StreamerRequests, RouteAnInputOnlyWithItsOwnSourceNumber) {
  const uint32_t hw = model.find_input(1)->resource.hw;
  vgn::source_record_t record{1, output_id(0), hw + 1};
  EXPECT_EQ(request(vgn::set_output_source_request, record).error, EINVAL);
  record.hw = hw;
  EXPECT_THAT(request(vgn::set_output_source_request, record).published,
              testing::ElementsAre(Pair("/sim/hdmi/0/source", "zvid-raw-frame_inject_in_1")));
}

TEST_F(StreamerRequests, RemoveTheRoutedInputAndNoOther) {
  vgn::source_record_t record{0, output_id(0), model.find_input(0)->resource.hw};
  EXPECT_EQ(request(vgn::set_output_source_request, record).error, 0);
  vgn::source_record_t other{1, output_id(0), model.find_input(1)->resource.hw};
  EXPECT_THAT(request(vgn::remove_output_source_request, other).story, IsEmpty());
  EXPECT_THAT(request(vgn::remove_output_source_request, record).published,
              testing::ElementsAre(Pair("/sim/hdmi/0/source", "")));
}

TEST_F(StreamerRequests, RememberMuteAndFreeze) {
  vgn::value_record_t record{output_id(0), 1};
  EXPECT_THAT(request(vgn::set_output_mute_request, record).published,
              testing::ElementsAre(Pair("/sim/hdmi/0/muted", "1")));
  EXPECT_THAT(request(vgn::set_output_freeze_request, record).published,
              testing::ElementsAre(Pair("/sim/hdmi/0/frozen", "1")));
}

TEST_F(StreamerRequests, RefuseIdsThatAreNotThere) {
  vgn::value_record_t record{4711, 0};
  EXPECT_EQ(request(vgn::output_connected_request, record).error, EINVAL);
  vgn::timing_record_t timing{4711, {}, {}};
  EXPECT_EQ(request(vgn::set_timing_request, timing).error, EINVAL);
}

TEST_F(StreamerRequests, RefuseARequestThatIsNotKnownAndTellIt) {
  vgn::value_record_t record{};
  const auto result = request(_IOW('V', 99, vgn::value_record_t), record);
  EXPECT_EQ(result.error, ENOTTY);
  EXPECT_EQ(result.story, "request 0x40085663 is not known");
}

}  // namespace
