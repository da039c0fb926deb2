// Where a mode goes when a list is written: for many random lists, every block has just what its modes, their types and
// locations, and its room say.

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <optional>

#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/detailed_entry.h"
#include "edid_lib/edid.h"
#include "edid_lib/timing_lookup.h"
#include "random.h"

using namespace edid_lib;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

/// A display with two detailed timings in the base block and room for more in the extension.
bytes_t monitor() {
  return test_support::edid_builder_t()
      .detailed(0, full_hd)
      .detailed(1, full_hd)
      .cta(1,
           {test_support::data_block(2, {16}), test_support::data_block(3, {0x03, 0x0C, 0, 0x10, 0, 0, 0, 0x20, 0, 0})},
           {full_hd})
      .build();
}

/// The modes of the list that a block of this location takes, if it takes these types.
modes_t meant_for(const modes_t& list, timing_location_t location, std::initializer_list<timing_type_t> types) {
  modes_t meant;
  for (const vid_resolution_t& mode : list) {
    const bool here = mode.location == timing_location_t::undefined || mode.location == location;
    if (here && std::find(types.begin(), types.end(), mode.type) != types.end()) {
      meant.push_back(mode);
    }
  }
  return meant;
}

void expect_detailed(edid_t& edid, const modes_t& list) {
  bytes_t expected;
  for (const vid_resolution_t& mode : list) {
    const bool here =
        mode.location == timing_location_t::undefined || mode.location == timing_location_t::detailed_timing_descriptor;
    if (here && mode.width <= 4095 && mode.height <= 4095) {
      const auto entry = encode_detailed_entry(mode);
      ASSERT_TRUE(entry.has_value()) << mode.key();
      expected.insert(expected.end(), entry->begin(), entry->end());
    }
  }
  bytes_t stored = copy_of(edid.base()->detailed().bytes());
  if (const det_timings_block_t* more = edid.cta()->detailed_timings()) {
    stored.insert(stored.end(), more->bytes().begin(), more->bytes().end());
  }
  expected.resize(stored.size(), 0);
  EXPECT_EQ(stored, expected);
}

void expect_video_codes(edid_t& edid, const modes_t& list) {
  bytes_t expected;
  for (const vid_resolution_t& mode :
       meant_for(list, timing_location_t::cta_video_data_block, {timing_type_t::undefined, timing_type_t::cta})) {
    if (cta_vic(mode) != no_timing_number && expected.size() < cta_video_data_block_t::most_entries) {
      expected.push_back(static_cast<uint8_t>(cta_vic(mode)));
    }
  }
  EXPECT_EQ(copy_of(edid.cta()->find_block(2)->bytes().subspan(1)), expected);
}

void expect_hdmi_codes(edid_t& edid, const modes_t& list) {
  bytes_t expected;
  for (const vid_resolution_t& mode : meant_for(list, timing_location_t::cta_hdmi_vsdb,
                                                {timing_type_t::undefined, timing_type_t::cta, timing_type_t::hdmi})) {
    if (hdmi_vic(mode) != no_timing_number && expected.size() < cta_hdmi_vsdb_t::most_hdmi_vics) {
      expected.push_back(static_cast<uint8_t>(hdmi_vic(mode)));
    }
  }
  EXPECT_EQ(copy_of(dynamic_cast<cta_hdmi_vsdb_t&>(*edid.cta()->find_block(3)).hdmi_vics()), expected);
}

void expect_established(const edid_t& edid, const modes_t& list) {
  std::vector<uint32_t> expected{established_index(est_timings_block_t::required_mode())};
  for (const vid_resolution_t& mode :
       meant_for(list, timing_location_t::established_block, {timing_type_t::undefined, timing_type_t::established})) {
    expected.push_back(established_index(mode));
  }
  for (const vid_resolution_t& mode : all_established()) {
    const bool meant = std::find(expected.begin(), expected.end(), established_index(mode)) != expected.end();
    EXPECT_EQ(edid.base()->established().contains(mode), meant) << mode.key();
  }
}

/// The two bytes for a mode's width, shape and rate, if it has a width and shape that they can tell.
std::optional<bytes_t> standard_code(const vid_resolution_t& mode) {
  constexpr int32_t shapes[][2] = {{16, 10}, {4, 3}, {5, 4}, {16, 9}};
  for (uint32_t shape = 0; shape < std::size(shapes); ++shape) {
    const bool fits = mode.width * shapes[shape][1] == mode.height * shapes[shape][0];
    if (fits && mode.width >= 248 && mode.width < 248 + 256 * 8) {
      const auto rate = static_cast<uint32_t>(static_cast<int32_t>(mode.nominal_fps() - 60) + 64) % 64;
      return bytes_t{static_cast<uint8_t>(mode.width / 8 - 31), static_cast<uint8_t>(shape << 6 | rate)};
    }
  }
  return std::nullopt;
}

/// The same, if it also means a mode.
std::optional<bytes_t> meaningful_code(const vid_resolution_t& mode) {
  const auto code = standard_code(mode);
  return code && !std_timings_block_t(*code).modes(3, mode.reduced_blanking).empty() ? code : std::nullopt;
}

