#include "edid_lib/edid_base.h"

#include <gtest/gtest.h>

#include <typeinfo>

#include "edid_lib/visitor_modes.h"
#include "test_support/edid_builder.h"

using edid_lib::edid_base_t;
using edid_lib::monitor_name_base_block_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;
using test_support::edid_builder_t;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr vid_timing_t svga = {40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5};

edid_base_t parse(const edid_builder_t& builder) { return edid_base_t(builder.build()); }

edid_base_t with_version(uint8_t version, uint8_t revision) {
  return parse(edid_builder_t().byte(18, version).byte(19, revision));
}

std::vector<uint32_t> descriptor_offsets(const edid_base_t& base) {
  std::vector<uint32_t> offsets;
  for (const auto& descriptor : base.descriptors()) {
    offsets.push_back(descriptor->offset());
  }
  return offsets;
}

void expect_header(const edid_base_t& base) {
  const uint8_t header[] = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
  for (uint8_t i = 0; i < 8; ++i) {
    EXPECT_EQ(base.byte(i), header[i]);
  }
}

}  // namespace

TEST(EdidBase, NoBytesBecomeAnEmptyBlockThatIsNotValid) {
  const edid_base_t base(std::span<const uint8_t>{});
  expect_header(base);
  EXPECT_EQ(base.size(), 128U);
  EXPECT_EQ(base.version(), 1);
  EXPECT_EQ(base.revision(), 3);
  EXPECT_TRUE(base.digital_input());
  EXPECT_FALSE(base.valid());
}

TEST(EdidBase, TooManyBytesAreCut) { EXPECT_EQ(edid_base_t(std::vector<uint8_t>(500, 0xAA)).size(), 128U); }

TEST(EdidBase, ABrokenHeaderIsPutRight) {
  expect_header(parse(edid_builder_t().byte(0, 0x12).byte(3, 0x34).byte(7, 0x56)));
}

TEST(EdidBase, KnownVersionsStayAndOthersBecome1) {
  EXPECT_EQ(with_version(1, 3).version(), 1);
  EXPECT_EQ(with_version(2, 3).version(), 2);
  EXPECT_EQ(with_version(0, 3).version(), 1);
  EXPECT_EQ(with_version(3, 3).version(), 1);
}

TEST(EdidBase, KnownRevisionsStayAndOthersBecome3) {
  EXPECT_EQ(with_version(1, 2).revision(), 2);
  EXPECT_EQ(with_version(1, 3).revision(), 3);
  EXPECT_EQ(with_version(1, 4).revision(), 4);
  EXPECT_EQ(with_version(1, 1).revision(), 3);
  EXPECT_EQ(with_version(1, 5).revision(), 3);
}

TEST(EdidBase, AnalogueInputBecomesDigitalAndThePreferredTimingNative) {
  const edid_base_t base = parse(edid_builder_t().byte(20, 0x0E).byte(24, 0x0A));
  EXPECT_EQ(base.byte(20), 0x8E);
  EXPECT_EQ(base.byte(24), 0x0A);
  EXPECT_EQ(parse(edid_builder_t().byte(24, 0)).byte(24), 0x02);
}

TEST(EdidBase, ARepairedRevisionDropsTheInputBitsThatItDoesNotKnow) {
  EXPECT_EQ(parse(edid_builder_t().byte(19, 9).byte(20, 0xFF)).byte(20), 0x81);
  EXPECT_EQ(parse(edid_builder_t().byte(19, 4).byte(20, 0xFF)).byte(20), 0xFF);
  EXPECT_EQ(parse(edid_builder_t().byte(18, 2).byte(19, 9).byte(20, 0xFF)).byte(20), 0xFF);
}

TEST(EdidBase, ARepairedRevisionHasAColorTypeThatItKnows) {
  EXPECT_EQ(parse(edid_builder_t().byte(19, 9).byte(24, 0xFF)).byte(24), 0xEF);
  EXPECT_EQ(parse(edid_builder_t().byte(19, 9).byte(24, 0x12)).byte(24), 0x12);
  EXPECT_EQ(parse(edid_builder_t().byte(19, 9).byte(24, 0x0A)).byte(24), 0x0A);
  EXPECT_EQ(parse(edid_builder_t().byte(19, 9).byte(24, 0xE7)).byte(24), 0xE7);
}

