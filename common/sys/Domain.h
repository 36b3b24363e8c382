#pragma once

#include <cstdint>
#include <string>

namespace sys {

/// The machine's membership in a domain or workgroup, and the operations that change it. Every
/// request has an object of its own, so that what it learnt and the account that it used end with
/// it and no other request sees them.
///
/// Organisational units are written as a slash path from the top down ("East/Sales") or as a
/// fragment of a distinguished name ("OU=Sales,OU=East"). Failures are DomainError, and what the
/// WMI queries and methods throw.
class Domain {
public:
    Domain() = default;
    ~Domain();
    Domain(const Domain&) = delete;
    Domain& operator=(const Domain&) = delete;

    /// Asks the system (local security authority, workstation service) and refreshes the names.
    /// What the system does not say keeps its value from the last call.
    bool IsDomainMember();

    /// The unit that holds the machine's computer object, as a slash path or, with `asDn`, as a
    /// fragment of a distinguished name. On a machine that is no member, the last one found.
    /// Returns `out`.
    const std::string& GetOu(std::string& out, bool asDn);

    /// Leaves the domain if the machine is a member and an account is set, then joins the
    /// workgroup. Returns the low byte of the methods' result; 0 or 1.
    std::uint8_t JoinWorkgroup(const std::string& name);

    /// Joins `domain` (not empty), creating the computer object in `ou` (either form, may be
    /// empty) when the first attempt fails. `option` adds a flag to the join. Returns the low byte
    /// of the last result; 0 or 1.
    std::uint8_t JoinDomainAndOu(const std::string& domain, const std::string& ou, bool option);

    /// Moves the computer object over LDAP to `destination` (a unit in either form; empty means the
    /// container "Computers"). Does nothing on a machine that is no member. Always false, also when
    /// it was moved: only the absence of an error says so.
    bool MoveOu(const std::string& destination);

    /// The distinguished name of a unit (either form) in a domain ("corp.example" or "DC=...").
    static void BuildDn(const std::string& domain, const std::string& ou, std::string& out);
    /// The units of a distinguished name, as a slash path or, with `asDn`, as a fragment.
    static void ExtractOuPath(const std::string& dn, std::string& out, bool asDn);

    /// The account for the operations. The password is clear text; the next account's takes its
    /// place, and the end of the object overwrites it.
    void SetAccount(const std::string& user, const std::string& password);

    const std::string& Workgroup() const noexcept { return workgroup_; }
    const std::string& DomainName() const noexcept { return domain_; }
    const std::string& DnsDomainName() const noexcept { return dnsDomain_; }

private:
    void ForgetPassword() noexcept;
    void BuildAccount(const std::string& domain);
    void BuildCurrentAccount();

    std::string workgroup_;  // filled only while the machine is no member
    std::string domain_;     // the flat name
    std::string dnsDomain_;
    std::string ou_;  // what GetOu found last
    std::string account_;
    std::string user_;
    std::string password_;
    bool skipRefresh_ = false;  // nothing sets it
    bool member_ = false;
};

}  // namespace sys
