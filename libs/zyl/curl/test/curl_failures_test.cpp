// libcurl's and libevent's calls do not fail on request, so this program is linked with its own in their place, which
// pass on to the libraries but for the call that a test has chosen.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "test_support/fake_http_server.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "zyl/curl/curl_manager.h"
#include "zyl/curl/download.h"
#include "zyl/event_loop.h"

namespace {

/// The call that fails, and of a family of calls the member.
std::string_view failing;

/// Whether this thread gets no block of a mebibyte or more.
thread_local bool memory_is_scarce = false;

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory): this is what containers stand on
void* operator new(std::size_t size) {
  void* const block = memory_is_scarce && size >= std::size_t{1} << 20 ? nullptr : std::malloc(size);
  return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }

void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names for the calls it puts in place of libcurl's, and theirs
extern "C" {

CURLcode __real_curl_global_init(long flags);
CURL* __real_curl_easy_init();
CURLcode __real_curl_easy_getinfo(CURL* easy, CURLINFO info, ...);
CURLcode __real_curl_easy_setopt(CURL* easy, CURLoption option, ...);
CURLM* __real_curl_multi_init();
CURLMcode __real_curl_multi_assign(CURLM* multi, curl_socket_t fd, void* record);
CURLMcode __real_curl_multi_socket_action(CURLM* multi, curl_socket_t fd, int action, int* running);
CURLMcode __real_curl_multi_remove_handle(CURLM* multi, CURL* easy);
event* __real_event_new(event_base* base, evutil_socket_t fd, short events, event_callback_fn call, void* argument);

CURLcode __wrap_curl_global_init(long flags) {
  return failing == "curl_global_init" ? CURLE_OUT_OF_MEMORY : __real_curl_global_init(flags);
}

CURL* __wrap_curl_easy_init() { return failing == "curl_easy_init" ? nullptr : __real_curl_easy_init(); }

// The number of the option, because what stands in front of variable arguments must not be an enumeration.
CURLcode __wrap_curl_easy_getinfo(CURL* easy, unsigned info, ...) {
  va_list arguments;
  va_start(arguments, info);
  void* const told = va_arg(arguments, void*);
  va_end(arguments);
  if ((failing == "CURLINFO_PRIVATE" && info == CURLINFO_PRIVATE) ||
      (failing == "CURLINFO_EFFECTIVE_URL" && info == CURLINFO_EFFECTIVE_URL) ||
      (failing == "CURLINFO_RESPONSE_CODE" && info == CURLINFO_RESPONSE_CODE)) {
    return CURLE_UNKNOWN_OPTION;
  }
  return __real_curl_easy_getinfo(easy, static_cast<CURLINFO>(info), told);
}

CURLcode __wrap_curl_easy_setopt(CURL* easy, unsigned option, ...) {
  va_list arguments;
  va_start(arguments, option);
  void* const given = va_arg(arguments, void*);
  va_end(arguments);
  const bool fails = (failing == "CURLOPT_PRIVATE" && option == CURLOPT_PRIVATE) ||
                     (failing == "CURLOPT_NOSIGNAL" && option == CURLOPT_NOSIGNAL) ||
                     (failing == "CURLOPT_URL" && option == CURLOPT_URL) ||
                     (failing == "CURLOPT_WRITEFUNCTION" && option == CURLOPT_WRITEFUNCTION) ||
                     (failing == "CURLOPT_WRITEDATA" && option == CURLOPT_WRITEDATA);
  return fails ? CURLE_OUT_OF_MEMORY : __real_curl_easy_setopt(easy, static_cast<CURLoption>(option), given);
}

CURLM* __wrap_curl_multi_init() { return failing == "curl_multi_init" ? nullptr : __real_curl_multi_init(); }

CURLMcode __wrap_curl_multi_assign(CURLM* multi, curl_socket_t fd, void* record) {
  return failing == "curl_multi_assign" ? CURLM_BAD_SOCKET : __real_curl_multi_assign(multi, fd, record);
}

/// The failure is one that comes after the work was done, or nothing would go on.
CURLMcode __wrap_curl_multi_socket_action(CURLM* multi, curl_socket_t fd, int action, int* running) {
  const CURLMcode code = __real_curl_multi_socket_action(multi, fd, action, running);
  const bool is_timeout = fd == CURL_SOCKET_TIMEOUT;
  return failing == (is_timeout ? "timeout" : "socket event") ? CURLM_INTERNAL_ERROR : code;
}

CURLMcode __wrap_curl_multi_remove_handle(CURLM* multi, CURL* easy) {
  return failing == "curl_multi_remove_handle" ? CURLM_BAD_HANDLE : __real_curl_multi_remove_handle(multi, easy);
}

event* __wrap_event_new(event_base* base, evutil_socket_t fd, short events, event_callback_fn call, void* argument) {
  const bool fails = failing == (fd < 0 ? "event_new of a timer" : "event_new of a socket");
  return fails ? nullptr : __real_event_new(base, fd, events, call, argument);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::ThrowsMessage;
using zyl::curl::download_t;
using zyl::curl::manager_t;

namespace {

struct failure_t {
  const char* name;
  std::string_view failing;
  std::string line_end;
};

void PrintTo(const failure_t& failure, std::ostream* out) { *out << failure.name; }

class CurlFailureTest : public testing::TestWithParam<failure_t> {
 protected:
  ~CurlFailureTest() override { failing = {}; }

  test_support::log_capture_t log{"zyl_curl"};
  test_support::fake_http_server_t server;
  zyl::event_loop_t loop;
  manager_t manager{loop.base()};
};

std::string multi_text(CURLMcode code) { return curl_multi_strerror(code); }

std::string easy_text(CURLcode code) { return curl_easy_strerror(code); }

const failure_t failures[] = {
    {"Timeout", "timeout", "timer_cb: curl_multi_socket_action returns " + multi_text(CURLM_INTERNAL_ERROR)},
    {"SocketEvent", "socket event", "event_cb: curl_multi_socket_action returns " + multi_text(CURLM_INTERNAL_ERROR)},
    {"Assign", "curl_multi_assign", "sock_cb - curl_multi_assign returns " + multi_text(CURLM_BAD_SOCKET)},
    {"Private", "CURLINFO_PRIVATE", "curl_easy_getinfo - CURLINFO_PRIVATE returns " + easy_text(CURLE_UNKNOWN_OPTION)},
    {"Url", "CURLINFO_EFFECTIVE_URL",
     "curl_easy_getinfo - CURLINFO_EFFECTIVE_URL returns " + easy_text(CURLE_UNKNOWN_OPTION)},
    {"RemoveHandle", "curl_multi_remove_handle", "curl_multi_remove_handle returns " + multi_text(CURLM_BAD_HANDLE)},
};

INSTANTIATE_TEST_SUITE_P(Calls, CurlFailureTest, testing::ValuesIn(failures),
                         [](const auto& row) { return std::string(row.param.name); });

void fail_to_start(std::string_view call, const std::function<void()>& start) {
  failing = call;
  try {
    start();
  } catch (const zyl::curl::exception_t& failure) {
    std::fputs(failure.what(), stderr);
    std::_Exit(7);
  }
}

}  // namespace

TEST_P(CurlFailureTest, IsLoggedAndStopsNothing) {
  failing = GetParam().failing;
  std::optional<download_t::result_t> result;
  manager.add(std::make_unique<download_t>(server.url("/trickle/100"),
                                           [&](const download_t::result_t& told) { result = told; }));
  ASSERT_TRUE(test_support::loop_until(loop.base(), [&] { return result.has_value(); }));
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->body, test_support::fake_http_server_t::body_of(100));
  const std::string head = "  \\[" + std::to_string(gettid()) + "\\]: \\[curl/curl_manager:[0-9]+\\] ERROR : ";
  EXPECT_THAT(log.lines(), AllOf(Not(IsEmpty()), Each(MatchesRegex(head + GetParam().line_end))));
}

TEST_F(CurlFailureTest, LineTellsWhereTheCallStands) {
  failing = "curl_multi_assign";
  std::optional<download_t::result_t> result;
  const auto fetch = [&](const char* path) {
    result.reset();
    manager.add(
        std::make_unique<download_t>(server.url(path), [&](const download_t::result_t& told) { result = told; }));
    return test_support::loop_until(loop.base(), [&] { return result.has_value(); });
  };
  ASSERT_TRUE(fetch("/size/1"));
  const auto of_assign = log.lines();
  log.clear();
  failing = "CURLINFO_PRIVATE";
  ASSERT_TRUE(fetch("/size/1"));
  const auto of_private = log.lines();
  ASSERT_FALSE(of_assign.empty());
  ASSERT_FALSE(of_private.empty());
  const auto place = [](const std::string& line) { return line.substr(0, line.find(" ERROR")); };
  EXPECT_EQ(place(of_assign.front()), place(of_assign.back()));
  EXPECT_NE(place(of_assign.front()), place(of_private.front()));
}

TEST_F(CurlFailureTest, DescriptorThatCannotBeWatchedEndsTheTransfers) {
  failing = "event_new of a socket";
  std::optional<download_t::result_t> result;
  manager.add(std::make_unique<download_t>(server.url("/trickle/100"),
                                           [&](const download_t::result_t& told) { result = told; }));
  ASSERT_TRUE(test_support::loop_until(loop.base(), [&] { return result.has_value(); }));
  EXPECT_EQ(result->code, CURLE_ABORTED_BY_CALLBACK);
  EXPECT_THAT(log.lines(), Contains(MatchesRegex(".*ERROR : sock_cb - event_new returns Cannot allocate memory")));

  failing = {};
  result.reset();
  manager.add(
      std::make_unique<download_t>(server.url("/size/1"), [&](const download_t::result_t& told) { result = told; }));
  ASSERT_TRUE(test_support::loop_until(loop.base(), [&] { return result.has_value(); }));
  EXPECT_EQ(result->code, CURLE_ABORTED_BY_CALLBACK);
}

TEST_F(CurlFailureTest, ManagerWithoutATimerIsNone) {
  failing = "event_new of a timer";
  EXPECT_THROW(manager_t(loop.base()), std::bad_alloc);
}

TEST_F(CurlFailureTest, RequestWhoseHandleRefusesAnOptionIsNone) {
  const auto make_request = [] { const download_t download("http://127.0.0.1/", [](const auto&) {}); };
  for (const char* option :
       {"CURLOPT_PRIVATE", "CURLOPT_NOSIGNAL", "CURLOPT_URL", "CURLOPT_WRITEFUNCTION", "CURLOPT_WRITEDATA"}) {
    failing = option;
    EXPECT_THAT(make_request, ThrowsMessage<zyl::curl::exception_t>("unexpected error in CURL init : Out of memory"))
        << option;
  }
}

TEST_F(CurlFailureTest, StatusThatCannotBeToldIsZeroWithALine) {
  failing = "CURLINFO_RESPONSE_CODE";
  std::optional<download_t::result_t> result;
  manager.add(
      std::make_unique<download_t>(server.url("/size/1"), [&](const download_t::result_t& told) { result = told; }));
  ASSERT_TRUE(test_support::loop_until(loop.base(), [&] { return result.has_value(); }));
  EXPECT_EQ(result->code, CURLE_OK);
  EXPECT_EQ(result->status, 0);
  EXPECT_THAT(log.lines(), ElementsAre(MatchesRegex("  \\[" + std::to_string(gettid()) +
                                                    "\\]: \\[curl/download:[0-9]+\\] ERROR : curl_easy_getinfo - "
                                                    "CURLINFO_RESPONSE_CODE returns " +
                                                    easy_text(CURLE_UNKNOWN_OPTION))));
}

TEST_F(CurlFailureTest, BodyForWhichThereIsNoMemoryEndsTheTransfer) {
  std::optional<download_t::result_t> result;
  manager.add(std::make_unique<download_t>(server.url("/size/" + std::to_string(4 << 20)),
                                           [&](const download_t::result_t& told) { result = told; }));
  memory_is_scarce = true;
  const bool ended = test_support::loop_until(loop.base(), [&] { return result.has_value(); });
  memory_is_scarce = false;
  ASSERT_TRUE(ended);
  EXPECT_EQ(result->code, CURLE_WRITE_ERROR);
  EXPECT_GT(result->body.size(), 0U);
  EXPECT_LT(result->body.size(), std::size_t{4} << 20);
}

// libcurl is set up once a process, so each of these has one of its own.
TEST(CurlInitDeathTest, LibcurlThatCannotBeSetUpIsThrown) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto make_manager = [] {
    const zyl::event_loop_t loop;
    const manager_t manager(loop.base());
  };
  EXPECT_EXIT(fail_to_start("curl_global_init", make_manager), testing::ExitedWithCode(7),
              "unexpected error in CURL init : Out of memory");
}

TEST(CurlInitDeathTest, MultiHandleThatCannotBeHadIsThrown) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto make_manager = [] {
    const zyl::event_loop_t loop;
    const manager_t manager(loop.base());
  };
  EXPECT_EXIT(fail_to_start("curl_multi_init", make_manager), testing::ExitedWithCode(7),
              "unexpected error in CURL init : Failed initialization");
}

TEST(CurlInitDeathTest, EasyHandleThatCannotBeHadIsThrown) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto make_request = [] { const download_t download("http://127.0.0.1/", [](const auto&) {}); };
  EXPECT_EXIT(fail_to_start("curl_easy_init", make_request), testing::ExitedWithCode(7),
              "unexpected error in CURL init : Failed initialization");
}