TEST(EdidBase, ColorTypeIsReadByVersion) {
  const auto color_type = [](uint8_t version, uint8_t revision, uint8_t features) {
    return parse(edid_builder_t().byte(18, version).byte(19, revision).byte(24, features)).color_type();
  };
  EXPECT_EQ(color_type(1, 3, 0x00), 0);
  EXPECT_EQ(color_type(1, 3, 0x08), 1);
  EXPECT_EQ(color_type(1, 3, 0x10), 2);
  EXPECT_EQ(color_type(1, 3, 0x18), 6);
  EXPECT_EQ(color_type(1, 4, 0x00), 1);
  EXPECT_EQ(color_type(1, 4, 0x08), 3);
  EXPECT_EQ(color_type(1, 4, 0x18), 5);
  EXPECT_EQ(color_type(2, 3, 0x10), 4);
  EXPECT_EQ(color_type(1, 2, 0x00), 1);
  EXPECT_EQ(color_type(1, 2, 0x08), 3);
  EXPECT_EQ(color_type(1, 2, 0x10), 4);
  EXPECT_EQ(color_type(1, 2, 0x18), 5);
}

TEST(EdidBase, ColorTypeIsWrittenByVersion) {
  const uint8_t of_1_3[] = {0, 8, 16, 8, 8, 8, 8, 8};
  const uint8_t of_1_4[] = {0, 0, 0, 8, 16, 24, 0, 0};
  const uint8_t of_others[] = {0, 0, 0, 8, 0, 0, 0, 0};
  for (uint8_t type = 0; type < 8; ++type) {
    edid_base_t base = with_version(1, 3);
    base.set_color_type(type);
    EXPECT_EQ(base.byte(24) & 0x18, of_1_3[type]) << int{type};
    base = with_version(1, 4);
    base.set_color_type(type);
    EXPECT_EQ(base.byte(24) & 0x18, of_1_4[type]) << int{type};
    for (edid_base_t other : {with_version(2, 3), with_version(2, 4), with_version(1, 2)}) {
      other.set_color_type(type);
      EXPECT_EQ(other.byte(24) & 0x18, of_others[type]) << int{type};
    }
  }
}

TEST(EdidBase, ChecksumIsNeitherVerifiedNorPutRight) {
  auto bytes = edid_builder_t().build();
  bytes[127] = 0x55;
  const edid_base_t base(bytes);
  EXPECT_EQ(base.byte(127), 0x55);
  EXPECT_TRUE(base.valid());
}

TEST(EdidBase, ExtensionCountStaysAsItIs) { EXPECT_EQ(parse(edid_builder_t().byte(126, 7)).byte(126), 7); }

TEST(EdidBase, IsValidExactlyWith640x480At60) {
  EXPECT_TRUE(parse(edid_builder_t()).valid());
  EXPECT_FALSE(parse(edid_builder_t().byte(35, 0xDF)).valid());
}

TEST(EdidBase, ATextThatHasLostItsTagMakesItInvalid) {
  for (const uint8_t tag : {uint8_t{0xFC}, uint8_t{0xFE}, uint8_t{0xFF}}) {
    const edid_base_t base = parse(edid_builder_t().descriptor(72, tag, "TEXT"));
    EXPECT_TRUE(base.valid());
    base.descriptors()[0]->and_mask(3, 0);
    EXPECT_FALSE(base.valid()) << int{tag};
  }
}

TEST(EdidBase, ADescriptorThatIsNoTextIsAlwaysValid) {
  const edid_base_t base = parse(edid_builder_t().descriptor(72, 0xFD, ""));
  base.descriptors()[0]->and_mask(3, 0);
  EXPECT_TRUE(base.valid());
}

TEST(EdidBase, WithOneDetailedTimingThreeDescriptorsFollow) {
  const edid_base_t base = parse(edid_builder_t().detailed(0, full_hd).descriptor(72, 0xFC, "NAME"));
  EXPECT_EQ(descriptor_offsets(base), (std::vector<uint32_t>{72, 90, 108}));
  EXPECT_EQ(base.descriptors()[0]->tag(), 0xFC);
}

TEST(EdidBase, WithTwoDetailedTimingsTwoDescriptorsFollow) {
  const edid_base_t base = parse(edid_builder_t().detailed(0, full_hd).detailed(1, svga).descriptor(108, 0xFF, "1"));
  EXPECT_EQ(descriptor_offsets(base), (std::vector<uint32_t>{90, 108}));
  EXPECT_EQ(base.descriptors()[1]->tag(), 0xFF);
}

TEST(EdidBase, MadeWithoutBytesHasEmptyTimingsAndRoomForTwoDetailedOnes) {
  const edid_base_t base;
  EXPECT_EQ(base.size(), 0U);
  EXPECT_EQ(base.established().size(), 3U);
  EXPECT_EQ(base.standard().size(), 16U);
  EXPECT_EQ(base.detailed().offset(), 54U);
  EXPECT_EQ(base.detailed().capacity(), 2U);
  EXPECT_TRUE(base.descriptors().empty());
  EXPECT_FALSE(base.valid());
}

