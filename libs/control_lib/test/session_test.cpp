#include "control_lib/src/session.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

using control_lib::session_t;

namespace {

/// A service that leaves all to its base.
class service_t : public session_t {
 public:
  service_t() : session_t("service_t") {}
};

}  // namespace

static_assert(std::is_abstract_v<session_t>);

TEST(Session, IsFoundByItsNameWhileItLives) {
  EXPECT_EQ(session_t::find("service_t"), nullptr);
  {
    service_t service;
    EXPECT_EQ(session_t::find("service_t"), &service);
    EXPECT_EQ(session_t::find("other_t"), nullptr);
    EXPECT_TRUE(service.open_session());
    service.close_session();
    EXPECT_EQ(session_t::find("service_t"), &service);
  }
  EXPECT_EQ(session_t::find("service_t"), nullptr);
}

TEST(Session, LastRegistrationOfANameWinsAndTheFormerErasesOnlyItself) {
  auto former = std::make_unique<service_t>();
  const service_t latter;
  EXPECT_EQ(session_t::find("service_t"), &latter);
  former.reset();
  EXPECT_EQ(session_t::find("service_t"), &latter);
}
