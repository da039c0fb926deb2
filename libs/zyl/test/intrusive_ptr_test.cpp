#include "zyl/intrusive_ptr.h"

#include <gtest/gtest.h>

struct counted_t {
  int references = 1;
};

template <>
struct zyl::intrusive_traits_t<counted_t> {
  static void ref(counted_t* object) { ++object->references; }
  static void unref(counted_t* object) { --object->references; }
};

namespace {

using pointer_t = zyl::intrusive_ptr<counted_t>;

TEST(intrusive_ptr, takes_over_the_callers_reference_and_gives_it_back) {
  counted_t object;
  {
    const pointer_t pointer(&object);
    EXPECT_EQ(object.references, 1);
    EXPECT_EQ(pointer.get(), &object);
  }
  EXPECT_EQ(object.references, 0);
}

TEST(intrusive_ptr, copies_take_a_reference) {
  counted_t object;
  const pointer_t pointer(&object);
  {
    const pointer_t copy(pointer);  // NOLINT(performance-unnecessary-copy-initialization): the copy is the subject
    EXPECT_EQ(object.references, 2);
  }
  EXPECT_EQ(object.references, 1);
}

TEST(intrusive_ptr, moves_leave_the_count_and_empty_the_source) {
  counted_t object;
  pointer_t source(&object);
  const pointer_t target(std::move(source));
  EXPECT_EQ(object.references, 1);
  EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move): the state after the move is the subject
  EXPECT_TRUE(target);
}

TEST(intrusive_ptr, assignment_gives_the_old_object_back) {
  counted_t old_object;
  counted_t new_object;
  pointer_t pointer(&old_object);
  const pointer_t other(&new_object);
  pointer = other;
  EXPECT_EQ(old_object.references, 0);
  EXPECT_EQ(new_object.references, 2);
}

TEST(intrusive_ptr, bears_assignment_to_itself) {
  counted_t object;
  pointer_t pointer(&object);
  const auto& same = pointer;
  pointer = same;
  EXPECT_EQ(object.references, 1);
  EXPECT_EQ(pointer.get(), &object);
}

TEST(intrusive_ptr, may_be_empty) {
  const pointer_t empty;
  const pointer_t copy(empty);  // NOLINT(performance-unnecessary-copy-initialization): the copy is the subject
  EXPECT_FALSE(copy);
  EXPECT_EQ(empty.get(), nullptr);
}

}  // namespace
