#include <gtest/gtest.h>

#include <cmath>

#include "edid_lib/edid_base.h"
#include "edid_lib/manufacturer_names.h"
#include "test_support/edid_builder.h"

using edid_lib::chromaticity_t;
using edid_lib::edid_base_t;
using test_support::edid_builder_t;

namespace {

edid_base_t base_of(uint8_t version, uint8_t revision) {
  return edid_base_t(edid_builder_t().byte(18, version).byte(19, revision).build());
}

edid_base_t base() { return base_of(1, 3); }

/// Sets the byte to all ones and to zero around the change of one field, to see that it changes its own bits alone.
template <typename Change>
void expect_bits(uint8_t index, uint8_t mask, Change change) {
  edid_base_t one = base_of(1, 4);
  one.and_mask(index, 0);
  change(one, true);
  EXPECT_EQ(one.byte(index), mask);
  one.or_mask(index, 0xFF);
  change(one, false);
  EXPECT_EQ(one.byte(index), 0xFF & ~mask);
}

}  // namespace

TEST(EdidBaseFields, HeaderIsToldAndWritten) {
  edid_base_t one;
  EXPECT_FALSE(one.has_header());
  one = base();
  EXPECT_TRUE(one.has_header());
  one.or_mask(7, 1);
  EXPECT_FALSE(one.has_header());
  one.set_header();
  EXPECT_TRUE(one.has_header());
}

TEST(EdidBaseFields, ManufacturerIsThreeLetters) {
  edid_base_t one(edid_builder_t().byte(8, 0x04).byte(9, 0x72).build());
  EXPECT_EQ(one.manufacturer_id(), "ACR");
  EXPECT_EQ(edid_lib::manufacturer_name(one.manufacturer_id()), "Acer");
  one.set_manufacturer_id("SNY");
  EXPECT_EQ(one.manufacturer_id(), "SNY");
  EXPECT_EQ(one.byte(8), 0x4D);
  EXPECT_EQ(one.byte(9), 0xD9);
}

TEST(EdidBaseFields, ManufacturerTakesOneToThreeLettersAndMasksThem) {
  edid_base_t one = base();
  one.set_manufacturer_id("A");
  EXPECT_EQ(one.manufacturer_id(), "A@@");
  one.set_manufacturer_id("");
  EXPECT_EQ(one.manufacturer_id(), "@@@");
  one.set_manufacturer_id("ABCD");
  EXPECT_EQ(one.manufacturer_id(), "ABC");
  one.set_manufacturer_id("abc");
  EXPECT_EQ(one.manufacturer_id(), "ABC");
}

TEST(EdidBaseFields, ProductCodeAndSerialNumberAreLittleEndian) {
  edid_base_t one = base();
  one.set_product_code(0x1234);
  one.set_serial_number(0xFEDCBA98);
  EXPECT_EQ(one.byte(10), 0x34);
  EXPECT_EQ(one.byte(11), 0x12);
  EXPECT_EQ(one.byte(12), 0x98);
  EXPECT_EQ(one.byte(15), 0xFE);
  EXPECT_EQ(one.product_code(), 0x1234);
  EXPECT_EQ(one.serial_number(), 0xFEDCBA98);
  EXPECT_EQ(one.serial_number_text(), "4275878552");
}

TEST(EdidBaseFields, WeekIs1To53OrNone) {
  edid_base_t one = base();
  for (const uint32_t week : {1U, 53U}) {
    one.set_week(week);
    EXPECT_EQ(one.week(), week);
  }
  for (const uint32_t week : {0U, 54U, 255U, 257U}) {
    one.set_week(week);
    EXPECT_EQ(one.week(), 0U);
  }
}

