#pragma once

#include "host/check/SectionCheck.h"

namespace host::check {

/// Checks [Networking]: membership, unit, account and computer name.
class NetworkingCheck : private SectionCheck {
public:
    using SectionCheck::SectionCheck;

    void Check();
    /// Whether something that the section asks for may need a restart.
    bool MayRestart() const;
    /// Whether it asks for a new name and a join: the run stops between the two.
    bool RenamesAndJoins() const;

private:
    void CheckMembership();
    void CheckWorkgroup(const LookUp& choice);
    void CheckDomain(const LookUp& choice);
    void CheckOrganizationalUnit();
    void CheckAccount();
    bool Sends(std::uint32_t kind) const;
};

}  // namespace host::check
