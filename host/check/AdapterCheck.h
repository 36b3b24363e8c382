#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/check/SectionCheck.h"
#include "machine/model/Address.h"

namespace host::check {

using machine::model::Network;

/// Checks the addresses, gateways, DNS servers and DNS suffixes of one adapter section.
class AdapterCheck : private SectionCheck {
public:
    using SectionCheck::SectionCheck;

    void Check();

    /// Whether its networks are known: a DHCP server knows those of other adapters.
    bool IsStatic() const;
    const std::vector<Network>& Networks() const noexcept { return networks_; }
    /// The look-up behind the machine's DNS suffixes; null when the section sends none.
    const LookUp* SentSuffixes() const;

private:
    using Checker = std::optional<ValueFault> (*)(std::string_view item);

    void ReportNoDescription();
    void CheckMode();
    void CheckAddressing();
    void CheckNetworks(const LookUp& addresses, const LookUp& masks);
    void CheckGateways(const LookUp& gateways);
    void CheckDnsServers(const LookUp& count);
    void ReportMissingServers(const LookUp& count, const std::vector<std::string>& missing,
                              bool lastIsMissing);
    void CheckList(const LookUp& lookUp, const char* what, Checker check);
    void CheckItems(std::string_view text, Checker check);
    void CheckUnreadEntry(const Entry& entry);
    void CheckUnreadEntries();

    std::vector<Network> networks_;
};

}  // namespace host::check