TEST(EdidBaseFields, YearsCountFrom1990) {
  edid_base_t one = base();
  one.set_year(2012);
  EXPECT_EQ(one.byte(17), 22);
  EXPECT_EQ(one.year(), 2012U);
  one.set_year(1990);
  EXPECT_EQ(one.byte(17), 0);
  one.set_year(1900);
  EXPECT_EQ(one.byte(17), 0);
  one.set_year(2245);
  EXPECT_EQ(one.year(), 2245U);
  one.set_year(2246);
  EXPECT_EQ(one.year(), 2245U);
}

TEST(EdidBaseFields, VersionIsAlwaysWrittenAs1) {
  edid_base_t one = base_of(2, 4);
  one.set_version(2);
  EXPECT_EQ(one.version(), 1);
}

TEST(EdidBaseFields, RevisionIsWrittenAs4Or3AndTheRestFollows) {
  edid_base_t one = base_of(1, 4);
  one.or_mask(20, 0xFF);
  one.set_revision(4);
  EXPECT_EQ(one.revision(), 4);
  EXPECT_EQ(one.byte(20), 0xFF);
  one.set_revision(2);
  EXPECT_EQ(one.revision(), 3);
  EXPECT_EQ(one.byte(20), 0x81);
}

TEST(EdidBaseFields, ColorTypeFollowsTheRevision) {
  edid_base_t one = base_of(1, 4);
  one.set_color_type(5);
  EXPECT_EQ(one.byte(24) & 0x18, 0x18);
  one.set_revision(3);
  EXPECT_EQ(one.byte(24) & 0x18, 0x08);
  EXPECT_EQ(one.color_type(), 1);
}

TEST(EdidBaseFields, DigitalInputIsAFlagOfEveryVersion) {
  edid_base_t one = base();
  one.set_digital_input(false);
  EXPECT_FALSE(one.digital_input());
  one.set_digital_input(true);
  EXPECT_EQ(one.byte(20), 0x80);
}

TEST(EdidBaseFields, ColorDepthOf1_4IsEvenFrom6To16) {
  edid_base_t one = base_of(1, 4);
  const uint8_t codes[] = {0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 0};
  for (uint8_t depth = 0; depth < std::size(codes); ++depth) {
    one.set_color_depth(depth);
    EXPECT_EQ(one.byte(20), 0x80 | codes[depth] << 4) << int{depth};
    EXPECT_EQ(one.color_depth(), codes[depth] == 0 ? 0 : depth);
  }
  one.set_color_depth(255);
  EXPECT_EQ(one.color_depth(), 0);
  one.or_mask(20, 0x70);
  EXPECT_EQ(one.color_depth(), 0);
}

TEST(EdidBaseFields, DigitalInterfaceOf1_4IsBelow6) {
  edid_base_t one = base_of(1, 4);
  for (uint8_t number = 0; number < 6; ++number) {
    one.set_digital_interface(number);
    EXPECT_EQ(one.byte(20), 0x80 | number);
    EXPECT_EQ(one.digital_interface(), number);
  }
  one.set_digital_interface(6);
  EXPECT_EQ(one.digital_interface(), 0);
  one.or_mask(20, 0x06);
  EXPECT_EQ(one.digital_interface(), 0);
}

TEST(EdidBaseFields, DepthAndInterfaceAreNothingBefore1_4) {
  for (edid_base_t one : {base_of(1, 3), base_of(2, 4), base_of(1, 2)}) {
    one.or_mask(20, 0x25);
    EXPECT_EQ(one.color_depth(), 0);
    EXPECT_EQ(one.digital_interface(), 0);
    one.set_color_depth(16);
    one.set_digital_interface(1);
    EXPECT_EQ(one.byte(20), 0xA5);
  }
}

TEST(EdidBaseFields, SizesAreRawBytes) {
  edid_base_t one = base();
  one.set_h_size_cm(160);
  one.set_v_size_cm(90);
  EXPECT_EQ(one.h_size_cm(), 160);
  EXPECT_EQ(one.v_size_cm(), 90);
  EXPECT_EQ(one.byte(21), 160);
  EXPECT_EQ(one.byte(22), 90);
}

