// The report of a fleet: a line for each machine that opens to its plan.
#pragma once

#include <string>

#include "host/fleet/Fleet.h"
#include "host/fleet/Recap.h"
#include "host/report/Html.h"

namespace host::fleet {

class FleetReport {
public:
    /// `row` is what the recap has of the plan, `fileName` what people call the configuration file.
    void Add(const Planned& planned, const Row& row, const std::string& file,
             const std::string& fileName);

    /// The whole page. `folder` as the user names it, `version` is the module's.
    std::string MakePage(const Recap& recap, const std::string& folder,
                         const std::string& version) const;

private:
    report::Html machines_;
};

}  // namespace host::fleet
