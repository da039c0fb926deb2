#include "edid_lib/edid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/visitor_modes.h"
#include "test_support/edid_builder.h"

using edid_lib::edid_t;
using edid_lib::tarn_filter_resolution_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;
using edid_lib::visitor_modes_t;
using test_support::data_block;
using test_support::edid_builder_t;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

edid_builder_t television() {
  return edid_builder_t()
      .detailed(0, full_hd)
      .cta(1, {data_block(2, {16, 31}), data_block(3, {0x03, 0x0C, 0, 0x10, 0})});
}

std::vector<std::string> texts_of(edid_t& edid) {
  visitor_modes_t visitor;
  visitor.read(&edid);
  std::vector<std::string> texts;
  for (const vid_resolution_t& mode : visitor.modes()) {
    texts.push_back(mode.list_text());
  }
  return texts;
}

std::vector<uint8_t> random_bytes(std::mt19937& random, std::size_t count) {
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(random());
  }
  return bytes;
}

/// Parses, copies, reads twice and filters; every answer has to agree with the others.
void expect_consistent(const std::vector<uint8_t>& bytes) {
  edid_t edid(bytes);
  edid_t copy(edid);
  EXPECT_EQ(copy.valid(), edid.valid());
  const auto texts = texts_of(edid);
  EXPECT_EQ(texts_of(edid), texts);
  EXPECT_EQ(texts_of(copy), texts);
  tarn_filter_resolution_t chain;
  chain.max_resolution = vid_resolution_t("3840x2160@60");
  chain.min_resolution = vid_resolution_t("640x480@59.94");
  const auto usable = chain.modes(edid);
  EXPECT_LE(usable.size(), texts.size());
  for (const vid_resolution_t& mode : usable) {
    EXPECT_TRUE(mode.timing.known() && mode.width >= 640 && mode.width <= 3840) << mode.to_string();
  }
}

}  // namespace

TEST(Edid, WithoutBytesHasABaseBlockWithoutModes) {
  edid_t edid(std::vector<uint8_t>{});
  ASSERT_NE(edid.base(), nullptr);
  EXPECT_EQ(edid.base()->version(), 1);
  EXPECT_EQ(edid.base()->revision(), 3);
  EXPECT_TRUE(edid.base()->digital_input());
  EXPECT_EQ(edid.cta(), nullptr);
  EXPECT_FALSE(edid.valid());
  EXPECT_TRUE(texts_of(edid).empty());
}

TEST(Edid, MadeWithoutBytesHasNoParts) {
  edid_t edid;
  EXPECT_EQ(edid.base(), nullptr);
  EXPECT_EQ(edid.cta(), nullptr);
  EXPECT_FALSE(edid.valid());
  EXPECT_TRUE(texts_of(edid).empty());
  const edid_t copy(edid);
  EXPECT_EQ(copy.base(), nullptr);
}

TEST(Edid, ABaseBlockAloneHasNoExtensionWhateverItsCountSays) {
  const edid_t edid(edid_builder_t().byte(126, 1).build());
  EXPECT_EQ(edid.cta(), nullptr);
  EXPECT_TRUE(edid.valid());
}

TEST(Edid, AnExtensionThatIsNoCtaExtensionIsDropped) {
  auto bytes = edid_builder_t().build();
  bytes.resize(256, 0);
  bytes[128] = 0x70;
  EXPECT_EQ(edid_t(bytes).cta(), nullptr);
}

TEST(Edid, ACtaExtensionIsTakenWhateverTheCountSays) {
  EXPECT_NE(edid_t(television().byte(126, 0).build()).cta(), nullptr);
}

TEST(Edid, OneByteOfACtaExtensionIsOne) {
  auto bytes = edid_builder_t().build();
  bytes.push_back(2);
  const edid_t edid(bytes);
  ASSERT_NE(edid.cta(), nullptr);
  EXPECT_EQ(edid.cta()->size(), 128U);
  EXPECT_TRUE(edid.valid());
}

TEST(Edid, OnlyTheFirstExtensionCounts) {
  const edid_t edid(edid_builder_t().cta(0, {}).cta(1, {data_block(2, {16})}).build());
  ASSERT_NE(edid.cta(), nullptr);
  EXPECT_EQ(edid.cta()->native_count(), 0);
  EXPECT_EQ(edid.size(), 384U);
}

TEST(Edid, KeepsTheBytesItWasMadeFrom) {
  auto bytes = edid_builder_t().byte(0, 0x99).build();
  bytes.resize(300, 0x11);
  const edid_t edid(bytes);
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), edid.bytes().begin(), edid.bytes().end()));
}

