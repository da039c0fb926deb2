// What is written into data blocks survives: it is read back from the bytes that their extension is put together to.

#include <gtest/gtest.h>

#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_extension.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_vendor_data_blocks.h"
#include "random.h"

using namespace edid_lib;

namespace {

constexpr int rounds = 500;

/// The block as it is read from the bytes of an extension that has it.
template <typename Block>
Block reread(const Block& block) {
  cta_extension_t extension;
  extension.add_block(block.clone());
  const cta_extension_t again(extension.assemble());
  EXPECT_TRUE(again.valid());
  EXPECT_EQ(again.data_blocks().size(), 1U);
  return dynamic_cast<const Block&>(*again.data_blocks().at(0));
}

}  // namespace

TEST(DataBlockProperties, AnHdmiBlockSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  const modes_t known = all_hdmi();
  for (int i = 0; i < rounds; ++i) {
    cta_hdmi_vsdb_t block;
    const auto address = static_cast<uint16_t>(random.below(0x10000));
    const uint32_t tmds = random.below(256) * 5;
    const bool bits[] = {random.coin(), random.coin(), random.coin(), random.coin(), random.coin()};
    block.set_physical_address(address);
    block.set_supports_ai(bits[0]);
    block.set_deep_color_36bit(bits[1]);
    block.set_dvi_dual(bits[2]);
    block.set_max_tmds_mhz(tmds);
    block.resize(15);
    block.set_latency_present(bits[3]);
    block.set_interlaced_latency_present(bits[4]);
    block.set_hdmi_video_present(true);
    bytes_t vics;
    for (uint32_t count = random.below(8); count > 0; --count) {
      const vid_resolution_t& mode = random.one_of(known);
      ASSERT_TRUE(block.add(mode));
      vics.push_back(static_cast<uint8_t>(hdmi_vic(mode)));
    }
    const cta_hdmi_vsdb_t again = reread(block);
    EXPECT_EQ(again.physical_address(), address);
    EXPECT_EQ(again.max_tmds_mhz(), tmds);
    EXPECT_EQ(again.supports_ai(), bits[0]);
    EXPECT_EQ(again.deep_color_36bit(), bits[1]);
    EXPECT_EQ(again.dvi_dual(), bits[2]);
    EXPECT_EQ(again.latency_present(), bits[3]);
    EXPECT_EQ(again.interlaced_latency_present(), bits[4]);
    EXPECT_EQ(copy_of(again.hdmi_vics()), vics);
    EXPECT_EQ(again.modes().size(), vics.size());
  }
}

TEST(DataBlockProperties, AnAudioBlockSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    const std::size_t count = random.below(11);
    cta_audio_data_block_t block(count);
    bytes_t told;
    for (std::size_t k = 0; k < count; ++k) {
      const bytes_t one{static_cast<uint8_t>(random.below(16)), static_cast<uint8_t>(random.between(1, 8)),
                        static_cast<uint8_t>(random.below(128)), static_cast<uint8_t>(random.below(256))};
      block.set_format(one[0], k);
      block.set_channels(one[1], k);
      block.set_sample_rates(one[2], k);
      block.set_third_byte(one[3], k);
      told.insert(told.end(), one.begin(), one.end());
    }
    const cta_audio_data_block_t again = reread(block);
    ASSERT_EQ(again.count(), count);
    for (std::size_t k = 0; k < count; ++k) {
      EXPECT_EQ(again.format(k), told[4 * k]);
      EXPECT_EQ(again.channels(k), told[4 * k + 1]);
      EXPECT_EQ(again.sample_rates(k), told[4 * k + 2]);
      EXPECT_EQ(again.third_byte(k), told[4 * k + 3]);
    }
  }
}

TEST(DataBlockProperties, AForumBlockSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_hdmi_forum_vsdb_t block;
    const uint32_t rate = random.between(1, 255) * 5;
    const bool bits[] = {random.coin(), random.coin(), random.coin()};
    block.set_max_tmds_rate(rate);
    block.set_osd_disparity_3d(bits[0]);
    block.set_deep_color_420_36bit(bits[1]);
    block.set_deep_color_420_30bit(bits[2]);
    const cta_hdmi_forum_vsdb_t again = reread(block);
    EXPECT_EQ(again.max_tmds_rate(), rate < 340 ? 0 : rate);
    EXPECT_EQ(again.osd_disparity_3d(), bits[0]);
    EXPECT_EQ(again.deep_color_420_36bit(), bits[1]);
    EXPECT_EQ(again.deep_color_420_30bit(), bits[2]);
  }
}

TEST(DataBlockProperties, AColorimetryBlockSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_colorimetry_exdb_t block;
    const auto colorimetries = static_cast<uint8_t>(random.below(256));
    const auto metadata = static_cast<uint8_t>(random.below(16));
    block.set_colorimetries(colorimetries);
    ASSERT_TRUE(block.set_metadata(metadata));
    const cta_colorimetry_exdb_t again = reread(block);
    EXPECT_EQ(again.colorimetries(), colorimetries);
    EXPECT_EQ(again.metadata(), metadata);
  }
}

TEST(DataBlockProperties, AVideoCapabilityBlockSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_video_capability_exdb_t block;
    const bool bits[] = {random.coin(), random.coin()};
    const overscan_behavior_t behaviors[] = {overscan_behavior_t(random.below(4)), overscan_behavior_t(random.below(4)),
                                             overscan_behavior_t(random.below(4))};
    block.set_quantization_ycc(bits[0]);
    block.set_quantization_rgb(bits[1]);
    block.set_preferred_timing(behaviors[0]);
    block.set_it_video(behaviors[1]);
    block.set_ce_video(behaviors[2]);
    const cta_video_capability_exdb_t again = reread(block);
    EXPECT_EQ(again.quantization_ycc(), bits[0]);
    EXPECT_EQ(again.quantization_rgb(), bits[1]);
    EXPECT_EQ(again.preferred_timing(), behaviors[0]);
    EXPECT_EQ(again.it_video(), behaviors[1]);
    EXPECT_EQ(again.ce_video(), behaviors[2]);
  }
}

TEST(DataBlockProperties, AListOf420CodesSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_ycc_420_video_exdb_t block;
    const bytes_t told = random.bytes(random.below(31));
    for (const uint8_t vic : told) {
      ASSERT_TRUE(block.add(vic));
    }
    EXPECT_EQ(copy_of(reread(block).vics()), told);
  }
}

TEST(DataBlockProperties, AMapOf420EntriesSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_ycc_420_capability_exdb_t block;
    std::vector<bool> told(240, false);
    for (uint32_t changes = random.below(60); changes > 0; --changes) {
      const uint32_t entry = random.below(240);
      told[entry] = random.coin();
      ASSERT_TRUE(block.set(entry, told[entry]));
    }
    const cta_ycc_420_capability_exdb_t again = reread(block);
    for (std::size_t entry = 0; entry < told.size(); ++entry) {
      EXPECT_EQ(again.contains(entry), told[entry]) << entry;
    }
  }
}