TEST(EdidBase, CanBeBuiltUpFromAReset) {
  edid_base_t base;
  base.reset();
  EXPECT_EQ(base.size(), 128U);
  EXPECT_EQ(base.version(), 1);
  EXPECT_EQ(base.revision(), 3);
  base.set_manufacturer_id("ACR");
  base.established().set(vid_resolution_t("640x480@60"), true);
  EXPECT_TRUE(base.standard().add(vid_resolution_t("1280x1024@60")));
  EXPECT_TRUE(base.detailed().add(vid_resolution_t(full_hd)));
  EXPECT_TRUE(base.detailed().add(vid_resolution_t(svga)));
  auto name = std::make_unique<monitor_name_base_block_t>(90);
  name->set_text("Tarn");
  base.add_descriptor(std::move(name));
  EXPECT_TRUE(base.valid());

  const edid_base_t read(base.assemble(0));
  EXPECT_TRUE(read.valid());
  EXPECT_EQ(read.manufacturer_id(), "ACR");
  EXPECT_EQ(read.standard().count(), 1U);
  EXPECT_EQ(read.detailed().modes().size(), 2U);
  EXPECT_EQ(read.descriptors()[0]->name(), "Base Monitor Name Descriptor");
  EXPECT_EQ(read.descriptors()[1]->name(), "Base Dummy Descriptor");
  EXPECT_EQ(read.checksum(127), read.byte(127));
}

TEST(EdidBase, AResetForgetsEverything) {
  edid_base_t base = parse(edid_builder_t().detailed(0, full_hd).descriptor(72, 0xFC, "NAME").byte(8, 0x44));
  base.reset();
  EXPECT_TRUE(base.descriptors().empty());
  EXPECT_TRUE(base.detailed().modes().empty());
  EXPECT_TRUE(base.established().modes().empty());
  EXPECT_EQ(base.byte(8), 0);
}

TEST(EdidBase, PutTogetherUntouchedItIsAsItWasButForTheChecksum) {
  auto bytes = edid_builder_t()
                   .detailed(0, full_hd)
                   .descriptor(72, 0xFC, "NAME")
                   .descriptor(90, 0xFD, "RANGE")
                   .standard(3, 0xD1, 0xC0)
                   .byte(126, 1)
                   .build();
  const uint8_t right = bytes[127];
  bytes[127] = 0x55;
  const auto whole = edid_base_t(bytes).assemble(1);
  bytes[127] = right;
  EXPECT_EQ(whole, bytes);
}

TEST(EdidBase, PutTogetherHasWhatItsBlocksHave) {
  edid_base_t base = parse(edid_builder_t().detailed(0, full_hd).detailed(1, svga).descriptor(90, 0xFC, "OLD"));
  base.established().set(vid_resolution_t("800x600@60"), true);
  base.standard().clear();
  base.standard().add(vid_resolution_t("1920x1080@60"));
  base.detailed().clear();
  base.detailed().add(vid_resolution_t(svga));
  dynamic_cast<monitor_name_base_block_t&>(*base.descriptors()[0]).set_text("NEW");
  EXPECT_EQ(base.byte(35), 0x20);

  const edid_base_t read(base.assemble(0));
  EXPECT_EQ(read.byte(35), 0x21);
  EXPECT_EQ(read.byte(38), 0xD1);
  EXPECT_EQ(read.detailed().modes().at(0).timing, svga);
  EXPECT_EQ(read.descriptors()[0]->tag(), 0x10);
  EXPECT_EQ(dynamic_cast<monitor_name_base_block_t&>(*read.descriptors()[1]).text(), "NEW");
}

TEST(EdidBase, CopiesHaveBlocksOfTheirOwn) {
  edid_base_t base = parse(edid_builder_t().descriptor(72, 0xFC, "NAME"));
  edid_base_t copy(base);
  copy.established().clear();
  copy.standard().add(vid_resolution_t("1920x1080@60"));
  dynamic_cast<monitor_name_base_block_t&>(*copy.descriptors()[0]).set_text("COPY");
  EXPECT_TRUE(base.valid());
  EXPECT_FALSE(copy.valid());
  EXPECT_EQ(base.standard().count(), 0U);
  EXPECT_EQ(dynamic_cast<monitor_name_base_block_t&>(*base.descriptors()[0]).text(), "NAME");
  base = copy;
  EXPECT_EQ(base.standard().count(), 1U);
}

TEST(EdidBase, ACopyOfATextThatHasLostItsTagIsOneToo) {
  const edid_base_t base = parse(edid_builder_t().descriptor(72, 0xFC, "NAME").descriptor(90, 0xFF, "17"));
  base.descriptors()[0]->and_mask(3, 0);
  base.descriptors()[1]->reset();
  const edid_base_t copy(base);
  EXPECT_FALSE(copy.valid());
  ASSERT_EQ(copy.descriptors().size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& source = *base.descriptors()[i];
    const auto& copied = *copy.descriptors()[i];
    EXPECT_EQ(typeid(copied), typeid(source));
    EXPECT_EQ(copied.offset(), source.offset());
    EXPECT_EQ(copied.size(), source.size());
  }
}