void expect_standard(const edid_t& edid, const modes_t& list) {
  bytes_t codes;
  for (const vid_resolution_t& mode :
       meant_for(list, timing_location_t::standard_block,
                 {timing_type_t::undefined, timing_type_t::dmt, timing_type_t::gft, timing_type_t::cvt})) {
    const auto code = meaningful_code(mode);
    if (code && codes.size() < 16 && !std_timings_block_t(codes).contains(mode)) {
      codes.insert(codes.end(), code->begin(), code->end());
    }
  }
  codes.resize(16, 1);
  EXPECT_EQ(copy_of(edid.base()->standard().bytes()), codes);
}

/// A mode that a code may fit: of DMT at another rate or with another blanking, or one of a fitting shape.
vid_resolution_t standard_mode(random_t& random) {
  static const modes_t dmt = all_dmt();
  constexpr int32_t shapes[][2] = {{16, 10}, {4, 3}, {5, 4}, {16, 9}, {1, 1}};
  constexpr float rates[] = {24, 50, 56, 59.94F, 60, 70, 72, 75, 85, 120, 144};
  vid_resolution_t mode = random.one_of(dmt);
  if (random.coin()) {
    const auto& shape = shapes[random.below(std::size(shapes))];
    const auto scale = static_cast<int32_t>(random.between(1, 200));
    mode = vid_resolution_t(shape[0] * scale, shape[1] * scale, timing_type_t::undefined, timing_location_t::undefined,
                            60);
  }
  mode.fps = random.coin() ? mode.fps : random.one_of(rates);
  mode.reduced_blanking = random.coin();
  return mode;
}

}  // namespace

TEST(WrittenModesProperties, EveryBlockHasJustTheModesThatAreMeantForItInOrderUpToItsRoom) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 500; ++i) {
    const modes_t list = random.list();
    edid_t edid = written(edid_t(random.coin() ? television() : monitor()), list);
    expect_detailed(edid, list);
    expect_video_codes(edid, list);
    expect_hdmi_codes(edid, list);
    expect_established(edid, list);
    expect_standard(edid, list);
  }
}

TEST(WrittenModesProperties, ALongListFillsEveryBlock) {
  SCOPED_TRACE(seed);
  random_t random;
  modes_t list;
  for (int i = 0; i < 40; ++i) {
    const modes_t more = random.list();
    list.insert(list.end(), more.begin(), more.end());
  }
  edid_t edid = written(edid_t(monitor()), list);
  expect_detailed(edid, list);
  expect_video_codes(edid, list);
  expect_hdmi_codes(edid, list);
  expect_established(edid, list);
  expect_standard(edid, list);
  EXPECT_EQ(edid.base()->detailed().count(), 2U);
  EXPECT_EQ(edid.cta()->detailed().count(), edid.cta()->detailed().capacity());
  EXPECT_EQ(edid.cta()->find_block(2)->size(), cta_data_block_t::largest_size);
  EXPECT_EQ(edid.base()->standard().count(), 8U);
}

TEST(WrittenModesProperties, AVideoCodeIsTakenWhereverThereIsOneAndRoomForIt) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 200; ++i) {
    cta_video_data_block_t block;
    for (const vid_resolution_t& mode : random.list()) {
      const bytes_t before = copy_of(block.bytes());
      const bool added = block.add(mode);
      EXPECT_EQ(added, cta_vic(mode) != no_timing_number && before.size() < cta_data_block_t::largest_size);
      EXPECT_EQ(block.size(), before.size() + (added ? 1 : 0));
      if (added) {
        EXPECT_TRUE(block.contains(mode).has_value());
        EXPECT_EQ(block.bytes().back(), cta_vic(mode));
      }
    }
    EXPECT_EQ(cta_data_block_t::told_size(block.byte(0)), block.size());
  }
}

TEST(WrittenModesProperties, AStandardCodeIsTakenWhereverItFitsAndMeansAMode) {
  SCOPED_TRACE(seed);
  random_t random;
  int taken = 0;
  for (int i = 0; i < 20000; ++i) {
    const vid_resolution_t mode = standard_mode(random);
    const auto code = meaningful_code(mode);
    std_timings_block_t block({});
    ASSERT_EQ(block.add(mode), code.has_value()) << mode.key();
    EXPECT_EQ(block.count(), code ? 1U : 0U);
    if (code) {
      ++taken;
      EXPECT_EQ(copy_of(block.bytes().first(2)), *code) << mode.key();
    }
  }
  EXPECT_GT(taken, 1000);
}

TEST(WrittenModesProperties, AStandardCodeMeansTheModeThatItWasTakenForIfThatIsOneThatItCanTell) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 5000; ++i) {
    const vid_resolution_t mode = standard_mode(random);
    std_timings_block_t block({});
    if (!block.add(mode)) {
      EXPECT_FALSE(block.remove(mode)) << mode.key();
      continue;
    }
    const modes_t again = block.modes(3, mode.reduced_blanking);
    ASSERT_EQ(again.size(), 1U);
    const bool size_told = mode.width % 8 == 0 && again[0].width != 1366;
    const bool rate_told = mode.nominal_fps() >= 60 && mode.nominal_fps() < 60 + 64;
    EXPECT_EQ(again[0].width == mode.width && again[0].height == mode.height, size_told) << mode.key();
    EXPECT_EQ(again[0] == mode, size_told && rate_told) << mode.key();
    EXPECT_EQ(block.remove(mode), size_told && rate_told) << mode.key();
    EXPECT_EQ(block.count(), size_told && rate_told ? 0U : 1U) << mode.key();
  }
}
