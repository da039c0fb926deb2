#include "app/message_handler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "test_support/fake_syslog.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using vgn_control::RepeatFilter;

constexpr int32_t warnings = LOG_USER | LOG_WARNING;
constexpr int32_t debug = LOG_USER | LOG_DEBUG;

// Read before any test changes it.
const int32_t first_threshold = vgn_control::log_threshold.load();

class RepeatFilterTest : public testing::Test {
 protected:
  RepeatFilter::Verdict judge(const QString& text, qint64 at_ms, int32_t priority = warnings,
                              int32_t threshold = warnings) {
    return filter.judge(text, priority, threshold, start.addMSecs(at_ms));
  }

  QDateTime start = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000);
  RepeatFilter filter{start};
};

TEST(SyslogPriority, FollowsTheMessageType) {
  EXPECT_EQ(vgn_control::syslogPriority(QtDebugMsg), 15);
  EXPECT_EQ(vgn_control::syslogPriority(QtInfoMsg), 13);
  EXPECT_EQ(vgn_control::syslogPriority(QtWarningMsg), 12);
  EXPECT_EQ(vgn_control::syslogPriority(QtCriticalMsg), 10);
  EXPECT_EQ(vgn_control::syslogPriority(QtFatalMsg), 9);
}

TEST(SyslogPriority, OfAnUnknownTypePassesTheDefaultThreshold) {
  EXPECT_EQ(vgn_control::syslogPriority(static_cast<QtMsgType>(5)), 8);
  EXPECT_LE(vgn_control::syslogPriority(static_cast<QtMsgType>(7)), vgn_control::log_threshold.load());
}

TEST(LogThreshold, LetsWarningsThroughAtFirst) { EXPECT_EQ(first_threshold, 12); }

TEST_F(RepeatFilterTest, TenEqualTextsInASecondPrintOnceAndTheEleventhLaterTellsOfTen) {
  EXPECT_TRUE(judge("text", 0).print);
  for (int i = 1; i < 10; ++i) {
    EXPECT_FALSE(judge("text", i * 100).print);
  }
  const auto verdict = judge("text", 6000);
  EXPECT_TRUE(verdict.print);
  EXPECT_EQ(verdict.repeats, 10U);
}

TEST_F(RepeatFilterTest, ARepeatIsSilentUpToFourWholeSecondsAndPrintedAtFive) {
  judge("text", 0);
  EXPECT_FALSE(judge("text", 4000).print);
  EXPECT_FALSE(judge("text", 4999).print);
  EXPECT_TRUE(judge("text", 5000).print);
}

TEST_F(RepeatFilterTest, ATextRepeatedWithoutPauseIsPrintedEveryFiveSeconds) {
  std::vector<uint64_t> told;
  for (qint64 at_ms = 0; at_ms <= 15'000; at_ms += 1000) {
    if (const auto verdict = judge("text", at_ms); verdict.print) {
      told.push_back(verdict.repeats);
    }
  }
  EXPECT_THAT(told, ElementsAre(0U, 5U, 5U, 5U));
}

TEST_F(RepeatFilterTest, AnotherTextTellsOfTheRepeatsUnderTheirPriority) {
  judge("text", 0, LOG_USER | LOG_CRIT);
  judge("text", 10, LOG_USER | LOG_CRIT);
  const auto verdict = judge("other", 20);
  EXPECT_TRUE(verdict.print);
  EXPECT_EQ(verdict.repeats, 1U);
  EXPECT_EQ(verdict.repeat_priority, LOG_USER | LOG_CRIT);
  EXPECT_EQ(judge("third", 30).repeats, 0U);
}

TEST_F(RepeatFilterTest, AHiddenTextIsNeverPrintedHoweverLongItRepeats) {
  for (qint64 at_ms = 0; at_ms < 100'000; at_ms += 1000) {
    EXPECT_FALSE(judge("text", at_ms, debug).print);
  }
}

TEST_F(RepeatFilterTest, AHiddenTextDoesNotPartARepeat) {
  judge("text", 0);
  EXPECT_FALSE(judge("hidden", 10, debug).print);
  EXPECT_FALSE(judge("text", 20).print);
}

TEST_F(RepeatFilterTest, AHiddenRepeatOfThePrintedTextStillCounts) {
  judge("text", 0);
  EXPECT_FALSE(judge("text", 6000, debug).print);
  EXPECT_EQ(judge("other", 6001).repeats, 1U);
}

TEST_F(RepeatFilterTest, AFirstEmptyTextIsTakenForARepeat) {
  EXPECT_FALSE(judge("", 0).print);
  EXPECT_EQ(judge("text", 10).repeats, 1U);
}

class MessageHandlerTest : public testing::Test {
 protected:
  void SetUp() override { vgn_control::log_threshold.store(warnings); }

