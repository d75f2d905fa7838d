#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace tarn::bench {

/// The console's table, and behind it one line for each benchmark that has a twin: names that differ only in
/// "tarn/" and "fcl/" at the front. The ratio is that of processor times, of their medians when
/// there are repetitions.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool is_median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            const bool is_single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            if (!run.error_occurred && (is_median || is_single)) {
                const std::string& name = run.run_name.function_name;
                times_[name] = run.GetAdjustedCPUTime();
            }
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        std::cout << "\ntime of tarn / time of FCL\n";
        for (const auto& [name, time] : times_) {
            if (!name.starts_with("tarn/")) continue;
            const auto twin = times_.find("fcl/" + name.substr(5));
            if (twin == times_.end()) continue;
            std::printf("%8.3f  %s\n", time / twin->second, name.substr(5).c_str());
        }
    }

private:
    std::map<std::string, double> times_;
};

}  // namespace tarn::bench
