// The main function of the native benchmarks. A benchmark is named group/subject; the first subject
// of a group is the project's own, and the others are shown beside it. The repetitions of all
// benchmarks are mixed, so that a busy minute of the machine touches all subjects alike.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench/Table.h"

namespace {

class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    /// Called with all repetitions of a benchmark, and once more with the library's own statistics.
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
                failed_ = true;
            } else if (run.run_type == Run::RT_Iteration) {
                bench::Measurement& measurement = measurements_[run.family_index];
                const std::string& name = run.run_name.function_name;
                measurement.group = name.substr(0, name.rfind('/'));
                measurement.subject = name.substr(name.rfind('/') + 1);
                measurement.seconds.push_back(run.real_accumulated_time /
                                              static_cast<double>(run.iterations));
                const auto items = run.counters.find("items");
                measurement.items = items == run.counters.end() ? 1 : items->second.value;
            }
        }
    }

    /// They end in any order and are shown in the order of their registration.
    void Finalize() override {
        for (const auto& [number, measurement] : measurements_) {
            bench::Print(measurement);
        }
    }

    bool Failed() const noexcept { return failed_; }

private:
    std::map<std::int64_t, bench::Measurement> measurements_;
    bool failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::string repeat = "--benchmark_repetitions=15";
    std::string least = "--benchmark_min_time=0.1";
    std::vector<char*> arguments{argv[0], interleave.data(), repeat.data(), least.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.Failed() ? 1 : 0;
}
