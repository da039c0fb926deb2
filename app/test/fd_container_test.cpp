#include "app/fd_container.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::FdContainer;

bool isOpen(int fd) { return ::fcntl(fd, F_GETFD) >= 0; }

class FdContainerTest : public testing::Test {
 protected:
  FdContainer::Closer noting() {
    return [this](int fd) { closed.push_back(fd); };
  }

  std::vector<int> closed;
};

TEST_F(FdContainerTest, ClosesItsDescriptorOnceWhenItIsDestroyed) {
  {
    const FdContainer container(7, noting());
    EXPECT_EQ(container.get(), 7);
    EXPECT_TRUE(container);
    EXPECT_THAT(closed, IsEmpty());
  }
  EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(FdContainerTest, ClosesAtAResetAndNeverAgain) {
  {
    FdContainer container(7, noting());
    container.reset();
    EXPECT_EQ(container.get(), -1);
    EXPECT_FALSE(container);
    container.reset();
  }
  EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(FdContainerTest, DescriptorZeroIsOneToClose) {
  { const FdContainer container(0, noting()); }
  EXPECT_THAT(closed, ElementsAre(0));
}

TEST_F(FdContainerTest, ClosesNothingOfAnOpenThatFailed) {
  { const FdContainer container(-1, noting()); }
  EXPECT_THAT(closed, IsEmpty());
}

TEST(FdContainer, ClosesByTheSystemCallUnlessToldOtherwise) {
  const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ASSERT_TRUE(isOpen(fd));
  { const FdContainer container(fd); }
  EXPECT_FALSE(isOpen(fd));
}

TEST(FdContainer, HoldsNothingUnlessToldOtherwise) { EXPECT_EQ(FdContainer().get(), -1); }

TEST_F(FdContainerTest, ADescriptorWhoseCloserThrowsIsStillOwned) {
  bool refuses = true;
  {
    FdContainer container(7, [this, &refuses](int fd) {
      if (std::exchange(refuses, false)) {
        throw std::runtime_error("not now");
      }
      closed.push_back(fd);
    });
    EXPECT_THROW(container.reset(), std::runtime_error);
    EXPECT_EQ(container.get(), 7);
    EXPECT_THAT(closed, IsEmpty());
  }
  EXPECT_THAT(closed, ElementsAre(7));
}

TEST(FdContainer, AnEmptyCloserIsNotCalledWithoutADescriptor) {
  FdContainer container(-1, nullptr);
  EXPECT_NO_THROW(container.reset());
}

/// Ends the program with the descriptor that is left, because the destructor would find the empty closer again.
[[noreturn]] void resetWithAnEmptyCloser() {
  FdContainer container(7, nullptr);
  try {
    container.reset();
  } catch (const std::bad_function_call&) {
    ::_exit(container.get());
  }
  ::_exit(0);
}

TEST(FdContainerDeathTest, AnEmptyCloserIsABadCallAtAReset) {
  EXPECT_EXIT(resetWithAnEmptyCloser(), testing::ExitedWithCode(7), "");
}

TEST(FdContainerDeathTest, AnEmptyCloserEndsTheProgramWhenADescriptorIsLeft) {
  EXPECT_DEATH({ const FdContainer container(7, nullptr); }, "bad_function_call");
}

}  // namespace
