#include "sim/demo/narrator.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <iomanip>

namespace sim {
namespace {

constexpr std::chrono::milliseconds silence{150};

const char* colour_of(const std::string& actor) {
  constexpr std::array<std::pair<const char*, const char*>, 8> colours{{{"property", "\033[36m"},
                                                                        {"driver", "\033[33m"},
                                                                        {"engine", "\033[35m"},
                                                                        {"splash", "\033[34m"},
                                                                        {"panel", "\033[1;33m"},
                                                                        {"reset", "\033[31m"},
                                                                        {"daemon", "\033[1m"},
                                                                        {"appliance", "\033[32m"}}};
  const auto* found =
      std::find_if(colours.begin(), colours.end(), [&actor](const auto& colour) { return actor == colour.first; });
  return found != colours.end() ? found->second : "";
}

}  // namespace

int64_t story_time_us() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

narrator_t::narrator_t(const std::string& pipe, std::ostream& terminal, bool everything, bool use_colours)
    : reader(pipe),
      kept_open(open(pipe.c_str(), O_WRONLY | O_CLOEXEC)),
      ending(eventfd(0, EFD_CLOEXEC)),
      out(terminal),
      teller(everything),
      coloured(use_colours),
      thread([this] { listen(); }) {}

narrator_t::~narrator_t() {
  eventfd_write(ending.get(), 1);
  thread.join();
}

void narrator_t::listen() {
  std::array<pollfd, 2> waiting{{{reader.descriptor(), POLLIN, 0}, {ending.get(), POLLIN, 0}}};
  while (waiting[1].revents == 0) {
    poll(waiting.data(), waiting.size(), -1);
    const auto lines = reader.take();
    const std::lock_guard lock(mutex);
    for (const auto& line : lines) {
      hear(line);
    }
    heard_more.notify_all();
  }
}

void narrator_t::hear(const story_line_t& line) {
  heard.push_back(line);
  if (zero_us) {
    print(line);
  }
}

void narrator_t::start_clock_if_held(int64_t zero) {
  const std::lock_guard lock(mutex);
  if (!zero_us) {
    print_held(zero);
  }
}

void narrator_t::start_clock(int64_t zero) {
  const std::lock_guard lock(mutex);
  print_held(zero);
}

void narrator_t::fall_silent() {
  const std::lock_guard lock(mutex);
  silent = true;
}

void narrator_t::print_held(int64_t zero) {
  zero_us = zero;
  for (const auto& line : heard) {
    print(line);
  }
}

void narrator_t::print(const story_line_t& line) {
  const auto told = silent ? std::nullopt : teller.tell(line);
  if (!told) {
    return;
  }
  std::array<char, 32> time{};
  std::snprintf(time.data(), time.size(), "%+10.1f", static_cast<double>(told->time_us - *zero_us) / 1000.0);
  out << time.data() << "  " << (coloured ? colour_of(told->actor) : "") << std::left << std::setw(9) << told->actor
      << (coloured ? "\033[0m" : "") << "  " << told->text << '\n'
      << std::flush;
}

outcome_t narrator_t::expect_told(const std::string& what, const predicate_t& wanted, int64_t since_us,
                                  std::size_t count, std::chrono::milliseconds limit) {
  const auto number_told = [&] {
    return static_cast<std::size_t>(std::count_if(heard.begin(), heard.end(), [&](const story_line_t& line) {
      return line.time_us >= since_us && wanted(line);
    }));
  };
  std::unique_lock lock(mutex);
  const bool came = heard_more.wait_for(lock, limit, [&] { return number_told() >= count; });
  return {came, what + ": told " + std::to_string(number_told()) + " of " + std::to_string(count) + " times in " +
                    std::to_string(limit.count()) + " ms"};
}

void narrator_t::wait_for_silence() {
  std::unique_lock lock(mutex);
  std::size_t before = 0;
  do {
    before = heard.size();
  } while (heard_more.wait_for(lock, silence, [&] { return heard.size() != before; }));
}

}  // namespace sim
