// Copies of whatever blocks are equal to their source and independent of it.

#include <gtest/gtest.h>

#include <typeinfo>

#include "edid_lib/edid.h"
#include "random.h"

using namespace edid_lib;

namespace {

constexpr int rounds = 500;

/// An extension full of blocks of all classes.
bytes_t random_extension(random_t& random) {
  bytes_t bytes{2, 3, 0, static_cast<uint8_t>(random.below(256))};
  const auto append = [&](const bytes_t& more) { bytes.insert(bytes.end(), more.begin(), more.end()); };
  append(test_support::data_block(1, {9, 7, 7}));
  append(test_support::data_block(2, {16, 31, 0x90}));
  append(test_support::data_block(3, {0x03, 0x0C, 0, 0x10, 0, 0x80, 60, 0x20, 0, 0x20, 1}));
  append(test_support::data_block(3, {0xD8, 0x5D, 0xC4, 1, 120, 0x80, 3}));
  append(test_support::data_block(3, {1, 2, 3, 4}));
  append(test_support::data_block(4, {1, 0, 0}));
  for (const uint8_t tag : {uint8_t{0}, uint8_t{5}, uint8_t{6}, uint8_t{14}, uint8_t{15}}) {
    append(test_support::data_block(7, {tag, static_cast<uint8_t>(random.below(256)), 3}));
  }
  bytes[2] = static_cast<uint8_t>(bytes.size());
  append(random.bytes(128 - bytes.size()));
  return bytes;
}

/// Changes some bits of the block's first bytes, also those that say what it is, or takes it all bytes.
void spoil(edid_block_t& block, random_t& random) {
  if (random.below(10) == 0) {
    block.reset();
  }
  for (uint8_t i = 0; i < 6; ++i) {
    if (random.below(4) == 0) {
      block.set_mask(i, static_cast<uint8_t>(random.below(256)), random.coin());
    }
  }
}

template <typename List>
void expect_same_blocks(const List& copied, const List& source) {
  ASSERT_EQ(copied.size(), source.size());
  for (std::size_t i = 0; i < source.size(); ++i) {
    const edid_block_t& one = *copied[i];
    const edid_block_t& other = *source[i];
    EXPECT_NE(&one, &other);
    EXPECT_EQ(typeid(one), typeid(other));
    EXPECT_EQ(copy_of(one.bytes()), copy_of(other.bytes()));
    EXPECT_EQ(one.valid(), other.valid());
  }
}

edid_base_t random_base(random_t& random) {
  bytes_t bytes = random.coin() ? television() : random_edid(random);
  bytes.resize(128);
  constexpr uint8_t tags[] = {0x10, 0xFC, 0xFD, 0xFE, 0xFF};
  bytes[72 + 3] = random.one_of(tags);
  bytes[90 + 3] = random.one_of(tags);
  edid_base_t base(bytes);
  for (const auto& descriptor : base.descriptors()) {
    spoil(*descriptor, random);
  }
  return base;
}

cta_extension_t random_cta(random_t& random) {
  cta_extension_t extension(random.coin() ? random_extension(random) : random.bytes(128));
  for (const auto& block : extension.data_blocks()) {
    spoil(*block, random);
  }
  if (random.coin()) {
    extension.detailed();
  }
  return extension;
}

}  // namespace

TEST(CopyProperties, ACopyOfABaseBlockIsEqualToItAndIndependent) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    edid_base_t source = random_base(random);
    const bytes_t before = source.assemble(0);
    edid_base_t copy(source);
    EXPECT_EQ(copy.valid(), source.valid());
    expect_same_blocks(copy.descriptors(), source.descriptors());
    EXPECT_EQ(copy.assemble(0), before);
    copy.reset();
    EXPECT_NE(copy.assemble(0), before);
    EXPECT_EQ(source.assemble(0), before);
    copy = source;
    source.reset();
    EXPECT_EQ(copy.assemble(0), before);
    const edid_base_t& same = copy;
    copy = same;
    EXPECT_EQ(copy.assemble(0), before);
  }
}

TEST(CopyProperties, ACopyOfAnExtensionIsEqualToItAndIndependent) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    cta_extension_t source = random_cta(random);
    const bytes_t before = source.assemble();
    cta_extension_t copy(source);
    EXPECT_EQ(copy.valid(), source.valid());
    expect_same_blocks(copy.data_blocks(), source.data_blocks());
    EXPECT_EQ(copy.assemble(), before);
    copy.detailed().clear();
    copy.reset();
    copy.set_underscan(!source.underscan());
    EXPECT_NE(copy.assemble(), before);
    EXPECT_EQ(source.assemble(), before);
    copy = source;
    source.reset();
    EXPECT_EQ(copy.assemble(), before);
    const cta_extension_t& same = copy;
    copy = same;
    EXPECT_EQ(copy.assemble(), before);
  }
}

TEST(CopyProperties, ACopyOfAnEdidIsEqualToItAndIndependent) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < rounds; ++i) {
    const edid_t source(random.coin() ? television() : random_edid(random));
    const bytes_t before = source.assemble();
    const edid_t changed = written(source, random.list());
    EXPECT_EQ(source.assemble(), before);
    const bytes_t after = changed.assemble();
    edid_t other;
    other = changed;
    EXPECT_EQ(other.valid(), changed.valid());
    const edid_t& same = other;
    other = same;
    EXPECT_EQ(other.assemble(), after);
    other.base()->reset();
    EXPECT_EQ(changed.assemble(), after);
    EXPECT_NE(other.assemble(), after);
  }
}