  // What both channels got from the messages that `send` sends on a thread of its own, in order.
  std::vector<std::string> linesOf(const std::function<void()>& send) {
    const test_support::stdout_to_syslog_t both;
    std::thread(send).join();
    return syslog.take();
  }

  static void handle(QtMsgType type, const QString& text) { vgn_control::messageHandler(type, {}, text); }

  test_support::fake_syslog_t syslog;
};

TEST_F(MessageHandlerTest, SendsAFreshMessageToSyslogThenWithATimeStampToStandardOutput) {
  EXPECT_THAT(linesOf([] { handle(QtWarningMsg, "a 100% text"); }),
              ElementsAre(testing::AllOf(StartsWith("<12>"), EndsWith(": a 100% text")),
                          MatchesRegex("....-..-..T..:..:..\\....Z : a 100% text\n")));
}

// Where Qt looks for the encoding: when it is first asked to encode.
void useUtf8() {
  setenv("LC_ALL", "C.UTF-8", 1);
  std::setlocale(LC_ALL, "");
}

TEST_F(MessageHandlerTest, SendsTheLocalEncodingToBoth) {
  useUtf8();
  const QString text = QString::fromUtf16(u"Ger\u00e4t \u2192 \u0416");
  const std::string encoded = "Ger\xc3\xa4t \xe2\x86\x92 \xd0\x96";
  EXPECT_THAT(
      linesOf([&text] { handle(QtWarningMsg, text); }),
      ElementsAre(testing::AllOf(StartsWith("<12>"), EndsWith(": " + encoded)), EndsWith("Z : " + encoded + "\n")));
}

TEST_F(MessageHandlerTest, TheTimeStampIsInUtcWhateverTheTimeZone) {
  setenv("TZ", "EAST-02:30", 1);
  tzset();
  EXPECT_THAT(linesOf([] { handle(QtWarningMsg, "text"); }), ElementsAre(testing::_, EndsWith("Z : text\n")));
}

TEST_F(MessageHandlerTest, HidesInfoAndDebugByDefault) {
  EXPECT_THAT(linesOf([] {
                handle(QtInfoMsg, "info");
                handle(QtDebugMsg, "debug");
              }),
              testing::IsEmpty());
}

TEST_F(MessageHandlerTest, ShowsInfoAndDebugWhenTheThresholdIsRaised) {
  vgn_control::log_threshold.store(debug);
  EXPECT_THAT(linesOf([] {
                handle(QtInfoMsg, "info");
                handle(QtDebugMsg, "debug");
              }),
              ElementsAre(StartsWith("<13>"), EndsWith(": info\n"), StartsWith("<15>"), EndsWith(": debug\n")));
}

TEST_F(MessageHandlerTest, AMessageOfAnUnknownTypePassesAnyThreshold) {
  vgn_control::log_threshold.store(LOG_USER | LOG_EMERG);
  EXPECT_THAT(linesOf([] {
                handle(QtFatalMsg, "fatal");
                handle(static_cast<QtMsgType>(7), "unknown");
              }),
              ElementsAre(StartsWith("<8>"), EndsWith(": unknown\n")));
}

TEST_F(MessageHandlerTest, TellsOfRepeatsOnStandardOutputFirstUnderTheOldPriority) {
  const auto lines = linesOf([] {
    handle(QtCriticalMsg, "text");
    handle(QtCriticalMsg, "text");
    handle(QtCriticalMsg, "text");
    handle(QtWarningMsg, "other");
  });
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_THAT(lines[2], EndsWith(" :  (last message repeated 2 times)\n"));
  EXPECT_THAT(lines[3], testing::AllOf(StartsWith("<10>"), HasSubstr(":  (last message repeated 2 times)")));
  EXPECT_THAT(lines[4], StartsWith("<12>"));
  EXPECT_THAT(lines[5], EndsWith(" : other\n"));
}

TEST_F(MessageHandlerTest, ThreadsThatSendTheSameTextDoNotSuppressEachOther) {
  const auto lines = linesOf([] {
    handle(QtWarningMsg, "text");
    std::thread([] { handle(QtWarningMsg, "text"); }).join();
    handle(QtWarningMsg, "text");
  });
  EXPECT_EQ(lines.size(), 4U);
}

/// Says the same text again at the end of the thread.
struct last_words_t {
  std::string text;
  ~last_words_t() { vgn_control::messageHandler(QtWarningMsg, {}, QString::fromStdString(text)); }
};

TEST_F(MessageHandlerTest, AMessageAtTheVeryEndOfAThreadIsNoRepeatAnyMore) {
  EXPECT_THAT(linesOf([] {
                thread_local last_words_t last_words;
                last_words.text = "text";
                handle(QtWarningMsg, "text");
              }),
              ElementsAre(StartsWith("<12>"), EndsWith(" : text\n"), StartsWith("<12>"), EndsWith(" : text\n")));
}

}  // namespace
