#include "bench/Table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace bench {

namespace {

struct Figures {
    std::string group;
    double least = 0;
    double median = 0;
};

}  // namespace

void Print(const Measurement& measurement) {
    static Figures first;
    std::vector<double> times = measurement.seconds;
    std::ranges::sort(times);
    const double least = times.front() / measurement.items;
    const double median = times[times.size() / 2] / measurement.items;
    if (first.group.empty()) {
        std::printf("%-34s %-24s %12s %8s %7s %11s\n", "measured", "subject", "least", "median",
                    "ratio", "of medians");
    }
    if (measurement.group != first.group) {
        std::printf("\n");
        first = {measurement.group, least, median};
    }
    const char* const unit = least < 1e-6 ? "ns" : least < 1e-3 ? "us" : "ms";
    const double scale = least < 1e-6 ? 1e9 : least < 1e-3 ? 1e6 : 1e3;
    std::printf("%-34s %-24s %9.2f %s %+7.0f%% %7.2f %11.2f\n", measurement.group.c_str(),
                measurement.subject.c_str(), least * scale, unit, (median / least - 1) * 100,
                least / first.least, median / first.median);
    std::fflush(stdout);
}

void Compare(const std::string& group, const std::vector<Subject>& subjects, int rounds,
             int repetitions) {
    using Clock = std::chrono::steady_clock;
    std::vector<Measurement> measurements;
    for (const Subject& subject : subjects) {
        subject.run();  // the first run finds nothing in memory yet
        measurements.push_back({group, subject.name, {}, rounds * subject.items});
    }
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        for (std::size_t i = 0; i < subjects.size(); ++i) {
            const Clock::time_point start = Clock::now();
            for (int round = 0; round < rounds; ++round) {
                subjects[i].run();
            }
            const std::chrono::duration<double> took = Clock::now() - start;
            measurements[i].seconds.push_back(took.count());
        }
    }
    for (const Measurement& measurement : measurements) {
        Print(measurement);
    }
}

}  // namespace bench
