#include "tests/sys/simulated/Members.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace sys_tests {

machine::State MemberIn(std::string_view unit) {
    machine::State state = machine::DefaultState();
    machine::Domain& domain = state.domains.front();
    state.membership = machine::Membership::OfDomain(domain.flatName, domain.dnsName);
    machine::TextList* computers = &domain.computers;
    std::vector<machine::OrganizationalUnit>* units = &domain.units;
    while (!unit.empty()) {
        const std::size_t end = std::min(unit.find('/'), unit.size());
        const std::string_view name = unit.substr(0, end);
        const auto found = std::find_if(units->begin(), units->end(),
                                        [name](const auto& known) { return known.name == name; });
        if (found == units->end()) {
            throw std::logic_error("the default domain has no unit " + std::string(name));
        }
        computers = &found->computers;
        units = &found->units;
        unit.remove_prefix(std::min(end + 1, unit.size()));
    }
    computers->push_back(state.computerName);
    return state;
}

}  // namespace sys_tests
