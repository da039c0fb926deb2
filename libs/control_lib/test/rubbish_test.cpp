#include "control_lib/src/rubbish.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

using control_lib::rubbish_list_t;
using control_lib::rubbish_t;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Tells when it is freed.
class told_rubbish_t : public rubbish_t {
 public:
  explicit told_rubbish_t(std::function<void()> when_freed) : tell(std::move(when_freed)) {}
  ~told_rubbish_t() override { tell(); }

 private:
  std::function<void()> tell;
};

class Rubbish : public testing::Test {
 protected:
  /// An item that is for the list to free.
  rubbish_t* item(int number) {
    return std::make_unique<told_rubbish_t>([this, number] { freed.push_back(number); }).release();
  }

  std::vector<int> freed;
  rubbish_list_t list;
};

}  // namespace

static_assert(std::is_abstract_v<rubbish_t>);

TEST_F(Rubbish, IsFreedWhenTheListIsRunDownAndNotBefore) {
  EXPECT_TRUE(list.empty());
  for (const int number : {1, 2, 3}) {
    EXPECT_TRUE(list.put(item(number)));
  }
  EXPECT_FALSE(list.empty());
  EXPECT_THAT(freed, IsEmpty());
  list.run_down();
  EXPECT_THAT(freed, ElementsAre(3, 2, 1));
  EXPECT_TRUE(list.empty());
}

TEST_F(Rubbish, IsNotPutOnAListTwice) {
  rubbish_t* const only = item(1);
  EXPECT_TRUE(list.put(only));
  EXPECT_FALSE(list.put(only)) << "the last one of a list has nothing behind it, but is on it";
  EXPECT_TRUE(list.put(item(2)));
  EXPECT_FALSE(list.put(only));
  list.run_down();
  EXPECT_THAT(freed, ElementsAre(2, 1));
}

TEST_F(Rubbish, IsNotPutOnAnotherListEither) {
  rubbish_list_t other;
  rubbish_t* const only = item(1);
  EXPECT_TRUE(list.put(only));
  EXPECT_FALSE(other.put(only));
  EXPECT_TRUE(other.empty());
}

TEST_F(Rubbish, MayLeaveMoreRubbishWhenItIsFreed) {
  list.put(std::make_unique<told_rubbish_t>([this] { list.put(item(2)); }).release());
  list.run_down();
  EXPECT_THAT(freed, ElementsAre(2));
  EXPECT_TRUE(list.empty());
}

TEST_F(Rubbish, DoesNotOutlastItsList) {
  {
    rubbish_list_t mine;
    mine.put(item(1));
  }
  EXPECT_THAT(freed, ElementsAre(1));
}

TEST_F(Rubbish, AListCanBeUsedAgain) {
  list.put(item(1));
  list.run_down();
  list.put(item(2));
  list.run_down();
  EXPECT_THAT(freed, ElementsAre(1, 2));
}
