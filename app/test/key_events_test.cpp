#include "app/key_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>

#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>

#include "test_support/key_bytes.h"

namespace {

using test_support::input_event_bytes;
using test_support::key_bytes;
using test_support::report_bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::KeyEvent;
using vgn_control::KeyEventBatch;
using vgn_control::keyOf;
using vgn_control::keyTable;

void add(KeyEventBatch& batch, std::string_view bytes) {
  ASSERT_GE(batch.room().size(), bytes.size());
  std::memcpy(batch.room().data(), bytes.data(), bytes.size());
  batch.added(bytes.size());
}

TEST(KeyTable, KnowsTheTwoKeysOfTheFrontPanel) {
  EXPECT_EQ(keyTable(), (QMap<uint16_t, Qt::Key>{{59, Qt::Key_F1}, {60, Qt::Key_F2}}));
  EXPECT_EQ(keyOf(59), Qt::Key_F1);
  EXPECT_EQ(keyOf(60), Qt::Key_F2);
}

TEST(KeyTable, KnowsNoOtherKey) {
  EXPECT_EQ(keyOf(0), std::nullopt);
  EXPECT_EQ(keyOf(58), std::nullopt);
  EXPECT_EQ(keyOf(61), std::nullopt);
  EXPECT_EQ(keyOf(0xFFFF), std::nullopt);
}

TEST(KeyEvent, IsPressedUnlessItsValueIsZero) {
  EXPECT_FALSE((KeyEvent{KEY_F1, 0}.pressed()));
  EXPECT_TRUE((KeyEvent{KEY_F1, 1}.pressed()));
  EXPECT_TRUE((KeyEvent{KEY_F1, 2}.pressed()));
  EXPECT_TRUE((KeyEvent{KEY_F1, -1}.pressed()));
  EXPECT_TRUE((KeyEvent{KEY_F1, std::numeric_limits<int32_t>::min()}.pressed()));
}

TEST(KeyEvent, IsARepeatWithTheValueTwoAlone) {
  EXPECT_FALSE((KeyEvent{KEY_F1, 0}.autorepeat()));
  EXPECT_FALSE((KeyEvent{KEY_F1, 1}.autorepeat()));
  EXPECT_TRUE((KeyEvent{KEY_F1, 2}.autorepeat()));
  EXPECT_FALSE((KeyEvent{KEY_F1, 3}.autorepeat()));
}

TEST(KeyEventBatch, HasRoomForThirtyTwoEventsOfTwentyFourBytes) {
  KeyEventBatch batch;
  EXPECT_EQ(batch.room().size(), 768U);
  EXPECT_TRUE(batch.isEmpty());
  EXPECT_TRUE(batch.isWhole());
  EXPECT_THAT(batch.keys(), IsEmpty());
}

TEST(KeyEventBatch, GivesTheKeysOfAllItsEventsInOrder) {
  KeyEventBatch batch;
  add(batch, key_bytes(KEY_F1, 1) + report_bytes() + key_bytes(KEY_F2, 2) + report_bytes() + key_bytes(KEY_F1, 0));
  EXPECT_THAT(batch.keys(), ElementsAre(KeyEvent{KEY_F1, 1}, KeyEvent{KEY_F2, 2}, KeyEvent{KEY_F1, 0}));
}

TEST(KeyEventBatch, LeavesOutEventsThatAreOfNoKey) {
  KeyEventBatch batch;
  for (const uint16_t type : std::initializer_list<uint16_t>{EV_SYN, EV_REL, EV_ABS, EV_MSC, EV_REP, 0x101, 0xFFFF}) {
    add(batch, input_event_bytes(type, KEY_F1, 1));
  }
  EXPECT_TRUE(batch.isWhole());
  EXPECT_THAT(batch.keys(), IsEmpty());
}

TEST(KeyEventBatch, AFullOneHasNoRoomAndIsWhole) {
  KeyEventBatch batch;
  for (uint16_t code = 0; code < KeyEventBatch::capacity; ++code) {
    EXPECT_FALSE(batch.room().empty());
    add(batch, key_bytes(code, 1));
  }
  EXPECT_TRUE(batch.room().empty());
  EXPECT_TRUE(batch.isWhole());
  EXPECT_EQ(batch.keys().size(), KeyEventBatch::capacity);
  EXPECT_EQ(batch.keys().back(), (KeyEvent{31, 1}));
}

TEST(KeyEventBatch, IsWholeAgainWhereverItsEventsWereCut) {
  const std::string bytes = key_bytes(KEY_F2, 1) + key_bytes(KEY_F1, 2);
  for (std::size_t cut = 1; cut < bytes.size(); ++cut) {
    KeyEventBatch batch;
    add(batch, std::string_view(bytes).substr(0, cut));
    EXPECT_FALSE(batch.isEmpty());
    EXPECT_EQ(batch.isWhole(), cut == KeyEventBatch::event_size) << cut;
    EXPECT_EQ(batch.keys().size(), cut / KeyEventBatch::event_size) << cut;
    add(batch, std::string_view(bytes).substr(cut));
    EXPECT_TRUE(batch.isWhole()) << cut;
    EXPECT_THAT(batch.keys(), ElementsAre(KeyEvent{KEY_F2, 1}, KeyEvent{KEY_F1, 2})) << cut;
  }
}

TEST(KeyEventBatch, IsTheSameByteByByte) {
  KeyEventBatch batch;
  for (const char byte : key_bytes(KEY_F1, 1) + key_bytes(0xFFFF, -1)) {
    add(batch, {&byte, 1});
  }
  EXPECT_THAT(batch.keys(), ElementsAre(KeyEvent{KEY_F1, 1}, KeyEvent{0xFFFF, -1}));
}

}  // namespace
