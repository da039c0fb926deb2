// What holds for all modes, lists and blocks, tried on many random ones. Each test names its seed, so a failure can be
// had again.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "edid_lib/color_format.h"
#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/visitor_modes.h"
#include "random.h"

using namespace edid_lib;

namespace {

std::vector<std::string> texts_of(const modes_t& modes) {
  std::vector<std::string> texts;
  for (const vid_resolution_t& mode : modes) {
    texts.push_back(mode.key() + " " + mode.list_text());
  }
  return texts;
}

template <typename T>
std::string text_of_value(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace

TEST(Properties, AKeyParsesToAModeOfTheSameKeyUnlessItSaysRb) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 5000; ++i) {
    const vid_resolution_t mode = random.mode();
    const vid_resolution_t parsed(mode.key());
    EXPECT_EQ(parsed.key(), mode.key());
    EXPECT_EQ(parsed, mode) << mode.key();
  }
}

TEST(Properties, AKeyThatSaysRbSettlesAfterTwoReadings) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 1000; ++i) {
    vid_resolution_t mode = random.mode();
    mode.reduced_blanking = true;
    const std::string twice = vid_resolution_t(vid_resolution_t(mode.key()).key()).key();
    EXPECT_EQ(vid_resolution_t(twice).key(), twice);
  }
}

TEST(Properties, ModesAreInATotalOrder) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 5000; ++i) {
    const vid_resolution_t a = random.mode();
    const vid_resolution_t b = random.mode();
    const vid_resolution_t c = random.mode();
    EXPECT_EQ((a < b) + (a == b) + (a > b), 1);
    EXPECT_EQ((a < b), (b > a));
    EXPECT_EQ(a == b, b == a);
    EXPECT_TRUE(!(a <= b && b <= c) || a <= c) << a.key() << ' ' << b.key() << ' ' << c.key();
  }
}

TEST(Properties, AListInDescendingOrderHasEachModeAtLeastAsGreatAsAllBehindIt) {
  SCOPED_TRACE(seed);
  random_t random;
  modes_t list;
  for (int i = 0; i < 200; ++i) {
    list.push_back(random.mode());
  }
  std::sort(list.begin(), list.end(), std::greater<>());
  for (std::size_t i = 0; i < list.size(); ++i) {
    for (std::size_t j = i + 1; j < list.size(); ++j) {
      EXPECT_GE(list[i], list[j]);
    }
  }
}

TEST(Properties, TimingsAndColorsAreReadAsTheyWereWritten) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 1000; ++i) {
    const vid_timing_t timing = random.timing();
    vid_timing_t read_timing;
    std::istringstream(text_of_value(timing)) >> read_timing;
    EXPECT_EQ(read_timing, timing);
    const color_format_t format{color_standard_t{random.below(10)}, color_encoding_t{random.below(4)},
                                chroma_sampling_t{random.below(4)}, color_range_t{random.below(3)},
                                color_depth_t{random.below(5)}};
    color_format_t read_format;
    std::istringstream(text_of_value(format)) >> read_format;
    EXPECT_EQ(read_format, format);
  }
}

TEST(Properties, ADetailedTimingIsReadAsItWasWritten) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 5000; ++i) {
    vid_resolution_t mode(random.timing());
    mode.h_image_mm = random.below(4096);
    mode.v_image_mm = random.below(4096);
    mode.h_border = random.below(256);
    det_timings_block_t block({}, 54, 1);
    block.clear();
    ASSERT_TRUE(block.add(mode));
    ASSERT_EQ(block.modes().size(), 1U) << mode.timing;
    const vid_resolution_t again = block.modes()[0];
    EXPECT_EQ(again.timing, mode.timing);
    EXPECT_EQ(again.fps, mode.fps);
    EXPECT_EQ(again.h_image_mm, mode.h_image_mm);
    EXPECT_EQ(again.v_image_mm, mode.v_image_mm);
    EXPECT_EQ(again.h_border, mode.h_border);
    EXPECT_EQ(again.v_border, mode.h_border);
  }
}

TEST(Properties, AWrittenListIsReadBackFromTheBytesAsFromTheBlocks) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 300; ++i) {
    edid_t edid = written(edid_t(television()), random.list());
    EXPECT_TRUE(edid.valid());
    edid_t again(edid.assemble());
    EXPECT_TRUE(again.valid());
    EXPECT_EQ(texts_of(read(again)), texts_of(read(edid)));
    EXPECT_EQ(again.assemble(), edid.assemble());
  }
}

TEST(Properties, AListThatWasReadIsWrittenWithoutLossOrAddition) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 300; ++i) {
    edid_t edid = written(edid_t(television()), random.list());
    const modes_t told = read(edid);
    edid_t again = written(edid, told);
    EXPECT_EQ(texts_of(read(again)), texts_of(told));
  }
}

TEST(Properties, AnyBytesPutTogetherAreStable) {
  SCOPED_TRACE(seed);
  random_t random;
  for (int i = 0; i < 2000; ++i) {
    const auto first = edid_t(random_edid(random)).assemble();
    ASSERT_TRUE(first.size() == 128 || first.size() == 256);
    EXPECT_EQ(checksum_of(first, 128), 0);
    EXPECT_EQ(checksum_of(std::span(first).subspan(128 % first.size()), 128), 0);
    // A detailed timing whose clock ends in a zero byte is lost with the ones behind it, but only once.
    const auto second = edid_t(first).assemble();
    EXPECT_EQ(edid_t(second).assemble(), second);
  }
}

TEST(Properties, FilteredEdidsListNothingThatDoesNotPass) {
  SCOPED_TRACE(seed);
  random_t random;
  const tarn_filter_resolution_t chain = output_connection_filter();
  for (int i = 0; i < 500; ++i) {
    edid_t edid(random.coin() ? written(edid_t(television()), random.list()).assemble() : random_edid(random));
    edid_t filtered = chain.filtered_edid(edid);
    for (const vid_resolution_t& mode : read(filtered)) {
      EXPECT_EQ(chain.refused_by(mode), "") << mode.key();
    }
    EXPECT_TRUE(filtered.base()->established().valid());
    EXPECT_FALSE(chain.report(edid).empty());
  }
}

TEST(Properties, FilteringTwiceIsFilteringOnce) {
  SCOPED_TRACE(seed);
  random_t random;
  const tarn_filter_resolution_t chain = output_connection_filter();
  for (int i = 0; i < 500; ++i) {
    modes_t list = random.list();
    chain.filter(list);
    const auto once = texts_of(list);
    chain.filter(list);
    EXPECT_EQ(texts_of(list), once);
  }
}
