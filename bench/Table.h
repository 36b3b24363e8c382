#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// What one subject of a group took, once for each repetition.
struct Measurement {
    std::string group;
    std::string subject;
    std::vector<double> seconds;
    double items = 1;  ///< the times are shown per item
};

/// Prints the line of a measurement: its least time, how far its median lies above that, and the
/// least and the median as multiples of those of the group's first subject.
void Print(const Measurement& measurement);

struct Subject {
    std::string name;
    std::function<void()> run;
    double items = 1;  ///< that one run deals with
};

constexpr int kRepetitions = 15;

/// Measures the subjects in turn, again and again, and prints their lines. One time is that of
/// `rounds` runs.
void Compare(const std::string& group, const std::vector<Subject>& subjects, int rounds,
             int repetitions = kRepetitions);

}  // namespace bench
