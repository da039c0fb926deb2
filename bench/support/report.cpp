#include "bench/support/report.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

namespace bench {
namespace {

struct figures_t {
  std::vector<double> times_ns;
  std::map<std::string, std::vector<double>> counters;
};

/// The value below which `share` of them lie.
double quantile(std::vector<double> values, double share) {
  const auto place = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

double median(const std::vector<double>& values) { return quantile(values, 0.5); }

std::string duration(double ns) {
  static constexpr const char* units[] = {"ns", "us", "ms", "s"};
  std::size_t unit = 0;
  for (; ns >= 1000 && unit < 3; ++unit) {
    ns /= 1000;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.4g %s", ns, units[unit]);
  return text;
}

std::string quantity(double value) {
  static constexpr const char* units[] = {"", "k", "M", "G"};
  std::size_t unit = 0;
  for (; value >= 10000 && unit < 3; ++unit) {
    value /= 1000;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.4g%s", value, units[unit]);
  return text;
}

class reporter_t : public benchmark::BenchmarkReporter {
 public:
  explicit reporter_t(std::vector<ratio_t> told_ratios) : ratios(std::move(told_ratios)) {}

  bool ReportContext(const Context& context) override {
    PrintBasicContext(&GetErrorStream(), context);
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const std::string name = run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
      if (run.error_occurred) {
        std::printf("%s: %s\n", name.c_str(), run.error_message.c_str());
      } else if (run.report_big_o) {
        growth.push_back(run.run_name.function_name + ": " + quantity(run.GetAdjustedCPUTime()) + " ns a byte times " +
                         big_o(run.complexity));
      } else if (run.report_rms) {
        growth.back() += ", off by " + quantity(100 * run.GetAdjustedCPUTime()) + "%";
      } else if (run.run_type == Run::RT_Iteration) {
        add(name, run);
      }
    }
  }

  void Finalize() override {
    std::printf("%-42s %10s %10s %10s  %s\n", "benchmark", "median", "quartile", "least", "figures");
    for (const auto& name : order) {
      print(name, figures[name]);
    }
    for (const auto& line : growth) {
      std::printf("growth  %s\n", line.c_str());
    }
    for (const auto& ratio : ratios) {
      print(ratio);
    }
  }

 private:
  static const char* big_o(benchmark::BigO complexity) {
    return complexity == benchmark::oN ? "N" : "an unexpected power of N";
  }

  void add(const std::string& name, const Run& run) {
    if (figures.find(name) == figures.end()) {
      order.push_back(name);
    }
    auto& known = figures[name];
    // Who does not ask for real time works alone, and others' work is none of its time.
    known.times_ns.push_back(run.run_name.time_type == "real_time" ? run.GetAdjustedRealTime()
                                                                   : run.GetAdjustedCPUTime());
    for (const auto& [counter, value] : run.counters) {
      known.counters[counter].push_back(value);
    }
  }

  static void print(const std::string& name, const figures_t& told) {
    std::printf("%-42s %10s %10s %10s ", name.c_str(), duration(median(told.times_ns)).c_str(),
                duration(quantile(told.times_ns, 0.25)).c_str(), duration(quantile(told.times_ns, 0)).c_str());
    for (const auto& [counter, values] : told.counters) {
      std::printf(" %s=%s", counter.c_str(), quantity(median(values)).c_str());
    }
    std::printf("\n");
  }

  void print(const ratio_t& ratio) {
    const auto what = figures.find(ratio.what);
    const auto against = figures.find(ratio.against);
    if (what == figures.end() || against == figures.end()) {
      return;
    }
    const auto multiple = [&](double share) {
      return quantile(what->second.times_ns, share) / quantile(against->second.times_ns, share);
    };
    std::printf("ratio   %s to %s: medians %.2f, lower quartiles %.2f, least %.2f", ratio.what.c_str(),
                ratio.against.c_str(), multiple(0.5), multiple(0.25), multiple(0));
    if (ratio.goal > 0) {
      std::printf(" (goal: at most %.2f)", ratio.goal);
    }
    std::printf("\n");
  }

  std::vector<ratio_t> ratios;
  std::vector<std::string> order;
  std::map<std::string, figures_t> figures;
  std::vector<std::string> growth;
};

}  // namespace

int run(int argc, char** argv, const rounds_t& rounds, std::vector<ratio_t> ratios) {
  // In front of what is given, which wins.
  std::string defaults[] = {"--benchmark_enable_random_interleaving=true",
                            "--benchmark_repetitions=" + std::to_string(rounds.count),
                            "--benchmark_min_time=" + std::to_string(rounds.seconds)};
  std::vector<char*> arguments{argv[0]};
  for (auto& argument : defaults) {
    arguments.push_back(argument.data());
  }
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
    return 2;
  }
  reporter_t reporter(std::move(ratios));
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

}  // namespace bench