TEST(Edid, AnInvalidExtensionMakesItInvalid) {
  EXPECT_TRUE(edid_t(television().build()).valid());
  const auto forum_of_version_2 = data_block(3, {0xD8, 0x5D, 0xC4, 2, 0, 0});
  EXPECT_FALSE(edid_t(edid_builder_t().cta(1, {forum_of_version_2}).build()).valid());
}

TEST(Edid, CopiesHavePartsOfTheirOwn) {
  edid_t copy;
  std::vector<std::string> texts;
  {
    edid_t edid(television().build());
    texts = texts_of(edid);
    copy = edid;
    EXPECT_NE(copy.base(), edid.base());
    EXPECT_NE(copy.cta(), edid.cta());
    copy.base()->set_color_type(2);
    EXPECT_NE(copy.base()->color_type(), edid.base()->color_type());
  }
  EXPECT_EQ(texts_of(copy), texts);
}

TEST(Edid, MovingTakesTheParts) {
  edid_t edid(television().build());
  edid_lib::edid_base_t* base = edid.base();
  edid_t taken(std::move(edid));
  EXPECT_EQ(taken.base(), base);
  edid_t assigned;
  assigned = std::move(taken);
  EXPECT_EQ(assigned.base(), base);
  EXPECT_TRUE(assigned.valid());
}

TEST(Edid, AnExtensionIsMadeWhereThereIsABaseBlock) {
  edid_t edid(edid_builder_t().build());
  ASSERT_NE(edid.ensure_cta(), nullptr);
  EXPECT_EQ(edid.ensure_cta(), edid.cta());
  EXPECT_EQ(edid.base()->extension_count(), 1);
  EXPECT_TRUE(edid.valid());
  EXPECT_EQ(edid_t().ensure_cta(), nullptr);
}

TEST(Edid, AnExtensionThatIsThereIsNotMadeAgain) {
  edid_t edid(television().byte(126, 7).build());
  const edid_lib::cta_extension_t* extension = edid.cta();
  EXPECT_EQ(edid.ensure_cta(), extension);
  EXPECT_EQ(edid.base()->extension_count(), 7);
}

TEST(Edid, PutTogetherUntouchedItIsAsItWas) {
  const auto bytes = television().build();
  EXPECT_EQ(edid_t(bytes).assemble(), bytes);
  const auto alone = edid_builder_t().build();
  EXPECT_EQ(edid_t(alone).assemble(), alone);
  EXPECT_TRUE(edid_t().assemble().empty());
}

TEST(Edid, PutTogetherCountsItsExtensionsAndHasRightChecksums) {
  auto bytes = television().cta(0, {}).build();
  bytes[127] = 1;
  bytes[255] = 2;
  const auto whole = edid_t(bytes).assemble();
  ASSERT_EQ(whole.size(), 256U);
  EXPECT_EQ(whole[126], 1);
  EXPECT_EQ(edid_lib::checksum_of(whole, 128), 0);
  EXPECT_EQ(edid_lib::checksum_of(std::span(whole).subspan(128), 128), 0);
  EXPECT_EQ(edid_t(edid_builder_t().byte(126, 3).build()).assemble()[126], 0);
}

TEST(Edid, ACopyHasWhatWasWrittenIntoTheBlocks) {
  edid_t edid(television().build());
  edid.cta()->find_block(2)->clear();
  edid.base()->established().clear();
  edid_t copy(edid);
  EXPECT_EQ(texts_of(copy), texts_of(edid));
  EXPECT_FALSE(copy.valid());
  EXPECT_EQ(copy.assemble(), edid.assemble());
}

TEST(Edid, ResetItHasNoParts) {
  edid_t edid(television().build());
  edid.reset();
  EXPECT_EQ(edid.size(), 0U);
  EXPECT_EQ(edid.base(), nullptr);
  EXPECT_EQ(edid.cta(), nullptr);
}

TEST(Edid, AcceptsNoVisitor) {
  edid_t edid(television().build());
  edid.accept(nullptr, true);
  edid.accept(nullptr, false);
  EXPECT_FALSE(texts_of(edid).empty());
}

TEST(Edid, OfAnySizeOrContentIsParsedAndRead) {
  std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same bytes in every run
  for (const std::size_t size : {0U, 1U, 17U, 127U, 128U, 129U, 130U, 255U, 256U, 257U, 384U}) {
    for (int i = 0; i < 100; ++i) {
      expect_consistent(random_bytes(random, size));
    }
  }
}

TEST(Edid, WithRandomExtensionIsParsedAndRead) {
  std::mt19937 random(21);  // NOLINT(cert-msc51-cpp): the same bytes in every run
  for (int i = 0; i < 1000; ++i) {
    auto bytes = random_bytes(random, 256);
    bytes[128] = 2;
    expect_consistent(bytes);
  }
}

TEST(Edid, CutAtAnyByteIsParsedAndRead) {
  const auto whole = television().build();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    expect_consistent({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
  }
}
