#include "control_lib/src/ve_ipc_engine.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "control_lib/src/event_base_manager.h"
#include "control_lib/src/worker_manager_imp.h"
#include "test_support/fake_video_engine.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using control_lib::event_base_manager_t;
using control_lib::session_t;
using control_lib::ve_ipc_engine_t;
using control_lib::worker_manager_imp_t;
using test_support::loop_until;

static_assert(std::is_base_of_v<control_lib::rubbish_t, ve_ipc_engine_t>);

TEST(VeIpcEngine, IsASessionUnderTheNameOfItsClass) {
  const zyl::event_loop_t loop;
  ve_ipc_engine_t engine(loop.base());
  EXPECT_EQ(session_t::find("ve_ipc_engine_t"), static_cast<session_t*>(&engine));
}

TEST(VeIpcEngine, IsConnectedWhileItsSessionIsOpen) {
  const test_support::fake_video_engine_t video_engine;
  worker_manager_imp_t manager;
  event_base_manager_t worker(manager);
  ve_ipc_engine_t engine(worker);
  session_t& session = engine;
  EXPECT_FALSE(engine.is_connected());
  EXPECT_TRUE(session.open_session());
  EXPECT_TRUE(loop_until(worker.event_base(), [&] { return engine.ready(); }));
  session.close_session();
  EXPECT_FALSE(engine.is_connected());
  EXPECT_TRUE(session.open_session());
  EXPECT_TRUE(loop_until(worker.event_base(), [&] { return engine.ready(); }));
}

TEST(VeIpcEngine, ItsSessionIsOpenBeforeTheEngineIsThere) {
  worker_manager_imp_t manager;
  event_base_manager_t worker(manager);
  ve_ipc_engine_t engine(worker);
  EXPECT_TRUE(engine.open_session());
  EXPECT_FALSE(engine.is_connected());
  const test_support::fake_video_engine_t video_engine;
  EXPECT_TRUE(loop_until(worker.event_base(), [&] { return engine.ready(); }));
}

TEST(VeIpcEngine, ThereIsOneForTheProcess) {
  static worker_manager_imp_t manager;
  static event_base_manager_t worker(manager);
  EXPECT_EQ(session_t::find("ve_ipc_engine_t"), nullptr);
  ve_ipc_engine_t& engine = ve_ipc_engine_t::instance(worker);
  EXPECT_EQ(&ve_ipc_engine_t::instance(worker), &engine);
  EXPECT_EQ(session_t::find("ve_ipc_engine_t"), static_cast<session_t*>(&engine));
}
