// Random configurations and machines: the same seed gives the same pair everywhere.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "machine/State.h"

namespace sweep {

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t Below(std::uint64_t count) { return engine_() % count; }
    bool Chance(std::uint64_t percent) { return Below(100) < percent; }
    const std::string& Pick(const std::vector<std::string>& texts) {
        return texts[Below(texts.size())];
    }
    /// Up to `most` of the texts, each at most once, in any order.
    std::vector<std::string> Some(std::vector<std::string> texts, std::uint64_t most);

private:
    std::mt19937_64 engine_;
};

/// A machine inside or outside a domain, with adapters of every kind and routes.
machine::State RandomMachine(Random& random);

/// A configuration with any sections, any of their keys missing, and values good and bad.
std::string RandomConfiguration(Random& random);

/// Why requests with this configuration may go on changing the machine for ever; empty where they
/// must come to an end.
std::string WhyItMayNotSettle(const std::string& configurationFile);

}  // namespace sweep
