#include "edid_lib/base_descriptor_block.h"

#include <gtest/gtest.h>

using namespace edid_lib;

namespace {

std::vector<uint8_t> descriptor(uint8_t tag, const std::string& text) {
  std::vector<uint8_t> bytes{0, 0, 0, tag, 0};
  bytes.insert(bytes.end(), text.begin(), text.end());
  return bytes;
}

std::string_view name_of(uint8_t tag) { return make_base_descriptor(0, descriptor(tag, ""))->name(); }

std::string monitor_name(const std::string& text) {
  return monitor_name_base_block_t(72, descriptor(0xFC, text)).text();
}

}  // namespace

TEST(BaseDescriptorBlock, TagDecidesTheClass) {
  EXPECT_NE(dynamic_cast<monitor_name_base_block_t*>(make_base_descriptor(72, descriptor(0xFC, "")).get()), nullptr);
  EXPECT_NE(dynamic_cast<monitor_serial_base_block_t*>(make_base_descriptor(72, descriptor(0xFF, "")).get()), nullptr);
  EXPECT_NE(dynamic_cast<ascii_string_base_block_t*>(make_base_descriptor(72, descriptor(0xFE, "")).get()), nullptr);
  const auto other = make_base_descriptor(72, descriptor(0xFD, ""));
  EXPECT_EQ(dynamic_cast<monitor_name_base_block_t*>(other.get()), nullptr);
  EXPECT_EQ(other->tag(), 0xFD);
}

TEST(BaseDescriptorBlock, FewerThanFourBytesAreADescriptorWithoutTag) {
  const auto block = make_base_descriptor(72, std::vector<uint8_t>{1, 2, 3});
  EXPECT_EQ(block->tag(), 0);
  EXPECT_EQ(block->size(), 18U);
  EXPECT_EQ(block->length(), 18U);
  EXPECT_EQ(block->offset(), 72U);
}

TEST(BaseDescriptorBlock, IsNamedByItsTag) {
  EXPECT_EQ(name_of(0x10), "Base Dummy Descriptor");
  EXPECT_EQ(name_of(0x0F), "Base Manufacturer Defined Descriptor");
  EXPECT_EQ(name_of(0x00), "Base Manufacturer Defined Descriptor");
  EXPECT_EQ(name_of(0xFA), "Base Standard Timings Descriptor");
  EXPECT_EQ(name_of(0xFB), "Base Color Descriptor");
  EXPECT_EQ(name_of(0xFC), "Base Monitor Name Descriptor");
  EXPECT_EQ(name_of(0xFD), "Base Monitor Range Descriptor");
  EXPECT_EQ(name_of(0xFE), "Base ASCII String Descriptor");
  EXPECT_EQ(name_of(0xFF), "Base Monitor Serial Descriptor");
  EXPECT_EQ(name_of(0x11), "Undefined Base Descriptor");
  EXPECT_EQ(name_of(0xF9), "Undefined Base Descriptor");
}

TEST(BaseDescriptorBlock, ANameOfThirteenCharactersIsReadWhole) {
  EXPECT_EQ(monitor_name("ABCDEFGHIJKLM"), "ABCDEFGHIJKLM");
}

TEST(BaseDescriptorBlock, WhiteSpaceAtTheEndOfATextIsCut) {
  EXPECT_EQ(monitor_name("LG TV\n       "), "LG TV");
  EXPECT_EQ(monitor_name(" \t\n\v\f\r       "), "");
}

TEST(BaseDescriptorBlock, WhatStandsInsideATextStays) {
  EXPECT_EQ(monitor_name("A\nB          "), "A\nB");
  EXPECT_EQ(monitor_name("AB"), std::string("AB\0\0\0\0\0\0\0\0\0\0\0", 13));
}

TEST(BaseDescriptorBlock, SerialAndStringHaveTheirTexts) {
  EXPECT_EQ(monitor_serial_base_block_t(90, descriptor(0xFF, "S1\n          ")).text(), "S1");
  EXPECT_EQ(ascii_string_base_block_t(90, descriptor(0xFE, "T1\n          ")).text(), "T1");
}

TEST(BaseDescriptorBlock, ATextOfAnotherTagIsNotValid) {
  EXPECT_TRUE(monitor_name_base_block_t(72, descriptor(0xFC, "")).valid());
  EXPECT_FALSE(monitor_name_base_block_t(72, descriptor(0xFF, "")).valid());
  EXPECT_FALSE(monitor_serial_base_block_t(72, descriptor(0xFC, "")).valid());
  EXPECT_FALSE(ascii_string_base_block_t(72, descriptor(0xFC, "")).valid());
  EXPECT_TRUE(base_descriptor_block_t(72, descriptor(0x33, "")).valid());
}

TEST(BaseDescriptorBlock, ATextOfFewerThanFourBytesIsEmpty) {
  for (std::size_t size = 0; size < 4; ++size) {
    const monitor_serial_base_block_t block(90, std::vector<uint8_t>(size, 0x55));
    EXPECT_TRUE(block.valid());
    EXPECT_EQ(block.size(), 18U);
    EXPECT_EQ(block.byte(0), 0);
    EXPECT_EQ(block.byte(4), 0);
    EXPECT_EQ(block.byte(5), ' ');
    EXPECT_EQ(block.byte(17), ' ');
    EXPECT_EQ(block.text(), "");
  }
  EXPECT_EQ(monitor_name_base_block_t(90).tag(), 0xFC);
  EXPECT_EQ(ascii_string_base_block_t(90).tag(), 0xFE);
  EXPECT_FALSE(ascii_string_base_block_t(90, std::vector<uint8_t>(4, 0)).valid());
}

TEST(BaseDescriptorBlock, AWrittenTextEndsWithALineFeedAndBlanks) {
  monitor_name_base_block_t block(72, descriptor(0xFC, "ABCDEFGHIJKLM"));
  block.set_text("LG");
  EXPECT_EQ(block.text(), "LG");
  EXPECT_EQ(block.byte(7), '\n');
  EXPECT_EQ(block.byte(8), ' ');
  EXPECT_EQ(block.byte(17), ' ');
  block.set_text("");
  EXPECT_EQ(block.text(), "");
  EXPECT_EQ(block.byte(5), '\n');
}

TEST(BaseDescriptorBlock, AWrittenTextIsCutToTwelveCharacters) {
  monitor_name_base_block_t block(72);
  block.set_text("ABCDEFGHIJKLM");
  EXPECT_EQ(block.text(), "ABCDEFGHIJKL");
  EXPECT_EQ(block.byte(17), '\n');
  EXPECT_EQ(block.size(), 18U);
}

TEST(BaseDescriptorBlock, WithoutBytesHasNoTagAndNoText) {
  monitor_name_base_block_t block(72);
  block.reset();
  EXPECT_EQ(block.tag(), 0);
  EXPECT_EQ(block.text(), "");
  block.set_text("X");
  EXPECT_EQ(block.size(), 0U);
  EXPECT_FALSE(block.valid());
}
