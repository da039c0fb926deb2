#include "zyl/exceptions.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(Exceptions, HoldTheirText) {
  EXPECT_STREQ(zyl::exception_t("text").what(), "text");
  EXPECT_STREQ(zyl::process_exception_t("text").what(), "text");
  EXPECT_STREQ(zyl::uninitialized_timer_exception_t().what(), "timer uninitialized");
}

TEST(Exceptions, TheLastProcessExceptionAddsWhatErrnoSays) {
  errno = ENOENT;
  EXPECT_STREQ(zyl::last_process_exception_t("text").what(), "text : No such file or directory");
  EXPECT_STREQ(zyl::last_process_exception_t("", EPERM).what(), " : Operation not permitted");
}

TEST(Exceptions, AreCaughtAsTheirBases) {
  EXPECT_THROW(throw zyl::last_process_exception_t("text", EPERM), zyl::process_exception_t);
  EXPECT_THROW(throw zyl::process_exception_t("text"), zyl::exception_t);
  EXPECT_THROW(throw zyl::uninitialized_timer_exception_t(), zyl::exception_t);
  EXPECT_THROW(throw zyl::exception_t("text"), std::exception);
}
