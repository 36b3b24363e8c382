#include "host/configure/Violations.h"

#include "machine/Balance.h"

namespace host::configure {

std::vector<std::string> TakeViolations(machine::Simulation& simulation,
                                        const std::vector<machine::TraceEntry>& calls,
                                        std::size_t unexpectedBefore) {
    std::vector<std::string> violations = machine::Weigh(simulation.GetLedger(), calls).leaks;
    simulation.GetLedger().Clear();
    const std::vector<std::string>& unexpected = simulation.Unexpected();
    for (std::size_t i = unexpectedBefore; i < unexpected.size(); ++i) {
        violations.push_back("unexpected: " + unexpected[i]);
    }
    return violations;
}

}  // namespace host::configure
