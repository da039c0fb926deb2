#include "control_lib/src/session.h"

#include <gtest/gtest.h>

#include <memory>

using control_lib::session_t;

TEST(Session, IsFoundByItsNameWhileItLives) {
  EXPECT_EQ(session_t::find("service_t"), nullptr);
  {
    session_t service("service_t");
    EXPECT_EQ(session_t::find("service_t"), &service);
    EXPECT_EQ(session_t::find("other_t"), nullptr);
    EXPECT_TRUE(service.open_session());
  }
  EXPECT_EQ(session_t::find("service_t"), nullptr);
}

TEST(Session, LastRegistrationOfANameWinsAndTheFormerErasesOnlyItself) {
  auto former = std::make_unique<session_t>("service_t");
  const session_t latter("service_t");
  EXPECT_EQ(session_t::find("service_t"), &latter);
  former.reset();
  EXPECT_EQ(session_t::find("service_t"), &latter);
}
