// The main function of the benchmarks. A benchmark is named group/size/subject; the first subject
// of a group and size is the project's own, and after the usual table each other subject's time is
// printed as a multiple of it. Every figure is the median of the repetitions of one run; the spread
// of the repetitions stands beside it.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Measurement {
    std::string group;
    std::string subject;
    double median = 0;
    double spread = 0;  // (largest - smallest) / median
};

double Median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const std::size_t middle = times.size() / 2;
    return times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
}

class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override {
        std::printf("%-34s %-22s %12s %8s %7s\n", "measured", "subject", "time", "spread", "ratio");
        return true;
    }

    /// Called with all repetitions of a benchmark, and once more with the library's own statistics.
    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<double> times;
        for (const Run& run : runs) {
            if (run.error_occurred) {
                std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
                failed_ = true;
                return;
            }
            if (run.run_type == Run::RT_Iteration) {
                times.push_back(run.real_accumulated_time / static_cast<double>(run.iterations));
            }
        }
        if (times.empty()) {
            return;
        }
        const std::string& name = runs.front().run_name.function_name;
        const std::size_t cut = name.rfind('/');
        const auto [least, most] = std::minmax_element(times.begin(), times.end());
        const double median = Median(times);
        Print({name.substr(0, cut), name.substr(cut + 1), median, (*most - *least) / median});
    }

    bool Failed() const noexcept { return failed_; }

private:
    void Print(const Measurement& measurement) {
        if (measurement.group != own_.group) {
            own_ = measurement;
            std::printf("\n");
        }
        const bool small = measurement.median < 1e-3;
        std::printf("%-34s %-22s %9.3f %s %7.0f%% %7.2f\n", measurement.group.c_str(),
                    measurement.subject.c_str(), measurement.median * (small ? 1e6 : 1e3),
                    small ? "us" : "ms", measurement.spread * 100,
                    measurement.median / own_.median);
        std::fflush(stdout);
    }

    Measurement own_;
    bool failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.Failed() ? 1 : 0;
}
