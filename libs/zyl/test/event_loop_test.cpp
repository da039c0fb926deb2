#include "zyl/event_loop.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "zyl/exceptions.h"
#include "zyl/post.h"

namespace {

enum outcome : int { as_expected = 0, otherwise = 1, no_world = 2 };

/// Tries something from which there is no way back.
template <typename Work>
outcome outcome_in_child(const Work& work) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(work());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? static_cast<outcome>(WEXITSTATUS(status)) : otherwise;
}

/// A folder that can stand for /etc: it holds nothing but perhaps a resolver configuration.
class etc_t {
 public:
  etc_t() { mkdtemp(path.data()); }
  ~etc_t() { std::filesystem::remove_all(path); }

  etc_t(const etc_t&) = delete;
  etc_t& operator=(const etc_t&) = delete;

  void set_resolver_up() { std::ofstream(path + "/resolv.conf") << "nameserver 127.0.0.1\n"; }

  /// Whether a loop has a resolver there, which is gone with it.
  outcome look_for_resolver(bool wanted) const {
    return outcome_in_child([&] { return enter() ? outcome_of(wanted) : no_world; });
  }

 private:
  bool enter() const {
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && mount(path.c_str(), "/etc", nullptr, MS_BIND, nullptr) == 0;
  }

  static outcome outcome_of(bool wanted) {
    const zyl::event_loop_t loop;
    return (loop.dns_base() != nullptr) == wanted ? as_expected : otherwise;
  }

  std::string path = "/tmp/etc-XXXXXX";
};

/// Takes all descriptors of the process but `left` of them.
class few_descriptors_t {
 public:
  explicit few_descriptors_t(rlim_t left) {
    // The gaps below first, then from here on there is one behind the other.
    while (taken.size() < 256) {
      taken.push_back(dup(STDOUT_FILENO));
    }
    getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit limit{static_cast<rlim_t>(taken.back()) + 1 + left, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~few_descriptors_t() {
    setrlimit(RLIMIT_NOFILE, &usual);
    for (const int fd : taken) {
      close(fd);
    }
  }

  few_descriptors_t(const few_descriptors_t&) = delete;
  few_descriptors_t& operator=(const few_descriptors_t&) = delete;

 private:
  std::vector<int> taken;
  rlimit usual{};
};

}  // namespace

TEST(EventLoop, StopBeforeRunIsKept) {
  zyl::event_loop_t loop;
  loop.stop();
  loop.run();
  SUCCEED() << "run returned";
}

TEST(EventLoop, RunsWithoutAnyEventUntilStoppedFromAnotherThread) {
  zyl::event_loop_t loop;
  bool ran = false;
  std::thread other([&] {
    zyl::post(loop.base(), [&] { ran = true; });
    zyl::post(loop.base(), [&] { loop.stop(); });
  });
  loop.run();
  other.join();
  EXPECT_TRUE(ran);
}

TEST(EventLoop, StopTwiceBeforeRunEndsItOnce) {
  zyl::event_loop_t loop;
  loop.stop();
  loop.stop();
  loop.run();
  SUCCEED() << "run returned";
}

TEST(EventLoop, StopFromAnotherThreadEndsItAtWhateverMoment) {
  for (int round = 0; round < 300; ++round) {
    zyl::event_loop_t loop;
    std::atomic<bool> go = false;
    std::thread other([&] {
      while (!go) {
        std::this_thread::yield();
      }
      for (int pause = 0; pause < round % 5; ++pause) {
        std::this_thread::yield();
      }
      loop.stop();
      if (round % 2 == 0) {
        loop.stop();
      }
    });
    go = true;
    loop.run();
    other.join();
  }
}

TEST(EventLoop, StopWhileItRunsLetsTheCallbacksOfTheTurnEnd) {
  zyl::event_loop_t loop;
  int ran = 0;
  zyl::post(loop.base(), [&] {
    ++ran;
    std::thread(&zyl::event_loop_t::stop, &loop).join();
    std::thread(&zyl::event_loop_t::stop, &loop).join();
    ++ran;
  });
  zyl::post(loop.base(), [&] { ++ran; });
  loop.run();
  EXPECT_EQ(ran, 3);
}

TEST(EventLoop, MayEndWithoutEverHavingRun) {
  zyl::event_loop_t stopped;
  stopped.stop();
  const zyl::event_loop_t untouched;
  SUCCEED() << "both are destroyed";
}

TEST(EventLoop, HasAResolverWhereTheMachineIsSetUpForOne) {
  etc_t etc;
  etc.set_resolver_up();
  const outcome found = etc.look_for_resolver(true);
  if (found == no_world) {
    GTEST_SKIP() << "this machine gives a process no mount namespace";
  }
  EXPECT_EQ(found, as_expected);
}

TEST(EventLoop, HasNoResolverWithoutAConfigurationAndEndsWell) {
  const etc_t etc;
  const outcome found = etc.look_for_resolver(false);
  if (found == no_world) {
    GTEST_SKIP() << "this machine gives a process no mount namespace";
  }
  EXPECT_EQ(found, as_expected);
}

TEST(EventLoop, WithoutADescriptorToWakeItUpByThereIsNoBase) {
  const zyl::event_loop_t first;  // sets libevent up
  const outcome found = outcome_in_child([] {
    // Its warning may not be told: without descriptors the sanitizers cannot check who tells it.
    event_set_log_callback([](int, const char*) {});
    // What libevent takes before: for epoll, its timer, and a pair for signals, without which it would end the process.
    const few_descriptors_t few(4);
    try {
      event_base_free(zyl::new_event_base());
      return otherwise;
    } catch (const zyl::exception_t&) {
      return as_expected;
    }
  });
  EXPECT_EQ(found, as_expected);
}
