#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// What a report of `zyl::report_fatal_signal` says.
struct crash_report_t {
  std::string program;
  std::string time;
  std::string signal;
  std::string code;
  std::string address;
  std::vector<std::string> stack;
};

constexpr const char* crash_log = "/media/log/stacktrace";
constexpr const char* second_crash_log = "/var/log/stacktrace_new";

/// What only standard error says, behind the report.
constexpr std::string_view crash_report_trailer =
    "(this data was appended to /media/log/stacktrace or /var/log/stacktrace_new)\n";

/// Takes a report apart, byte by byte from its beginning; what is not as it must be fails the test.
class crash_report_reader_t {
 public:
  explicit crash_report_reader_t(std::string_view text) : rest(text) {}

  /// The next report.
  crash_report_t report() {
    crash_report_t read;
    literal("==== begin fatal error " + std::string(57, '=') + "\n");
    read.program = line("program: ");
    read.time = line("time: ");
    read.signal = line("signal: ");
    read.code = line("code: ");
    read.address = line("address: ");
    literal("stack backtrace:\n");
    while (!rest.empty() && !rest.starts_with("dev hint")) {
      read.stack.push_back(line(""));
    }
    literal("dev hint: nm -C -n [program] | grep 0000[address]\n");
    literal("==== end fatal error " + std::string(59, '=') + "\n");
    return read;
  }

  /// Goes over a text that comes next.
  void literal(std::string_view expected) {
    ASSERT_EQ(rest.substr(0, expected.size()), expected);
    rest.remove_prefix(expected.size());
  }

  std::string_view unread() const { return rest; }

 private:
  /// What the next line says behind its label.
  std::string line(std::string_view label) {
    const std::string_view whole = rest.substr(0, rest.find('\n'));
    EXPECT_TRUE(whole.starts_with(label)) << "\"" << label << "\" should begin \"" << whole << "\"";
    EXPECT_LT(whole.size(), rest.size()) << "the line has no end: " << whole;
    rest.remove_prefix(std::min(whole.size() + 1, rest.size()));
    return std::string(whole.substr(std::min(label.size(), whole.size())));
  }

  std::string_view rest;
};

/// The bytes of a file; none if there is none.
inline std::string file_content(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The only report of a crash log.
inline crash_report_t only_report_in(const char* path) {
  const std::string content = file_content(path);
  crash_report_reader_t reader(content);
  crash_report_t read = reader.report();
  EXPECT_EQ(reader.unread(), "") << "behind the report in " << path;
  return read;
}

/// Environment variables for a program that is to crash: sanitizers leave its signals to it, and do not look for leaks
/// when it ends.
inline std::map<std::string, std::string> with_sanitizers_aside() {
  std::map<std::string, std::string> variables;
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    const char* inherited = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    variables[name] = (inherited != nullptr ? inherited + std::string(":") : std::string()) +
                      "handle_segv=0:handle_sigbus=0:handle_sigill=0:handle_abort=0:handle_sigfpe=0:detect_leaks=0";
  }
  variables["TSAN_OPTIONS"] += ":report_signal_unsafe=0";
  return variables;
}

}  // namespace test_support
