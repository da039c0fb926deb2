// What is written into the base block survives: it is read back from the bytes that the block is put together to.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "edid_lib/edid_base.h"
#include "random.h"

using namespace edid_lib;

namespace {

constexpr int rounds = 500;

/// The fields of the base block that have a value for every version.
struct base_fields_t {
  std::string manufacturer;
  uint16_t product = 0;
  uint32_t serial = 0;
  uint8_t week = 0;
  uint32_t year = 0;
  uint8_t h_size = 0;
  uint8_t v_size = 0;
  uint8_t color_type = 0;
  bool standby = false;
  bool suspend = false;
  bool active_off = false;
  bool srgb_default = false;
  bool continuous_frequency = false;
  chromaticity_t chromaticity;

  bool operator==(const base_fields_t&) const = default;
};

chromaticity_t random_chromaticity(random_t& random) {
  const auto coordinate = [&] { return static_cast<float>(random.below(1024)) / 1024; };
  chromaticity_t made;
  for (float* one : {&made.red_x, &made.red_y, &made.green_x, &made.green_y, &made.blue_x, &made.blue_y, &made.white_x,
                     &made.white_y}) {
    *one = coordinate();
  }
  made.gamma = static_cast<float>(random.between(100, 354)) / 100;
  return made;
}

base_fields_t random_fields(random_t& random, uint8_t revision) {
  constexpr uint8_t types_of_1_3[] = {0, 1, 2};
  constexpr uint8_t types_of_1_4[] = {1, 3, 4, 5};
  base_fields_t made;
  for (int i = 0; i < 3; ++i) {
    made.manufacturer += static_cast<char>('A' + random.below(26));
  }
  made.product = static_cast<uint16_t>(random.below(0x10000));
  made.serial = random.below(0xFFFFFFFF);
  made.week = static_cast<uint8_t>(random.below(54));
  made.year = random.between(1990, 2245);
  made.h_size = static_cast<uint8_t>(random.below(256));
  made.v_size = static_cast<uint8_t>(random.below(256));
  made.color_type = revision == 4 ? random.one_of(types_of_1_4) : random.one_of(types_of_1_3);
  for (bool* one : {&made.standby, &made.suspend, &made.active_off, &made.srgb_default, &made.continuous_frequency}) {
    *one = random.coin();
  }
  made.chromaticity = random_chromaticity(random);
  return made;
}

void set_fields(edid_base_t& base, const base_fields_t& fields) {
  base.set_manufacturer_id(fields.manufacturer);
  base.set_product_code(fields.product);
  base.set_serial_number(fields.serial);
  base.set_week(fields.week);
  base.set_year(fields.year);
  base.set_h_size_cm(fields.h_size);
  base.set_v_size_cm(fields.v_size);
  base.set_color_type(fields.color_type);
  base.set_standby(fields.standby);
  base.set_suspend(fields.suspend);
  base.set_active_off(fields.active_off);
  base.set_srgb_default(fields.srgb_default);
  base.set_continuous_frequency(fields.continuous_frequency);
  base.set_chromaticity(fields.chromaticity);
}

base_fields_t fields_of(const edid_base_t& base) {
  return {base.manufacturer_id(), base.product_code(), base.serial_number(),        base.week(),        base.year(),
          base.h_size_cm(),       base.v_size_cm(),    base.color_type(),           base.standby(),     base.suspend(),
          base.active_off(),      base.srgb_default(), base.continuous_frequency(), base.chromaticity()};
}

/// A base block of this revision to write into.
edid_base_t fresh_base(uint8_t revision) {
  edid_base_t base;
  base.reset();
  base.set_revision(revision);
  return base;
}

template <typename Text>
void add_text(edid_base_t& base, uint32_t offset, const std::string& text) {
  auto descriptor = std::make_unique<Text>(offset);
  descriptor->set_text(text);
  base.add_descriptor(std::move(descriptor));
}

template <typename Text>
std::string text_at(const edid_base_t& base, std::size_t index) {
  return dynamic_cast<const Text&>(*base.descriptors().at(index)).text();
}

/// A text as it may stand in a descriptor: without white space at its end.
std::string random_text(random_t& random) {
  std::string text;
  for (uint32_t count = random.below(20); count > 0; --count) {
    text += static_cast<char>(random.between('!', '~'));
  }
  return text;
}

}  // namespace

TEST(BaseBlockProperties, FieldsOfTheBaseBlockSurvive) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    const uint8_t revision = random.coin() ? 3 : 4;
    edid_base_t base = fresh_base(revision);
    const base_fields_t told = random_fields(random, revision);
    set_fields(base, told);
    EXPECT_TRUE(fields_of(base) == told);
    const edid_base_t again(base.assemble(0));
    EXPECT_TRUE(fields_of(again) == told);
    EXPECT_EQ(again.revision(), revision);
    EXPECT_EQ(again.assemble(0), base.assemble(0));
  }
}

TEST(BaseBlockProperties, DepthAndInterfaceSurviveInEdid14) {
  SCOPED_TRACE(seed);
  random_t random;
  constexpr uint8_t depths[] = {0, 6, 8, 10, 12, 14, 16};
  for (int i = 0; i < rounds; ++i) {
    edid_base_t base = fresh_base(4);
    const uint8_t depth = random.one_of(depths);
    const auto interface_number = static_cast<uint8_t>(random.below(6));
    base.set_color_depth(depth);
    base.set_digital_interface(interface_number);
    const edid_base_t again(base.assemble(0));
    EXPECT_EQ(again.color_depth(), depth);
    EXPECT_EQ(again.digital_interface(), interface_number);
  }
}

TEST(BaseBlockProperties, TwelveCharactersOfEveryTextSurvive) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    edid_base_t base = fresh_base(3);
    const std::string texts[] = {random_text(random), random_text(random), random_text(random)};
    add_text<monitor_name_base_block_t>(base, 72, texts[0]);
    add_text<monitor_serial_base_block_t>(base, 90, texts[1]);
    add_text<ascii_string_base_block_t>(base, 108, texts[2]);
    const edid_base_t again(base.assemble(0));
    ASSERT_EQ(again.descriptors().size(), 3U);
    EXPECT_EQ(text_at<monitor_name_base_block_t>(again, 0), texts[0].substr(0, 12));
    EXPECT_EQ(text_at<monitor_serial_base_block_t>(again, 1), texts[1].substr(0, 12));
    EXPECT_EQ(text_at<ascii_string_base_block_t>(again, 2), texts[2].substr(0, 12));
  }
}

TEST(BaseBlockProperties, EveryEstablishedBitSurvives) {
  SCOPED_TRACE(seed);
  random_t random;
  const modes_t known = all_established();
  for (int i = 0; i < rounds; ++i) {
    edid_base_t base = fresh_base(3);
    std::vector<bool> told;
    for (const vid_resolution_t& mode : known) {
      told.push_back(random.coin());
      base.established().set(mode, told.back());
    }
    const edid_base_t again(base.assemble(0));
    for (std::size_t k = 0; k < known.size(); ++k) {
      EXPECT_EQ(again.established().contains(known[k]), told[k]) << known[k].key();
    }
  }
}
