#include "sim/remote/story_reader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <system_error>

TEST(StoryReader, TakesTheLinesThatHaveComeSince) {
  std::ofstream story("/tmp/story");
  sim::story_reader_t reader("/tmp/story");
  EXPECT_TRUE(reader.take().empty());
  story << "1500\tdriver\toutput 0: timing\n2000\tlog\ta\ttab\n" << std::flush;
  const auto lines = reader.take();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].time_us, 1500);
  EXPECT_EQ(lines[0].actor, "driver");
  EXPECT_EQ(lines[0].text, "output 0: timing");
  EXPECT_EQ(lines[1].text, "a\ttab");
  EXPECT_TRUE(reader.take().empty());
}

TEST(StoryReader, ALineThatIsStillWrittenIsTakenWhenItIsWhole) {
  std::ofstream story("/tmp/story");
  sim::story_reader_t reader("/tmp/story");
  story << "1\tlog\tbegin" << std::flush;
  EXPECT_TRUE(reader.take().empty());
  story << " end\n" << std::flush;
  const auto lines = reader.take();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "begin end");
}

TEST(StoryReader, LinesInAnotherFormArePassedOver) {
  std::ofstream story("/tmp/story");
  sim::story_reader_t reader("/tmp/story");
  story << "\nno tabs\n1\tone tab\nx\tactor\tno time\n2\tlog\tgood\n" << std::flush;
  const auto lines = reader.take();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "good");
}

TEST(StoryReader, ReadsANamedPipe) {
  ASSERT_EQ(mkfifo("/tmp/story", 0600), 0);
  sim::story_reader_t reader("/tmp/story");
  EXPECT_TRUE(reader.take().empty());
  std::ofstream story("/tmp/story");
  story << "1\tlog\tthrough the pipe\n" << std::flush;
  EXPECT_EQ(reader.take().size(), 1U);
}

TEST(StoryReader, AStoryThatIsNotThereIsAnError) { EXPECT_THROW(sim::story_reader_t("/tmp/none"), std::system_error); }
