#pragma once

#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Benchmarks that answer in ratios. A piece of work is measured up to three times in one run: as
/// "<work>/ours", as "<work>/peer" (the best general-purpose way) and as "<work>/limit" (what
/// cannot be beaten). After the run a Markdown table, made to be pasted into docs/performance.md,
/// says how many times faster than the peer, and which part of the limit's speed, ours is; a figure
/// behind a slash is a goal. Where "<work>/ours" calls SetItemsProcessed, its rate is told too.
namespace generalutilities::bench {

/// What is wanted of a piece of work; 0 for no goal.
struct Goal {
    std::string row;   ///< the name of the goal
    std::string work;  ///< the work, as in the names of its benchmarks
    double peer = 0;   ///< at least this many times the peer's speed
    double limit = 0;  ///< at least this part of the limit's speed
    double rate = 0;   ///< at least this many million items a second
};

/// Prints the usual table and keeps the medians.
class MedianKeeper : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                times[run.run_name.function_name] = run.GetAdjustedCPUTime();
                if (const auto rate = run.counters.find("items_per_second");
                    rate != run.counters.end()) {
                    rates[run.run_name.function_name] = rate->second.value / 1e6;
                }
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// How many times faster "<work>/ours" is than "<work>/<other>"; 0 when one was not run.
    double Ratio(const std::string& work, const std::string& other) const {
        const auto ours = times.find(work + "/ours");
        const auto theirs = times.find(work + "/" + other);
        return ours == times.end() || theirs == times.end() ? 0 : theirs->second / ours->second;
    }

    /// Million items a second of "<work>/ours"; 0 when unknown.
    double Rate(const std::string& work) const {
        const auto ours = rates.find(work + "/ours");
        return ours == rates.end() ? 0 : ours->second;
    }

  private:
    std::map<std::string, double> times;
    std::map<std::string, double> rates;
};

inline std::string Cell(double figure, double goal) {
    if (figure == 0) {
        return "";
    }
    char text[64];
    if (goal == 0) {
        std::snprintf(text, sizeof text, "%.3g", figure);
    } else {
        std::snprintf(text, sizeof text, "%.3g / %.3g%s", figure, goal,
                      figure < goal ? " missed" : "");
    }
    return text;
}

/// The main function of a benchmark program: repetitions of all benchmarks are interleaved at
/// random, so that a busy moment of the machine falls on all of them alike. Options of the command
/// line come last and win.
inline int Run(int argc, char** argv, const std::vector<Goal>& goals) {
    std::string defaults[] = {"--benchmark_enable_random_interleaving=true",
                              "--benchmark_repetitions=9", "--benchmark_min_time=0.02",
                              "--benchmark_report_aggregates_only=true"};
    std::vector<char*> arguments = {argv[0]};
    for (std::string& option : defaults) {
        arguments.push_back(option.data());
    }
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 1;
    }
    MedianKeeper medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    std::printf(
        "\n| Row | Work | x peer / goal | x limit / goal | M items/s / goal |\n"
        "|---|---|---|---|---|\n");
    for (const Goal& goal : goals) {
        std::printf("| %s | %s | %s | %s | %s |\n", goal.row.c_str(), goal.work.c_str(),
                    Cell(medians.Ratio(goal.work, "peer"), goal.peer).c_str(),
                    Cell(medians.Ratio(goal.work, "limit"), goal.limit).c_str(),
                    Cell(medians.Rate(goal.work), goal.rate).c_str());
    }
    return 0;
}

}  // namespace generalutilities::bench
