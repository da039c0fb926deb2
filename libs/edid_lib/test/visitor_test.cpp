#include "edid_lib/visitor.h"

#include <gtest/gtest.h>

#include "recording_visitor.h"
#include "test_support/edid_builder.h"

using edid_lib::edid_t;
using edid_lib::vid_timing_t;
using test_support::data_block;
using test_support::edid_builder_t;
using names_t = recording_visitor_t::names_t;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

edid_t display() {
  return edid_t(edid_builder_t()
                    .detailed(0, full_hd)
                    .descriptor(72, 0xFC, "NAME")
                    .descriptor(90, 0xFF, "SERIAL")
                    .descriptor(108, 0xFD, "")
                    .cta(1, {data_block(1, {0x09, 0x07, 0x07}), data_block(2, {16})}, {full_hd})
                    .build());
}

}  // namespace

TEST(Visitor, SeesEveryBlockTopDownOnTheForwardPass) {
  edid_t edid = display();
  recording_visitor_t visitor;
  visitor.apply(&edid);
  EXPECT_EQ(visitor.forward_names,
            (names_t{"EDID", "EDID Base Block", "Established Timings", "Standard Timings",
                     "Detailed Timings at 54 for 1", "Base Monitor Name Descriptor class",
                     "Base Monitor Serial Descriptor class", "Base Monitor Range Descriptor", "CTA Extension",
                     "CTA Audio Data Block class", "CTA Video Data Block class", "Detailed Timings at 10 for 6"}));
}

TEST(Visitor, SeesEveryBlockBottomUpOnTheBackwardPassButDataBlocksInTheirOrder) {
  edid_t edid = display();
  recording_visitor_t visitor;
  visitor.apply(&edid);
  EXPECT_EQ(visitor.backward_names,
            (names_t{"Detailed Timings at 10 for 6", "CTA Audio Data Block class", "CTA Video Data Block class",
                     "CTA Extension", "Base Monitor Range Descriptor", "Base Monitor Serial Descriptor class",
                     "Base Monitor Name Descriptor class", "Detailed Timings at 54 for 1", "Standard Timings",
                     "Established Timings", "EDID Base Block", "EDID"}));
}

TEST(Visitor, SeesEachKindOfDataBlockByItsClass) {
  edid_t edid(edid_builder_t()
                  .descriptor(72, 0xFE, "TEXT")
                  .cta(0, {data_block(3, {0x03, 0x0C, 0}), data_block(3, {0xD8, 0x5D, 0xC4, 1}),
                           data_block(3, {1, 2, 3}), data_block(4, {1}), data_block(7, {0, 0}),
                           data_block(7, {5, 0, 0}), data_block(7, {14}), data_block(7, {15}), data_block(7, {6})})
                  .build());
  recording_visitor_t visitor;
  edid.cta()->accept(&visitor, true);
  EXPECT_EQ(visitor.forward_names, (names_t{"CTA Extension", "CTA HDMI Vendor-Specific Data Block class",
                                            "CTA HDMI Forum Vendor-Specific Data Block class",
                                            "CTA Vendor Specific Data Block", "CTA Speaker Data Block", "capability",
                                            "colorimetry", "420 video", "420 map", "CTA Extended Data Block"}));
  edid.base()->accept(&visitor, false);
  EXPECT_EQ(visitor.backward_names.at(2), "Base ASCII String Descriptor class");
}

TEST(Visitor, ReadOfAVisitorOfNoOtherPurposeIsTheWalk) {
  edid_t edid = display();
  recording_visitor_t visitor;
  visitor.read(&edid);
  EXPECT_EQ(visitor.forward_names.size(), 12U);
  EXPECT_EQ(visitor.backward_names.size(), 12U);
}

TEST(Visitor, NoEdidIsNoWalk) {
  recording_visitor_t visitor;
  visitor.apply(nullptr);
  EXPECT_TRUE(visitor.forward_names.empty());
}

TEST(Visitor, WithoutOverridesSeesEverythingAndDoesNothing) {
  edid_t edid(edid_builder_t()
                  .descriptor(72, 0xFC, "")
                  .descriptor(90, 0xFE, "")
                  .descriptor(108, 0xFF, "")
                  .cta(0, {data_block(1, {}), data_block(2, {}), data_block(3, {0x03, 0x0C, 0}),
                           data_block(3, {0xD8, 0x5D, 0xC4, 1}), data_block(7, {0, 0}), data_block(7, {5, 0, 0}),
                           data_block(7, {14}), data_block(7, {15})})
                  .build());
  edid_lib::visitor_t visitor;
  visitor.read(&edid);
  EXPECT_TRUE(edid.valid());
}