TEST(EdidBaseFields, EveryGammaThatIsToldSurvives) {
  edid_base_t one = base();
  for (int byte = 0; byte < 255; ++byte) {
    one.and_mask(23, 0);
    one.or_mask(23, static_cast<uint8_t>(byte));
    const float gamma = one.gamma();
    EXPECT_FLOAT_EQ(gamma, static_cast<float>(byte + 100) / 100.0F);
    one.and_mask(23, 0);
    one.set_gamma(gamma);
    EXPECT_EQ(one.byte(23), byte);
  }
}

TEST(EdidBaseFields, GammaOutsideItsRangeIsNotStored) {
  edid_base_t one = base();
  one.set_gamma(2.2F);
  for (const float gamma : {0.99F, 3.55F, -1.0F, std::nanf("")}) {
    one.set_gamma(gamma);
    EXPECT_EQ(one.byte(23), 120);
  }
}

TEST(EdidBaseFields, FeaturesAreOneBitEach) {
  expect_bits(24, 0x80, [](edid_base_t& one, bool on) { one.set_standby(on); });
  expect_bits(24, 0x40, [](edid_base_t& one, bool on) { one.set_suspend(on); });
  expect_bits(24, 0x20, [](edid_base_t& one, bool on) { one.set_active_off(on); });
  expect_bits(24, 0x04, [](edid_base_t& one, bool on) { one.set_srgb_default(on); });
  expect_bits(24, 0x02, [](edid_base_t& one, bool on) { one.set_preferred_native(on); });
  expect_bits(24, 0x01, [](edid_base_t& one, bool on) { one.set_continuous_frequency(on); });
}

TEST(EdidBaseFields, FeaturesAreToldByTheirBits) {
  edid_base_t one = base();
  one.and_mask(24, 0);
  EXPECT_FALSE(one.standby() || one.suspend() || one.active_off() || one.srgb_default() || one.preferred_native() ||
               one.continuous_frequency());
  one.or_mask(24, 0xE7);
  EXPECT_TRUE(one.standby() && one.suspend() && one.active_off() && one.srgb_default() && one.preferred_native() &&
              one.continuous_frequency());
}

TEST(EdidBaseFields, WithoutANativePreferredTimingItIsNotValid) {
  edid_base_t one = base();
  EXPECT_TRUE(one.valid());
  one.set_preferred_native(false);
  EXPECT_FALSE(one.valid());
}

TEST(EdidBaseFields, ChromaticityComesWithTheGamma) {
  edid_base_t one = base();
  const chromaticity_t told{0.640625F, 0.328125F, 0.25F, 0.5F, 0.125F, 0.0625F, 0.3125F, 0.328125F, 2.2F};
  one.set_chromaticity(told);
  EXPECT_EQ(one.chromaticity(), told);
  EXPECT_EQ(one.byte(23), 120);
}

TEST(EdidBaseFields, ChromaticityWithoutAGammaLeavesThatAsItIs) {
  edid_base_t one = base();
  one.set_gamma(2.5F);
  chromaticity_t told;
  told.red_x = 0.5F;
  one.set_chromaticity(told);
  EXPECT_EQ(one.gamma(), 2.5F);
  EXPECT_EQ(one.chromaticity().red_x, 0.5F);
}

TEST(EdidBaseFields, ABlockWithoutBytesReadsNothingAndTakesNothing) {
  edid_base_t one;
  one.set_manufacturer_id("ABC");
  one.set_serial_number(1);
  one.set_revision(4);
  one.set_chromaticity({});
  one.set_header();
  EXPECT_EQ(one.size(), 0U);
  EXPECT_EQ(one.manufacturer_id(), "@@@");
  EXPECT_EQ(one.year(), 1990U);
  EXPECT_EQ(one.chromaticity(), chromaticity_t{});
}
